#pragma once

#include <QAbstractButton>

/// A word to press at the right end of the navigation bar, for KRBarButtonItem. Under the pointer a quiet
/// field stands behind the word, however much of the bar the button has been given; all of that can be
/// pressed. Main thread.
class KRBarButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit KRBarButton(const QString& text, QWidget* parent = nullptr);

    /// The field behind the word.
    [[nodiscard]] QRect fieldRect() const;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString _shownText() const;
};
