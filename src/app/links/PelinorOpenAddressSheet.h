#pragma once

#include <QDialog>
#include <QUrl>

#include <functional>

/// Asks whether an address that is none of the web's may be opened, and shows all of it, in the form that
/// hides nothing. Closing it opens nothing. Main thread.
class PelinorOpenAddressSheet : public QDialog {
    Q_OBJECT

public:
    using Agreed = std::function<void(const QUrl& url)>;

    /// Opens a sheet on the view's window and returns at once; the sheet deletes itself.
    static void ask(QWidget* view, const QUrl& url, Agreed agreed);

private:
    PelinorOpenAddressSheet(QWidget* parent, const QUrl& url, Agreed agreed);
};
