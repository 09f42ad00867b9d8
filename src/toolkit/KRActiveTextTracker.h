#pragma once

#include "text/KRActiveTextRanges.h"
#include "text/render/KRActiveTextRenderer.h"

#include <QObject>
#include <QRect>

#include <functional>
#include <optional>

class QMouseEvent;

/// Lets the user reach the active spans of a text that a widget draws: with the pointer (a hand over a span;
/// a press and a release on the same one is a click), with the keyboard while the widget has the focus (Tab
/// and Shift+Tab from span to span and on, Enter clicks), and through assistive technology. A child of its
/// widget, whose events it watches. Main thread.
class KRActiveTextTracker : public QObject, private KRTrackingAreaView {
    Q_OBJECT

public:
    /// What was clicked, and what it is; a user name comes without its "@". The handler may destroy the
    /// widget.
    using ClickHandler = std::function<void(const QString& text, KRActiveStringType type)>;

    /// The renderer lives as long as the widget.
    KRActiveTextTracker(QWidget& widget, const KRActiveTextRenderer& renderer);
    ~KRActiveTextTracker() override;

    void setClickHandler(ClickHandler handler) { m_clickHandler = std::move(handler); }
    /// The pointer's look where there is no span.
    void setIdleCursor(Qt::CursorShape shape);

    /// To be called when the renderer has another text, lays it out at another size, or is drawn elsewhere.
    void textDidChange(QPointF origin);
    QPointF origin() const { return m_origin; }

    /// Draws a line below the span under the pointer and a ring around the one with the focus.
    void draw(QPainter& painter) const;

    // The spans that a click can reach, in text order.
    [[nodiscard]] qsizetype spanCount() const { return _spans().size(); }
    [[nodiscard]] KRRange span(qsizetype number) const { return _spans().value(number, { KRNotFound, 0 }); }
    [[nodiscard]] QString spanText(qsizetype number) const;
    /// In the widget's coordinates, around all lines of the span.
    [[nodiscard]] QRect spanRect(qsizetype number) const;
    /// The span under the point of the widget.
    [[nodiscard]] std::optional<qsizetype> spanAt(QPoint point) const;
    [[nodiscard]] std::optional<qsizetype> focusedSpan() const;
    void focusSpan(qsizetype number);
    void clickSpan(qsizetype number);

    /// What the mouse went down on no longer becomes a click: the movement meant something else.
    void cancelPress() { m_pressedRange = {}; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addTrackingArea(const QRectF& rect) override { m_trackingAreas.append(rect); }
    const KRRangeList& _spans() const;
    void _hover(std::optional<KRRange> range);
    void _mouseMoved(QPointF point);
    void _mouseReleased(const QMouseEvent& event);
    bool _moveFocus(qsizetype by);
    void _setFocusedRange(std::optional<KRRange> range);
    void _click(KRRange range);
    std::optional<KRRange> _rangeAt(QPointF point) const;

    QWidget& m_widget;
    const KRActiveTextRenderer& m_renderer;
    ClickHandler m_clickHandler;
    Qt::CursorShape m_idleCursor = Qt::ArrowCursor;
    QPointF m_origin;
    // Found when they are first asked for: most texts are never under the pointer.
    mutable std::optional<KRRangeList> m_spans;
    bool m_hasTrackingAreas = false;
    QList<QRectF> m_trackingAreas;
    std::optional<KRRange> m_hoveredRange;
    std::optional<KRRange> m_pressedRange;
    std::optional<KRRange> m_focusedRange;
};
