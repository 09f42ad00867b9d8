#include "text/render/KRTextLayout.h"

#include <algorithm>

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

// Lays the text out piece by piece, each in the layout that `layoutForPiece` answers, and hands each piece's
// layout, offset and number of lines to `take`. Returns the height of all.
template <class LayoutForPiece, class Take>
qreal layOutPieces(const KRAttributedString& attributedString,
    qreal width,
    LayoutForPiece layoutForPiece,
    Take take)
{
    const QString text = withLineSeparators(attributedString.text());
    const int textLength = int(text.size());
    const qreal lineWidth = std::clamp(width, 0.0, WidestLine);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // Decided once: the pieces of a text do not each have a direction.
    const bool isRightToLeft = attributedString.direction() == Qt::RightToLeft
        || (attributedString.direction() == Qt::LayoutDirectionAuto && text.isRightToLeft());
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);

    qreal y = 0;
    int start = 0;
    do {
        int length = pieceLength(text, start);
        const bool isLastPiece = start + length == textLength;
        QTextLayout& layout = layoutForPiece();
        layout.setFont(attributedString.font());
        layout.setTextOption(option);
        layout.setText(length == textLength ? text : text.mid(start, length));
        y = layOutLines(layout, lineWidth, y);
        int lineCount = layout.lineCount();
        if (!isLastPiece && lineCount > 1) {
            // What follows may belong on the last line too: the next piece begins with it.
            const QTextLine last = layout.lineAt(--lineCount);
            length = last.textStart();
            y = last.y();
        }
        take(layout, start, lineCount);
        start += length;
    } while (start < textLength);
    return y;
}

} // namespace

void KRTextLayout::layOut(const KRAttributedString& attributedString, qreal width)
{
    m_lines.clear();
    m_pieces.clear();
    layOutPieces(
        attributedString,
        width,
        [this]() -> QTextLayout& {
            m_pieces.push_back(std::make_unique<QTextLayout>());
            // Drawn again and again as a list scrolls.
            m_pieces.back()->setCacheEnabled(true);
            return *m_pieces.back();
        },
        [this](QTextLayout& layout, int offset, int lineCount) {
            for (int number = 0; number < lineCount; ++number)
                m_lines.push_back({ layout.lineAt(number), offset });
        });
}

qreal KRTextLayout::height(const KRAttributedString& attributedString, qreal width)
{
    // Kept, since setting a layout up costs as much as a short text. Never destroyed: fonts may be gone by
    // the time static objects are.
    static auto* shared = new QTextLayout;
    return layOutPieces(
        attributedString,
        width,
        []() -> QTextLayout& { return *shared; },
        [](QTextLayout&, int, int) {});
}
