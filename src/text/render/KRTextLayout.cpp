#include "text/render/KRTextLayout.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

// What Qt can take as a width.
constexpr qreal WidestLine = 1 << 20;
// Short enough for a quadratic layout to be quick, and many times the length of the posts of most services,
// which are thus laid out as one piece.
constexpr int LongestPiece = 2000;

// Qt breaks lines at U+2028 only. Every character stays one code unit, so that ranges hold.
QString withLineSeparators(const QString& text)
{
    const auto isOtherBreak = [](QChar c) {
        return c == u'\n' || c == u'\r' || c == QChar::ParagraphSeparator || c == QChar(0x85);
    };
    if (std::none_of(text.begin(), text.end(), isOtherBreak))
        return text;
    constexpr QChar ZeroWidthSpace(0x200B);
    QString result = text;
    for (qsizetype at = 0; at < result.size(); ++at) {
        if (!isOtherBreak(result.at(at)))
            continue;
        const bool isFirstOfPair
            = result.at(at) == u'\r' && at + 1 < result.size() && result.at(at + 1) == u'\n';
        result[at] = isFirstOfPair ? ZeroWidthSpace : QChar(QChar::LineSeparator);
    }
    return result;
}

int pieceLength(const QString& text, int start)
{
    const int rest = int(text.size()) - start;
    if (rest <= LongestPiece)
        return rest;
    return text.at(start + LongestPiece).isLowSurrogate() ? LongestPiece - 1 : LongestPiece;
}

qreal layOutLines(QTextLayout& layout, qreal width, qreal y)
{
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition({ 0, y });
        y += line.height();
    }
    layout.endLayout();
    return y;
}

} // namespace

// The text and its layout

int KRTextLayout::PositionMap::toLayout(int position) const
{
    const auto behind = std::upper_bound(m_insertions.begin(), m_insertions.end(), position);
    return position + int(behind - m_insertions.begin());
}

int KRTextLayout::PositionMap::toText(int position) const
{
    // The number of control characters in front; the one of number n is laid out n behind its place.
    int low = 0;
    int high = int(m_insertions.size());
    while (low < high) {
        const int middle = (low + high) / 2;
        if (m_insertions[size_t(middle)] + middle < position)
            low = middle + 1;
        else
            high = middle;
    }
    return position - low;
}

int KRTextLayout::PositionMap::isolateAround(int position) const
{
    // They come in pairs.
    const int insertionsInFront = position - toText(position);
    return insertionsInFront % 2 == 1 ? m_insertions[size_t(insertionsInFront) - 1] + insertionsInFront - 1
                                      : -1;
}

QString KRTextLayout::_textToLayOut(const KRAttributedString& attributedString, PositionMap& positions)
{
    constexpr QChar LeftToRightIsolate(0x2066);
    constexpr QChar RightToLeftIsolate(0x2067);
    constexpr QChar FirstStrongIsolate(0x2068);
    constexpr QChar PopDirectionalIsolate(0x2069);
    positions.clear();
    QString text = withLineSeparators(attributedString.text());
    if (attributedString.isolates().isEmpty())
        return text;
    QString result;
    result.reserve(text.size() + 2 * attributedString.isolates().size());
    qsizetype taken = 0;
    const auto insert = [&](qsizetype position, QChar control) {
        result += QStringView(text).sliced(taken, position - taken);
        result += control;
        taken = position;
        positions.add(int(position));
    };
    for (const KRAttributedString::Isolate& isolate : attributedString.isolates()) {
        insert(isolate.range.location,
            isolate.direction == Qt::LeftToRight       ? LeftToRightIsolate
                : isolate.direction == Qt::RightToLeft ? RightToLeftIsolate
                                                       : FirstStrongIsolate);
        insert(isolate.range.end(), PopDirectionalIsolate);
    }
    result += QStringView(text).sliced(taken);
    return result;
}

