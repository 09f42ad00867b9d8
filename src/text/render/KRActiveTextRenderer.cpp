#include "text/render/KRActiveTextRenderer.h"

#include "foundation/KRLog.h"
#include "text/render/KRColorConversion.h"

#include <QGlyphRun>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

// The rectangles of a part of the line, from left to right. Where directions mix, what is one piece of the
// text may be several on the line.
QList<QRectF> rectsInLine(const KRTextLayout::Line& place, int start, int end)
{
    const QTextLine& line = place.line;
    if (start == place.start() && end == place.end())
        return { line.naturalTextRect() };
    std::vector<std::pair<qreal, qreal>> pieces;
    for (int at = start - place.offset; at < end - place.offset; ++at)
        pieces.push_back(
            std::minmax(line.cursorToX(at, QTextLine::Leading), line.cursorToX(at, QTextLine::Trailing)));
    std::sort(pieces.begin(), pieces.end());
    constexpr qreal Touching = 0.5;
    QList<QRectF> rects;
    for (const auto& [left, right] : pieces) {
        if (right <= left)
            continue;
        if (!rects.isEmpty() && left <= rects.last().right() + Touching)
            rects.last().setRight(std::max(rects.last().right(), right));
        else
            rects.append(QRectF(left, line.y(), right - left, line.height()));
    }
    return rects;
}

} // namespace

KRActiveTextRenderer::KRActiveTextRenderer() = default;
KRActiveTextRenderer::~KRActiveTextRenderer() = default;

void KRActiveTextRenderer::setAttributedString(const KRAttributedString& attributedString,
    const KRActiveTextRanges& ranges)
{
    m_attributedString = attributedString;
    m_runs = attributedString.runs();
    m_activeTextRanges = ranges;
    _layOut();
}

void KRActiveTextRenderer::setContainerSize(QSizeF size)
{
    if (size == m_containerSize)
        return;
    m_containerSize = size;
    if (!m_attributedString.isNull())
        _layOut();
}

void KRActiveTextRenderer::_layOut()
{
    m_layout.layOut(m_attributedString, m_containerSize.width());
    const auto fits
        = [this](const KRTextLayout::Line& line) { return line.bottom() <= m_containerSize.height(); };
    const auto& lines = m_layout.lines();
    m_shownLines = std::partition_point(lines.begin(), lines.end(), fits) - lines.begin();
}

void KRActiveTextRenderer::drawAtPoint(QPainter& painter, QPointF point, const QRectF& clip) const
{
    for (const KRTextLayout::Line& place : _shownLines()) {
        if (!clip.isNull() && point.y() + place.line.y() > clip.bottom())
            break;
        if (clip.isNull() || point.y() + place.bottom() >= clip.top())
            _drawLine(painter, point, place);
    }
}

// Colours are given to the glyphs as they are drawn, not to the layout, which would shape every part on its
// own: that takes longer and moves letters at the seams.
void KRActiveTextRenderer::_drawLine(QPainter& painter, QPointF point, const KRTextLayout::Line& place) const
{
    auto run = std::partition_point(m_runs.begin(), m_runs.end(), [&](const auto& candidate) {
        return candidate.range.end() <= place.start();
    });
    if (run == m_runs.end() || run->range.location >= place.end()) {
        place.line.draw(&painter, point);
        return;
    }
    const auto drawGlyphs = [&](qsizetype from, qsizetype to) {
        for (const QGlyphRun& glyphs : place.line.glyphRuns(int(from) - place.offset, int(to - from)))
            painter.drawGlyphRun(point, glyphs);
    };
    const QPen plainPen = painter.pen();
    qsizetype at = place.start();
    for (; run != m_runs.end() && run->range.location < place.end(); ++run) {
        const qsizetype from = std::max<qsizetype>(run->range.location, place.start());
        const qsizetype to = std::min<qsizetype>(run->range.end(), place.end());
        if (at < from)
            drawGlyphs(at, from);
        painter.setPen(KRQColor(run->attributes.foreground));
        drawGlyphs(from, to);
        painter.setPen(plainPen);
        at = to;
    }
    if (at < place.end())
        drawGlyphs(at, place.end());
}

std::span<const KRTextLayout::Line> KRActiveTextRenderer::_shownLines() const
{
    return std::span(m_layout.lines()).first(size_t(m_shownLines));
}

const KRTextLayout::Line* KRActiveTextRenderer::_lineNearest(qreal y) const
{
    const auto lines = _shownLines();
    const auto below = std::partition_point(lines.begin(), lines.end(), [y](const KRTextLayout::Line& place) {
        return place.bottom() <= y;
    });
    if (lines.empty())
        return nullptr;
    return below == lines.end() ? &lines.back() : &*below;
}

qsizetype KRActiveTextRenderer::characterIndexAtPoint(QPointF point) const
{
    const KRTextLayout::Line* place = _lineNearest(point.y());
    return place ? place->offset + place->line.xToCursor(point.x(), QTextLine::CursorBetweenCharacters) : 0;
}

KRRange KRActiveTextRenderer::activeRangeAtPoint(QPointF point) const
{
    const KRTextLayout::Line* place = _lineNearest(point.y());
    if (!place || !place->line.naturalTextRect().contains(point))
        return { KRNotFound, 0 };
    const qsizetype character
        = place->offset + place->line.xToCursor(point.x(), QTextLine::CursorOnCharacter);
    for (const KRRange& range : m_activeTextRanges.activeRanges()) {
        if (range.contains(character))
            return range;
    }
    return { KRNotFound, 0 };
}

QList<QRectF> KRActiveTextRenderer::rectArrayForRange(KRRange range) const
{
    const auto lines = _shownLines();
    const qsizetype last = m_attributedString.text().size();
    const int from = int(std::clamp<qsizetype>(range.location, 0, last));
    const int to = from + int(std::clamp<qsizetype>(range.length, 0, last - from));
    QList<QRectF> rects;
    auto place = std::partition_point(lines.begin(), lines.end(), [from](const KRTextLayout::Line& line) {
        return line.end() <= from;
    });
    for (; place != lines.end() && place->start() < to; ++place)
        rects += rectsInLine(*place, std::max(from, place->start()), std::min(to, place->end()));
    return rects;
}

void KRActiveTextRenderer::addTrackingAreasForView(KRTrackingAreaView& view, QPointF offset) const
{
    for (const KRRange& range : m_activeTextRanges.activeRanges()) {
        for (const QRectF& rect : rectArrayForRange(range))
            view.addTrackingArea(rect.translated(offset));
    }
}

int KRActiveTextRenderer::heightOfAttributedString(const KRAttributedString& attributedString,
    qreal wrappedToWidth)
{
    if (attributedString.isNull()) {
        KRLog(QStringLiteral("-heightOfAttributedString: passed nil - this is VERY bad"));
        return 0;
    }
    return int(KRTextLayout::height(attributedString, std::trunc(wrappedToWidth)));
}
