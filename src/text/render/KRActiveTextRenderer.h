#pragma once

#include "text/KRActiveTextRanges.h"
#include "text/render/KRAttributedString.h"
#include "text/render/KRTextLayout.h"

#include <QList>
#include <QRectF>

#include <limits>
#include <optional>
#include <span>

class QPainter;

/// What a view offers that wants to know when the pointer is over an active span: it is told the rectangles,
/// in its own coordinates, and watches them as it likes.
class KRTrackingAreaView {
public:
    virtual ~KRTrackingAreaView() = default;
    virtual void addTrackingArea(const QRectF& rect) = 0;
};

/// Lays out one styled text in a container, draws it, and tells what is where in it. Coordinates are points
/// from the container's top left, y growing downward; indexes are UTF-16 code units. Main thread.
class KRActiveTextRenderer {
public:
    /// The height of a container that takes any text.
    static constexpr qreal UnboundedHeight = std::numeric_limits<float>::max();

    KRActiveTextRenderer();
    KRActiveTextRenderer(const KRActiveTextRenderer&) = delete;
    KRActiveTextRenderer& operator=(const KRActiveTextRenderer&) = delete;
    ~KRActiveTextRenderer();

    /// Replaces the text and lays it out.
    void setAttributedString(const KRAttributedString& attributedString, const KRActiveTextRanges& ranges);
    QString text() const { return m_attributedString.text(); }
    const KRActiveTextRanges& activeTextRanges() const { return m_activeTextRanges; }

    /// The text wraps at the width; lines that do not fit the height are not shown.
    void setContainerSize(QSizeF size);
    QSizeF containerSize() const { return m_containerSize; }

    /// Draws the text, its top left at the point, in the painter's pen where no attribute says otherwise.
    /// Lines outside the clip, when one is given, are left out.
    void drawAtPoint(QPainter& painter, QPointF point, const QRectF& clip = {}) const;

    /// Where a caret goes for a click there: before the nearest character, or after it when the point is past
    /// its middle.
    [[nodiscard]] qsizetype characterIndexAtPoint(QPointF point) const;
    /// The first of the active ranges that has a character under the point; its location is KRNotFound when
    /// there is none.
    [[nodiscard]] KRRange activeRangeAtPoint(QPointF point) const;
    /// The range's rectangles, one for each line it touches; more where a line's directions mix.
    [[nodiscard]] QList<QRectF> rectArrayForRange(KRRange range) const;
    /// Where a caret before the character stands: of no width, as tall as its line.
    [[nodiscard]] QRectF caretRect(qsizetype character) const;
    /// The colour the character is given; nothing when it is drawn in the painter's.
    [[nodiscard]] std::optional<KRColor> foregroundAt(qsizetype character) const;
    /// Hands every rectangle of every active range, moved by the offset, to the view.
    void addTrackingAreasForView(KRTrackingAreaView& view, QPointF offset) const;

    /// The height of the text wrapped to the width, both cut to whole points. No text is logged and has none.
    static int heightOfAttributedString(const KRAttributedString& attributedString, qreal wrappedToWidth);

private:
    void _layOut();
    void _drawLine(QPainter& painter, QPointF point, const KRTextLayout::Line& place) const;
    std::span<const KRTextLayout::Line> _shownLines() const;
    const KRTextLayout::Line* _lineNearest(qreal y) const;

    KRAttributedString m_attributedString;
    QList<KRAttributedString::Run> m_runs;
    KRActiveTextRanges m_activeTextRanges;
    KRTextLayout m_layout;
    QSizeF m_containerSize { UnboundedHeight, UnboundedHeight };
    qsizetype m_shownLines = 0;
};
