#pragma once

#include <QWidget>

class PelinorProgressIndicator;
class QLabel;
class QToolButton;

/// The strip along the bottom of the main window: the spinner, what went wrong last, and at its end what the
/// user should know though nothing went wrong. Plain text, on one line, with all of it in a tooltip. Main
/// thread.
class PelinorStatusStrip : public QWidget {
    Q_OBJECT

public:
    static constexpr int Height = 22;

    explicit PelinorStatusStrip(QWidget* parent);
    ~PelinorStatusStrip() override;

    PelinorProgressIndicator& progressIndicator() { return *m_progressIndicator; }

    /// Empty when there is no error, which hides the button.
    QString error() const { return m_error; }
    void setError(const QString& text);
    /// Stays until it is clicked; empty when there is none.
    QString notice() const { return m_notice; }
    void setNotice(const QString& title, const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void _updateColors();
    void _elide();

    PelinorProgressIndicator* m_progressIndicator = nullptr;
    QToolButton* m_errorButton = nullptr;
    QLabel* m_errorField = nullptr;
    QToolButton* m_noticeButton = nullptr;
    QString m_error;
    QString m_notice;
};
