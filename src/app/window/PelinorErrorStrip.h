#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

/// The strip at the top of a window that says what went wrong, until it is dismissed. Plain text, wrapped,
/// cut off where it would be endless.
class PelinorErrorStrip : public QWidget {
    Q_OBJECT

public:
    explicit PelinorErrorStrip(QWidget* parent = nullptr);
    ~PelinorErrorStrip() override;

    /// Shows the text; the strip hides for an empty one.
    void setText(const QString& text);
    QString text() const;

Q_SIGNALS:
    void dismissed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void _updateColors();

    QLabel* m_label = nullptr;
    QToolButton* m_dismissButton = nullptr;
};
