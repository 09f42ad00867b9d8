#include "toolkit/KRActiveTextTracker.h"

#include "text/render/KRColorConversion.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace {

constexpr qreal RingWidth = 2;
constexpr qreal RingRadius = 3;

// A range that an earlier kind covers entirely can be seen but not clicked: what counts at each place is the
// first range there.
KRRangeList reachableRanges(const KRActiveTextRanges& ranges, qsizetype textLength)
{
    const KRRangeList& active = ranges.activeRanges();
    std::vector<qsizetype> owners(size_t(textLength), -1);
    for (qsizetype number = active.size() - 1; number >= 0; --number)
        std::fill_n(owners.begin() + active.at(number).location, active.at(number).length, number);
    std::vector<bool> isListed(size_t(active.size()), false);
    KRRangeList reachable;
    for (const qsizetype owner : owners) {
        if (owner < 0 || isListed[size_t(owner)])
            continue;
        isListed[size_t(owner)] = true;
        reachable.append(active.at(owner));
    }
    return reachable;
}

} // namespace

KRActiveTextTracker::KRActiveTextTracker(QWidget& widget, const KRActiveTextRenderer& renderer)
    : QObject(&widget)
    , m_widget(widget)
    , m_renderer(renderer)
{
    widget.setMouseTracking(true);
    widget.installEventFilter(this);
}

KRActiveTextTracker::~KRActiveTextTracker() = default;

void KRActiveTextTracker::setIdleCursor(Qt::CursorShape shape)
{
    m_idleCursor = shape;
    m_widget.setCursor(shape);
}

void KRActiveTextTracker::textDidChange(QPointF origin)
{
    m_origin = origin;
    m_spans.reset();
    m_hasTrackingAreas = false;
    m_trackingAreas.clear();
    m_pressedRange.reset();
    m_focusedRange.reset();
    _hover(std::nullopt);
}

// Spans

const KRRangeList& KRActiveTextTracker::_spans() const
{
    if (!m_spans)
        m_spans = reachableRanges(m_renderer.activeTextRanges(), m_renderer.text().size());
    return *m_spans;
}

QString KRActiveTextTracker::spanText(qsizetype number) const
{
    return number >= 0 && number < spanCount() ? KRSubstring(m_renderer.text(), span(number)) : QString();
}

QRect KRActiveTextTracker::spanRect(qsizetype number) const
{
    QRectF bounds;
    if (number >= 0 && number < spanCount()) {
        for (const QRectF& rect : m_renderer.rectArrayForRange(span(number)))
            bounds |= rect;
    }
    return bounds.translated(m_origin).toAlignedRect();
}

std::optional<KRRange> KRActiveTextTracker::_rangeAt(QPointF point) const
{
    const KRRange range = m_renderer.activeRangeAtPoint(point - m_origin);
    return range.location == KRNotFound ? std::nullopt : std::optional(range);
}

std::optional<qsizetype> KRActiveTextTracker::spanAt(QPoint point) const
{
    const std::optional<KRRange> range = _rangeAt(point);
    return range ? std::optional(_spans().indexOf(*range)) : std::nullopt;
}

std::optional<qsizetype> KRActiveTextTracker::focusedSpan() const
{
    return m_focusedRange ? std::optional(_spans().indexOf(*m_focusedRange)) : std::nullopt;
}

// Clicks

void KRActiveTextTracker::clickSpan(qsizetype number)
{
    if (number >= 0 && number < spanCount())
        _click(span(number));
}

void KRActiveTextTracker::_click(KRRange range)
{
    QString text = KRSubstring(m_renderer.text(), range);
    const KRActiveStringType type = KRAdditions::activeStringType(text);
    if (type == KRActiveStringTypeUsername)
        text.remove(0, 1);
    // A copy: the handler may destroy the widget, and this with it.
    if (const ClickHandler handler = m_clickHandler)
        handler(text, type);
}

// Events

