#include "toolkit/KRScroller.h"

#include "toolkit/images/KRImage.h"

#include <QCommonStyle>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionSlider>

#include <algorithm>
#include <utility>

namespace {

constexpr int KnobLeftCapWidth = 5;
constexpr int KnobTopCapHeight = 10;
constexpr int SlotMargin = 2;
constexpr int SlotOverdraw = 10;
constexpr int MinimumKnobLength = 36;
constexpr qreal KnobOpacity = 0.65;

struct Images {
    KRImage slot;
    KRImage knob;
};

// The slot is prepared beside the knob, but lists look calmer without one.
const Images& images()
{
    const auto stretchable = [](const QString& name) {
        return KRImage::imageNamed(name).stretchableImageWithLeftCapWidth(KnobLeftCapWidth, KnobTopCapHeight);
    };
    static const Images images { stretchable(QStringLiteral("toolkit/ScrollSlot.svg")),
        stretchable(QStringLiteral("toolkit/ScrollKnob.svg")) };
    return images;
}

// The geometry of a scroller without arrows. Desktop styles each have their own idea of buttons, hover fading
// and where a click jumps to; lists are to behave alike everywhere.
class ScrollerStyle final : public QCommonStyle {
public:
    QRect subControlRect(ComplexControl control,
        const QStyleOptionComplex* option,
        SubControl subControl,
        const QWidget* widget) const override
    {
        const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !slider)
            return QCommonStyle::subControlRect(control, option, subControl, widget);
        const QRect slot = slider->rect.adjusted(0, SlotMargin, 0, -SlotMargin);
        const QRect knob = _knobRect(*slider, slot);
        switch (subControl) {
        case SC_ScrollBarGroove:
            return slot;
        case SC_ScrollBarSlider:
            return knob;
        case SC_ScrollBarSubPage:
            return { slot.topLeft(), QSize(slot.width(), knob.top() - slot.top()) };
        case SC_ScrollBarAddPage:
            return { QPoint(slot.left(), knob.bottom() + 1),
                QSize(slot.width(), slot.bottom() - knob.bottom()) };
        default:
            return {};
        }
    }

    int styleHint(StyleHint hint,
        const QStyleOption* option,
        const QWidget* widget,
        QStyleHintReturn* returnData) const override
    {
        if (hint == SH_ScrollBar_LeftClickAbsolutePosition || hint == SH_ScrollBar_Transient)
            return 0;
        if (hint == SH_ScrollBar_MiddleClickAbsolutePosition)
            return 1;
        return QCommonStyle::styleHint(hint, option, widget, returnData);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        // A drag goes on however far the pointer strays from the knob.
        if (metric == PM_MaximumDragDistance)
            return -1;
        if (metric == PM_ScrollBarSliderMin)
            return MinimumKnobLength;
        return QCommonStyle::pixelMetric(metric, option, widget);
    }

private:
    static QRect _knobRect(const QStyleOptionSlider& slider, const QRect& slot)
    {
        const qint64 range = qint64(slider.maximum) - slider.minimum;
        const qint64 page = std::max(1, slider.pageStep);
        const int shortest = std::min(MinimumKnobLength, slot.height());
        const int length = std::max(shortest, int(slot.height() * page / (range + page)));
        const int top = sliderPositionFromValue(slider.minimum,
            slider.maximum,
            slider.sliderPosition,
            slot.height() - length);
        return { slot.left(), slot.top() + top, slot.width(), length };
    }
};

} // namespace

KRScroller::KRScroller(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent)
{
    auto* style = new ScrollerStyle;
    style->setParent(this);
    setStyle(style);
    setContextMenuPolicy(Qt::NoContextMenu);
    // See mouseMoveEvent().
    setMouseTracking(true);
}

KRScroller::~KRScroller() = default;

bool KRScroller::event(QEvent* event)
{
    // A scroller that is taken away under the mouse never sees the release.
    if (event->type() == QEvent::Hide || event->type() == QEvent::UngrabMouse)
        _mouseIsUp();
    return QScrollBar::event(event);
}

void KRScroller::mousePressEvent(QMouseEvent* event)
{
    m_isScrolling = true;
    QScrollBar::mousePressEvent(event);
}

void KRScroller::mouseMoveEvent(QMouseEvent* event)
{
    // The release never came here: the user was being ignored when the button went up.
    if (event->buttons() == Qt::NoButton)
        _mouseIsUp();
    QScrollBar::mouseMoveEvent(event);
}

void KRScroller::mouseReleaseEvent(QMouseEvent* event)
{
    QScrollBar::mouseReleaseEvent(event);
    if (event->buttons() == Qt::NoButton)
        _mouseIsUp();
}

void KRScroller::_mouseIsUp()
{
    if (!m_isScrolling)
        return;
    m_isScrolling = false;
    const KRCallback<void> callback = std::exchange(m_doneScrollingCallback, {});
    callback.invoke({});
}

void KRScroller::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QStyleOptionSlider option;
    initStyleOption(&option);

    const QWidget* scrollView = parentWidget();
    while (scrollView && !scrollView->inherits("QAbstractScrollArea"))
        scrollView = scrollView->parentWidget();
    const QRect slot
        = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarGroove, this);
    painter.fillRect(slot.adjusted(0, -SlotOverdraw, 0, SlotOverdraw),
        (scrollView ? scrollView : this)->palette().color(QPalette::Window));

    if (maximum() == minimum())
        return;
    QRect knob = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    knob.adjust(1, 1, -1, -1);
    knob.adjust(1, 0, -1, 0);
    knob.translate(-1, 0);
    painter.setOpacity(KnobOpacity);
    images().knob.drawInContext(painter, knob, KRImage::Flipped::Yes);
}
