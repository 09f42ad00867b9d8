#pragma once

#include "toolkit/navigation/KRViewControllerSwitcher.h"

#include <QWidget>

class GallerySidebar;

/// The window of the gallery: its pages in a column, the chosen one beside it.
class GalleryWindow final : public QWidget {
    Q_OBJECT

public:
    GalleryWindow();
    ~GalleryWindow() override;

    /// The names pages have on the command line.
    static QStringList pageNames();
    void showPage(const QString& name);
    KRViewControllerPtr currentPage() const { return m_switcher.currentViewController(); }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void _showPage(int page);

    GallerySidebar* m_sidebar = nullptr;
    QWidget* m_stage = nullptr;
    std::vector<KRViewControllerPtr> m_pages;
    KRViewControllerSwitcher m_switcher;
    int m_shownPage = 0;
};
