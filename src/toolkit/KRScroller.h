#pragma once

#include "transport/KRCallback.h"

#include <QScrollBar>

/// The narrow vertical scroller of a scroll view: no arrows, no visible slot, a translucent knob. It tells
/// when the user has let go of it, so that what must not change under the user's hand can wait. Main thread.
class KRScroller : public QScrollBar {
    Q_OBJECT

public:
    /// How wide a scroller is, in points.
    static constexpr int Width = 15;

    explicit KRScroller(QWidget* parent = nullptr);
    ~KRScroller() override;

    /// True only while the user holds the mouse down on the scroller.
    [[nodiscard]] bool isScrolling() const { return m_isScrolling; }

    /// Invoked once, when the mouse goes up, and then dropped. Setting another replaces the one that waits.
    void setDoneScrollingCallback(KRCallback<void> callback)
    {
        m_doneScrollingCallback = std::move(callback);
    }
    const KRCallback<void>& doneScrollingCallback() const { return m_doneScrollingCallback; }

    QSize sizeHint() const override { return { Width, Width }; }

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void _mouseIsUp();

    KRCallback<void> m_doneScrollingCallback;
    bool m_isScrolling = false;
};
