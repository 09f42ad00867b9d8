#pragma once

#include "foundation/KRColor.h"

#include <QAbstractScrollArea>

class KRScroller;

/// A vertically scrolling view of fixed look: its own narrow scroller, always shown, no frame, one background
/// colour. It keeps the size of its document and which part of it is visible; what the document shows is the
/// subclass's affair, which places its children in the viewport (the document moved up by the scroll
/// position). Coordinates grow downward, in whole points. The first click into an inactive window acts, as
/// everywhere on the platform. Main thread.
class KRScrollView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit KRScrollView(QWidget* parent = nullptr);
    ~KRScrollView() override;

    /// Behind the document, and under the scroller's knob.
    void setBackgroundKRColor(const KRColor& color);
    const KRColor& backgroundKRColor() const { return m_backgroundColor; }

    KRScroller* verticalScroller() const { return m_verticalScroller; }

    /// The part of the document that shows, in the document's coordinates.
    [[nodiscard]] QRect documentVisibleRect() const;

    enum class Animated { No, Yes };
    /// Puts the point of the document at the top left of the view, as far as the document reaches. The jump
    /// is immediate either way.
    void scrollToPoint(QPoint point, Animated animated);
    /// Scrolls the least amount that shows the rectangle; its top when it does not fit.
    void scrollToRect(const QRect& rect, Animated animated);

protected:
    /// The visible area moved.
    virtual void didScroll() { }

    void setDocumentHeight(int height);
    int documentHeight() const { return m_documentHeight; }

    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void _setupScrollView();
    void _updateScroller();

    KRScroller* m_verticalScroller = nullptr;
    KRColor m_backgroundColor;
    int m_documentHeight = 0;
};