// Lays the text out piece by piece, each in the layout that `layoutForPiece` answers, and hands each piece's
// layout, offset and number of lines to `take`. Returns the height of all.
template <class LayoutForPiece, class Take>
qreal KRTextLayout::_layOutPieces(const KRAttributedString& attributedString,
    qreal width,
    PositionMap& positions,
    LayoutForPiece layoutForPiece,
    Take take)
{
    const QString text = _textToLayOut(attributedString, positions);
    const int textLength = int(text.size());
    const qreal lineWidth = width > 0 ? std::min(width, WidestLine) : 0;
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // Decided once: the pieces of a text do not each have a direction.
    const bool isRightToLeft = attributedString.direction() == Qt::RightToLeft
        || (attributedString.direction() == Qt::LayoutDirectionAuto && text.isRightToLeft());
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    // A line begins at the side its text is read from, which an unbounded width does not have.
    if (isRightToLeft && lineWidth < WidestLine)
        option.setAlignment(Qt::AlignRight);

    qreal y = 0;
    int start = 0;
    do {
        int length = pieceLength(text, start);
        const bool isLastPiece = start + length == textLength;
        // A range that was cut goes on being isolated.
        const int isolate = positions.isolateAround(start);
        const QString opening = isolate < 0 ? QString() : QString(text.at(isolate));
        const int openingLength = int(opening.size());
        QTextLayout& layout = layoutForPiece();
        layout.setFont(attributedString.font());
        layout.setTextOption(option);
        layout.setText(length == textLength ? text : opening + text.mid(start, length));
        y = layOutLines(layout, lineWidth, y);
        int lineCount = layout.lineCount();
        if (!isLastPiece && lineCount > 1 && layout.lineAt(lineCount - 1).textStart() > openingLength) {
            // What follows may belong on the last line too: the next piece begins with it.
            const QTextLine last = layout.lineAt(--lineCount);
            length = last.textStart() - openingLength;
            y = last.y();
        }
        take(layout, start - openingLength, lineCount);
        start += length;
    } while (start < textLength);
    return y;
}

void KRTextLayout::layOut(const KRAttributedString& attributedString, qreal width)
{
    m_lines.clear();
    m_pieces.clear();
    _layOutPieces(
        attributedString,
        width,
        m_positions,
        [this]() -> QTextLayout& {
            m_pieces.push_back(std::make_unique<QTextLayout>());
            // Drawn again and again as a list scrolls.
            m_pieces.back()->setCacheEnabled(true);
            return *m_pieces.back();
        },
        [this](QTextLayout& layout, int offset, int lineCount) {
            for (int number = 0; number < lineCount; ++number)
                _addLine(Line(layout.lineAt(number), offset, m_positions));
        });
}

void KRTextLayout::_addLine(Line line)
{
    // One that begins a piece may have the opening of an isolate in front of what belongs to it.
    if (!m_lines.empty())
        line.m_start = std::max(line.m_start, m_lines.back().m_end);
    m_lines.push_back(line);
}

qreal KRTextLayout::height(const KRAttributedString& attributedString, qreal width)
{
    // Kept, since setting a layout up costs as much as a short text. Never destroyed: fonts may be gone by
    // the time static objects are.
    static auto* shared = new QTextLayout;
    PositionMap positions;
    return _layOutPieces(
        attributedString,
        width,
        positions,
        []() -> QTextLayout& { return *shared; },
        [](QTextLayout&, int, int) {});
}

// A line

KRTextLayout::Line::Line(const QTextLine& line, int offset, const PositionMap& positions)
    : m_line(line)
    , m_offset(offset)
    , m_positions(&positions)
    , m_start(positions.toText(offset + line.textStart()))
    , m_end(positions.toText(offset + line.textStart() + line.textLength()))
{
}

int KRTextLayout::Line::caretAt(qreal x) const
{
    return std::max(m_start,
        m_positions->toText(m_offset + m_line.xToCursor(x, QTextLine::CursorBetweenCharacters)));
}

qreal KRTextLayout::Line::caretX(int position) const
{
    return m_line.cursorToX(_toLine(position));
}

QList<QRectF> KRTextLayout::Line::rects(int start, int end) const
{
    if (start >= end)
        return {};
    if (start == m_start && end == m_end)
        return { textRect() };
    // Not from the places of carets, which at a change of direction are on the other side.
    std::vector<std::pair<qreal, qreal>> pieces;
    for (const QGlyphRun& run : glyphRuns(start, end))
        pieces.emplace_back(run.boundingRect().left(), run.boundingRect().right());
    std::sort(pieces.begin(), pieces.end());
    constexpr qreal Touching = 0.5;
    QList<QRectF> rects;
    for (const auto& [left, right] : pieces) {
        if (right <= left)
            continue;
        if (!rects.isEmpty() && left <= rects.last().right() + Touching)
            rects.last().setRight(std::max(rects.last().right(), right));
        else
            rects.append(QRectF(left, m_line.y(), right - left, m_line.height()));
    }
    return rects;
}

QList<QGlyphRun> KRTextLayout::Line::glyphRuns(int start, int end) const
{
    const int first = _toLine(start);
    return m_line.glyphRuns(first, _toLine(end) - first);
}