bool KRActiveTextTracker::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != &m_widget)
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
        _mouseMoved(static_cast<QMouseEvent*>(event)->position());
        break;
    case QEvent::Leave:
    case QEvent::Hide:
    // Scrolled away from under the pointer.
    case QEvent::Move:
    case QEvent::WindowDeactivate:
        _hover(std::nullopt);
        break;
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            m_pressedRange = _rangeAt(static_cast<QMouseEvent*>(event)->position());
        break;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && m_pressedRange) {
            // The click may be the end of the widget.
            const QPointer<QObject> self = this;
            _mouseReleased(*static_cast<QMouseEvent*>(event));
            return !self;
        }
        break;
    case QEvent::KeyPress: {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier)
            return _moveFocus(1);
        if (key->key() == Qt::Key_Backtab
            || (key->key() == Qt::Key_Tab && key->modifiers() == Qt::ShiftModifier))
            return _moveFocus(-1);
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && m_focusedRange) {
            _click(*m_focusedRange);
            return true;
        }
        break;
    }
    case QEvent::FocusOut:
        // A menu or another window only borrows the focus.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason
            && static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason)
            _setFocusedRange(std::nullopt);
        break;
    default:
        break;
    }
    return false;
}

void KRActiveTextTracker::_mouseMoved(QPointF point)
{
    if (!m_hasTrackingAreas) {
        m_hasTrackingAreas = true;
        m_renderer.addTrackingAreasForView(*this, m_origin);
    }
    const bool isInside = QGuiApplication::applicationState() == Qt::ApplicationActive
        && std::any_of(m_trackingAreas.begin(), m_trackingAreas.end(), [point](const QRectF& area) {
               return area.contains(point);
           });
    _hover(isInside ? _rangeAt(point) : std::nullopt);
}

void KRActiveTextTracker::_hover(std::optional<KRRange> range)
{
    if (range == m_hoveredRange)
        return;
    m_hoveredRange = range;
    m_widget.setCursor(range ? Qt::PointingHandCursor : m_idleCursor);
    m_widget.update();
}

void KRActiveTextTracker::_mouseReleased(const QMouseEvent& event)
{
    const std::optional<KRRange> pressed = std::exchange(m_pressedRange, std::nullopt);
    if (_rangeAt(event.position()) == pressed)
        _click(*pressed);
}

// The keyboard's focus

bool KRActiveTextTracker::_moveFocus(qsizetype by)
{
    const qsizetype before = m_focusedRange ? *focusedSpan() : by > 0 ? -1 : spanCount();
    // Behind the last span, and before the first, the focus goes on to another widget.
    if (before + by < 0 || before + by >= spanCount())
        return false;
    focusSpan(before + by);
    return true;
}

void KRActiveTextTracker::focusSpan(qsizetype number)
{
    if (number < 0 || number >= spanCount())
        return;
    if (!m_widget.hasFocus())
        m_widget.setFocus(Qt::OtherFocusReason);
    _setFocusedRange(span(number));
    if (!QAccessible::isActive())
        return;
    if (QAccessibleInterface* const widget = QAccessible::queryAccessibleInterface(&m_widget)) {
        QAccessibleEvent event(widget->child(int(number)), QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

void KRActiveTextTracker::_setFocusedRange(std::optional<KRRange> range)
{
    if (range == m_focusedRange)
        return;
    m_focusedRange = range;
    m_widget.update();
}

// Drawing

void KRActiveTextTracker::draw(QPainter& painter) const
{
    if (m_hoveredRange) {
        const KRColor fallback = KRColorFromQColor(m_widget.palette().color(QPalette::Link));
        const KRColor color = m_renderer.foregroundAt(m_hoveredRange->location).value_or(fallback);
        for (const QRectF& rect : m_renderer.rectArrayForRange(*m_hoveredRange))
            painter.fillRect(QRectF(rect.left(), rect.bottom() - 1, rect.width(), 1).translated(m_origin),
                KRQColor(color));
    }
    if (!m_focusedRange)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(m_widget.palette().color(QPalette::Highlight), RingWidth));
    // All four sides show, also around a span at the edge of the widget.
    const QRectF room = QRectF(m_widget.rect()).adjusted(1, 1, -1, -1);
    for (const QRectF& rect : m_renderer.rectArrayForRange(*m_focusedRange))
        painter.drawRoundedRect(rect.translated(m_origin).adjusted(-1, 0, 1, 0) & room,
            RingRadius,
            RingRadius);
    painter.restore();
}
