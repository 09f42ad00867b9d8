#include "toolkit/KRScrollView.h"

#include "text/render/KRColorConversion.h"
#include "toolkit/KRScroller.h"

#include <algorithm>

namespace {

constexpr float DefaultBackgroundGrey = 210.0F / 255.0F;
constexpr int PointsPerWheelLine = 20;

} // namespace

KRScrollView::KRScrollView(QWidget* parent)
    : QAbstractScrollArea(parent)
{
    _setupScrollView();
}

KRScrollView::~KRScrollView() = default;

void KRScrollView::_setupScrollView()
{
    m_verticalScroller = new KRScroller(this);
    setVerticalScrollBar(m_verticalScroller);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    m_verticalScroller->setSingleStep(PointsPerWheelLine);
    setBackgroundKRColor(
        KRColor::rgba(DefaultBackgroundGrey, DefaultBackgroundGrey, DefaultBackgroundGrey, 1));
}

void KRScrollView::setBackgroundKRColor(const KRColor& color)
{
    m_backgroundColor = color;
    // Cells inherit the palette's text colours from above, so only the role behind the document changes.
    QPalette colors = palette();
    colors.setColor(QPalette::Window, KRQColor(color));
    setPalette(colors);
    viewport()->setBackgroundRole(QPalette::Window);
    viewport()->setAutoFillBackground(true);
    m_verticalScroller->update();
}

QRect KRScrollView::documentVisibleRect() const
{
    return { QPoint(0, m_verticalScroller->value()), viewport()->size() };
}

void KRScrollView::scrollToPoint(QPoint point, Animated /*animated*/)
{
    m_verticalScroller->setValue(point.y());
}

void KRScrollView::scrollToRect(const QRect& rect, Animated animated)
{
    const QRect visible = documentVisibleRect();
    const qint64 top = rect.y();
    const qint64 bottom = top + rect.height();
    if (top < visible.y())
        scrollToPoint(QPoint(0, rect.y()), animated);
    else if (bottom > qint64(visible.y()) + visible.height())
        scrollToPoint(QPoint(0, int(std::min(top, bottom - visible.height()))), animated);
}

void KRScrollView::setDocumentHeight(int height)
{
    m_documentHeight = height;
    _updateScroller();
}

void KRScrollView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    _updateScroller();
}

void KRScrollView::_updateScroller()
{
    const int visibleHeight = viewport()->height();
    m_verticalScroller->setPageStep(std::max(1, visibleHeight));
    m_verticalScroller->setRange(0, std::max(0, m_documentHeight - visibleHeight));
}

void KRScrollView::scrollContentsBy(int /*dx*/, int dy)
{
    if (viewport()->isVisible()) {
        viewport()->scroll(0, dy);
    } else {
        // A widget that is not visible leaves its children where they are.
        for (QWidget* child : viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            child->move(child->x(), child->y() + dy);
    }
    didScroll();
}
