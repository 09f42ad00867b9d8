#include "text/render/KRActiveTextStyle.h"

#include <QFontInfo>
#include <QGuiApplication>

#include <algorithm>
#include <vector>

namespace {

constexpr int StandardPointSize = 12;
constexpr int SmallestStandardPixelSize = 13;
constexpr int EnlargedBy = 3;
constexpr int MessagePointSize = 12;

// The direction of the first letter that is not part of an active span: a text that opens with a name or a
// link is read in the direction of what its author says. Automatic when only spans have letters.
Qt::LayoutDirection directionOfText(const QString& text, const KRActiveTextRanges& ranges)
{
    constexpr qsizetype FarEnough = 512;
    const qsizetype length = std::min(text.size(), FarEnough);
    std::vector<bool> isActive(size_t(length), false);
    for (const KRRange& range : ranges.activeRanges()) {
        for (qsizetype at = range.location; at < std::min(range.end(), length); ++at)
            isActive[size_t(at)] = true;
    }
    for (qsizetype at = 0; at < length; ++at) {
        if (isActive[size_t(at)] || text.at(at).isLowSurrogate())
            continue;
        const bool isPair = text.at(at).isHighSurrogate() && at + 1 < text.size();
        const char32_t character
            = isPair ? QChar::surrogateToUcs4(text.at(at), text.at(at + 1)) : text.at(at).unicode();
        switch (QChar::direction(character)) {
        case QChar::DirL:
            return Qt::LeftToRight;
        case QChar::DirR:
        case QChar::DirAL:
            return Qt::RightToLeft;
        default:
            break;
        }
    }
    return Qt::LayoutDirectionAuto;
}

bool hasRightToLeft(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        const char16_t unit = c.unicode();
        // The blocks of the scripts that are written from right to left, the first halves of those beyond
        // the basic plane, and the control characters that ask for it.
        return unit >= 0x590
            && (unit <= 0x8FF || (unit >= 0xFB1D && unit <= 0xFDFF) || (unit >= 0xFE70 && unit <= 0xFEFF)
                || unit == 0xD802 || unit == 0xD803 || unit == 0xD83A || unit == 0xD83B || unit == 0x200F
                || unit == 0x202B || unit == 0x202E || unit == 0x2067);
    });
}

// Between words that are written from right to left, the sign of "@name" would go to the other side. What is
// ASCII by its nature is read from left to right, a hashtag as its own letters are.
QList<KRAttributedString::Isolate> isolatedSpans(const KRActiveTextRanges& ranges)
{
    QList<KRAttributedString::Isolate> spans;
    const KRRangeList& active = ranges.activeRanges();
    const qsizetype hashtagsStart = ranges.links().size();
    const qsizetype hashtagsEnd = hashtagsStart + ranges.hashtags().size();
    for (qsizetype at = 0; at < active.size(); ++at) {
        const bool isHashtag = at >= hashtagsStart && at < hashtagsEnd;
        spans.append({ active.at(at), isHashtag ? Qt::LayoutDirectionAuto : Qt::LeftToRight });
    }
    // Of spans that overlap the first one stays, of those that begin together the one a click means.
    std::stable_sort(spans.begin(), spans.end(), [](const auto& a, const auto& b) {
        return a.range.location < b.range.location;
    });
    qsizetype free = 0;
    spans.removeIf([&free](const KRAttributedString::Isolate& span) {
        if (span.range.location < free)
            return true;
        free = span.range.end();
        return false;
    });
    return spans;
}

KRAttributedString styledText(const QString& text,
    const KRActiveTextRanges& ranges,
    const QFont& font,
    const KRActiveTextColors& colors)
{
    KRAttributedString attributedString(text, font);
    attributedString.setDirection(directionOfText(text, ranges));
    if (hasRightToLeft(text))
        attributedString.setIsolates(isolatedSpans(ranges));
    const auto add = [&](const KRColor& foreground, const KRRangeList& list) {
        KRAddAttributesToAttributedStringForRanges(attributedString, { foreground }, list);
    };
    add(colors.links, ranges.links());
    add(colors.links, ranges.emailAddresses());
    add(colors.hashtags, ranges.hashtags());
    add(colors.usernames, ranges.usernames());
    add(colors.stockSymbols, ranges.stockSymbols());
    return attributedString;
}

} // namespace

int KRPointSizeForStatusCellFontSizePreference(int preference)
{
    switch (preference) {
    case 1:
        return 13;
    case 2:
        return 14;
    case 10:
        return 11;
    case 11:
        return 10;
    default:
        return StandardPointSize;
    }
}

QFont KRMessageFont(int size)
{
    QFont font = QGuiApplication::font();
    const int standard = std::max(SmallestStandardPixelSize, QFontInfo(font).pixelSize());
    font.setPixelSize((standard * size + StandardPointSize / 2) / StandardPointSize);
    return font;
}

QFont KRStatusFont(KRStatusTextSize size, const KRActiveTextStyle& style)
{
    const int pointSize = KRPointSizeForStatusCellFontSizePreference(style.statusCellFontSizePreference);
    return KRMessageFont(size == KRStatusTextSize::Enlarged ? pointSize + EnlargedBy : pointSize);
}

KRAttributedString AttributedStringForStatus(const QString& text,
    const KRActiveTextRanges& ranges,
    KRStatusTextSize size,
    const KRActiveTextStyle& style)
{
    return styledText(text, ranges, KRStatusFont(size, style), style.colors);
}

KRAttributedString AttributedStringForMessage(const QString& text,
    const KRActiveTextRanges& ranges,
    const KRActiveTextStyle& style)
{
    return styledText(text, ranges, KRMessageFont(MessagePointSize), style.colors);
}
