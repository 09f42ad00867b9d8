#include "text/render/KRActiveTextRenderer.h"

#include "foundation/KRLog.h"
#include "text/render/KRColorConversion.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

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
        if (!clip.isNull() && point.y() + place.y() > clip.bottom())
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
        place.draw(painter, point);
        return;
    }
    const auto drawGlyphs = [&](qsizetype from, qsizetype to) {
        for (const QGlyphRun& glyphs : place.glyphRuns(int(from), int(to)))
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
    return place ? place->caretAt(point.x()) : 0;
}

KRRange KRActiveTextRenderer::activeRangeAtPoint(QPointF point) const
{
    const KRTextLayout::Line* place = _lineNearest(point.y());
    if (!place || !place->textRect().contains(point))
        return { KRNotFound, 0 };
    for (const KRRange& range : m_activeTextRanges.activeRanges()) {
        if (range.location >= place->end() || range.end() <= place->start())
            continue;
        const QList<QRectF> rects = place->rects(int(std::max<qsizetype>(range.location, place->start())),
            int(std::min<qsizetype>(range.end(), place->end())));
        if (std::any_of(rects.begin(), rects.end(), [&](const QRectF& rect) { return rect.contains(point); }))
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
        rects += place->rects(std::max(from, place->start()), std::min(to, place->end()));
    return rects;
}

QRectF KRActiveTextRenderer::caretRect(qsizetype character) const
{
    const auto lines = _shownLines();
    if (lines.empty())
        return {};
    const qsizetype place = std::clamp<qsizetype>(character, 0, m_attributedString.text().size());
    const auto behind = std::partition_point(lines.begin(),
        lines.end(),
        [place](const KRTextLayout::Line& line) { return line.end() <= place; });
    const KRTextLayout::Line& line = behind == lines.end() ? lines.back() : *behind;
    return { line.caretX(int(place)), line.y(), 0, line.bottom() - line.y() };
}

std::optional<KRColor> KRActiveTextRenderer::foregroundAt(qsizetype character) const
{
    const auto run = std::find_if(m_runs.begin(), m_runs.end(), [character](const auto& candidate) {
        return candidate.range.contains(character);
    });
    return run == m_runs.end() ? std::nullopt : std::optional(run->attributes.foreground);
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
