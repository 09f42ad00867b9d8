#include "text/KRActiveTextRanges.h"

#include "text/KRRegex.h"

#include <array>
#include <string_view>

// A status is mostly text without active spans, so each kind looks for the characters its pattern cannot do
// without ("#", "@", "$", "://", "www.") and asks the expression only there. For links and e-mail addresses
// this is also what bounds the time: run over a long word, their whole patterns try each of its characters as
// the beginning, and the link pattern each way of cutting the scheme in two, which takes ICU hours for a
// draft of a few thousand letters. Both patterns fall into a part before the mandatory characters and a part
// behind them, and neither part depends on what the other matched; so the part behind is matched first, once.
namespace {

constexpr std::u16string_view schemeEnd = u"://";
constexpr std::u16string_view webPrefix = u"www.";

// Where the piece stands in the pattern, which must hold it. std::u16string_view::find() is no constant
// expression for g++ under UndefinedBehaviorSanitizer.
constexpr size_t offsetOf(std::u16string_view piece, std::u16string_view pattern)
{
    size_t offset = 0;
    while (pattern.substr(offset, piece.size()) != piece)
        ++offset;
    return offset;
}

// What follows "://" or "www.".
constexpr std::u16string_view endOfPrefixPattern = u"(?:www\\.))";
constexpr std::u16string_view linkBodyPattern
    = std::u16string_view(KRLinkRegex)
          .substr(offsetOf(endOfPrefixPattern, KRLinkRegex) + endOfPrefixPattern.size());
// Where a scheme or "www." may begin.
constexpr std::u16string_view letterAtWordBoundaryPattern = u"\\b[A-Za-z]";

// What follows the local part, from the "@" on.
constexpr std::u16string_view emailDomainPattern
    = std::u16string_view(KREmailRegex).substr(offsetOf(u"@", KREmailRegex));

constexpr bool isASCIILetter(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

constexpr bool isASCIILetterOrDigit(char16_t unit)
{
    return isASCIILetter(unit) || (unit >= u'0' && unit <= u'9');
}

constexpr bool isASCIIWordUnit(char16_t unit)
{
    return isASCIILetterOrDigit(unit) || unit == u'_';
}

constexpr bool isSchemeUnit(char16_t unit)
{
    return isASCIILetterOrDigit(unit) || unit == u'-';
}

constexpr bool isEmailLocalPartUnit(char16_t unit)
{
    return isASCIILetterOrDigit(unit)
        || std::u16string_view(u"_-+.!&").find(unit) != std::u16string_view::npos;
}

QStringView viewOf(std::u16string_view text)
{
    return { text.data(), static_cast<qsizetype>(text.size()) };
}

// The expressions of one thread.
struct Expressions {
    KRRegex& hashtag = KRRegex::forThread(KRHashTagRegex);
    KRRegex& username = KRRegex::forThread(KRTwitterUsernameRegex);
    KRRegex& stockSymbol = KRRegex::forThread(KRStockSymbolRegex);
    KRRegex& linkBody = KRRegex::forThread(viewOf(linkBodyPattern));
    KRRegex& letterAtWordBoundary = KRRegex::forThread(viewOf(letterAtWordBoundaryPattern));
    KRRegex& emailDomain = KRRegex::forThread(viewOf(emailDomainPattern));

    static Expressions& forThread()
    {
        thread_local Expressions expressions;
        return expressions;
    }
};

KRRange rangeBetween(qsizetype location, qsizetype end)
{
    return { location, end - location };
}

// Finds the matches of a pattern that begins with its mandatory character.
class MarkedWordFinder {
public:
    MarkedWordFinder(QStringView text, KRRegex& expression, char16_t mark)
        : m_text(text)
        , m_expression(expression)
        , m_mark(mark)
    {
    }

    std::optional<KRRange> firstFrom(qsizetype from)
    {
        const qsizetype position = m_text.indexOf(m_mark, from);
        if (position < 0)
            return std::nullopt;
        if (const auto word = _plainWordAt(position))
            return word;
        if (!m_hasSetText) {
            m_expression.setText(m_text);
            m_hasSetText = true;
        }
        return m_expression.firstMatch(position);
    }

private:
    // Most hashtags and names stand behind a space and are of ASCII letters: no expression need be asked.
    [[nodiscard]] std::optional<KRRange> _plainWordAt(qsizetype mark) const
    {
        if (m_mark == u'$' || (mark > 0 && m_text[mark - 1] != u' '))
            return std::nullopt;
        qsizetype end = mark + 1;
        while (end < m_text.size() && isASCIIWordUnit(m_text[end].unicode()))
            ++end;
        if (end == mark + 1 || (end < m_text.size() && m_text[end].unicode() >= 128))
            return std::nullopt;
        return rangeBetween(mark, end);
    }

    QStringView m_text;
    KRRegex& m_expression;
    char16_t m_mark;
    bool m_hasSetText = false;
};

class EmailFinder {
public:
    explicit EmailFinder(QStringView text)
        : m_text(text)
    {
    }

    std::optional<KRRange> firstFrom(qsizetype from)
    {
        qsizetype at = m_text.indexOf(u'@', from);
        for (; at >= 0; at = m_text.indexOf(u'@', at + 1)) {
            qsizetype start = at;
            while (start > from && isEmailLocalPartUnit(m_text[start - 1].unicode()))
                --start;
            if (start == at)
                continue;
            if (const auto domain = _domainAt(at))
                return rangeBetween(start, domain->end());
        }
        return std::nullopt;
    }

private:
    std::optional<KRRange> _domainAt(qsizetype position)
    {
        KRRegex& expression = Expressions::forThread().emailDomain;
        if (!m_hasSetText) {
            expression.setText(m_text);
            m_hasSetText = true;
        }
        return expression.matchAt(position);
    }

    QStringView m_text;
    bool m_hasSetText = false;
};

class LinkFinder {
public:
    explicit LinkFinder(QStringView text)
        : m_text(text)
    {
    }

    // Neither prefix can hold a part of the other, so the first one that has a body begins the first match.
    std::optional<KRRange> firstFrom(qsizetype from)
    {
        qsizetype scheme = _schemeEndFrom(from);
        qsizetype web = _webPrefixFrom(from, from);
        while (scheme >= 0 || web >= 0) {
            std::optional<KRRange> link;
            if (web < 0 || (scheme >= 0 && scheme < web)) {
                link = _linkWithSchemeBefore(scheme, from);
                scheme = _schemeEndFrom(scheme + 1);
            } else {
                link = _linkWithWebPrefixAt(web);
                web = _webPrefixFrom(web + 1, from);
            }
            if (link)
                return link;
        }
        return std::nullopt;
    }

private:
    // Both look for the rarest character of what they seek.
    [[nodiscard]] qsizetype _schemeEndFrom(qsizetype position) const
    {
        do {
            position = m_text.indexOf(schemeEnd[0], position);
        } while (position >= 0 && !m_text.sliced(position).startsWith(viewOf(schemeEnd)) && ++position > 0);
        return position;
    }

    [[nodiscard]] qsizetype _webPrefixFrom(qsizetype position, qsizetype from) const
    {
        constexpr auto length = static_cast<qsizetype>(webPrefix.size());
        qsizetype dot = position + length - 2;
        for (;;) {
            dot = m_text.indexOf(webPrefix.back(), dot + 1);
            if (dot < 0)
                return -1;
            const qsizetype start = dot + 1 - length;
            if (start >= from && m_text.sliced(start).startsWith(viewOf(webPrefix)))
                return start;
        }
    }

    // A scheme reaches back over letters, digits and hyphens to the first letter that begins a word.
    std::optional<KRRange> _linkWithSchemeBefore(qsizetype colon, qsizetype from)
    {
        qsizetype start = colon;
        while (start > from && isSchemeUnit(m_text[start - 1].unicode()))
            --start;
        if (start == colon || m_text[colon - 1] == u'-')
            return std::nullopt;
        _setText();
        const auto body = m_expressions.linkBody.matchAt(colon + static_cast<qsizetype>(schemeEnd.size()));
        if (!body)
            return std::nullopt;
        const auto first = _firstLetterOfWord(rangeBetween(start, colon));
        if (!first)
            return std::nullopt;
        return rangeBetween(*first, body->end());
    }

    // In nearly every text a space stands before the scheme, and no expression need be asked.
    std::optional<qsizetype> _firstLetterOfWord(KRRange scheme)
    {
        const qsizetype start = scheme.location;
        if (isASCIILetter(m_text[start].unicode()) && (start == 0 || m_text[start - 1] == u' '))
            return start;
        const auto letter = m_expressions.letterAtWordBoundary.firstMatchInRange(scheme);
        return letter ? std::optional(letter->location) : std::nullopt;
    }

    std::optional<KRRange> _linkWithWebPrefixAt(qsizetype position)
    {
        _setText();
        if (!m_expressions.letterAtWordBoundary.matchAt(position))
            return std::nullopt;
        const auto body = m_expressions.linkBody.matchAt(position + static_cast<qsizetype>(webPrefix.size()));
        if (!body)
            return std::nullopt;
        return rangeBetween(position, body->end());
    }

    void _setText()
    {
        if (m_hasSetText)
            return;
        m_expressions.linkBody.setText(m_text);
        m_expressions.letterAtWordBoundary.setText(m_text);
        m_hasSetText = true;
    }

    QStringView m_text;
    Expressions& m_expressions = Expressions::forThread();
    bool m_hasSetText = false;
};

// Finds the matches of any other pattern.
class PlainFinder {
public:
    PlainFinder(QStringView text, QStringView pattern)
        : m_expression(KRRegex::forThread(pattern))
    {
        m_expression.setText(text);
    }

    std::optional<KRRange> firstFrom(qsizetype from) { return m_expression.firstMatch(from); }

private:
    KRRegex& m_expression;
};

template <class Finder>
KRRangeList allRanges(Finder finder, QStringView text)
{
    KRRangeList ranges;
    qsizetype position = 0;
    while (position <= text.size()) {
        const std::optional<KRRange> match = finder.firstFrom(position);
        if (!match)
            break;
        ranges.append(*match);
        // A pattern of somebody else may match nothing at all; the search goes on all the same.
        position = match->length > 0 ? match->end() : match->end() + 1;
    }
    return ranges;
}

MarkedWordFinder hashtagFinder(QStringView text)
{
    return { text, Expressions::forThread().hashtag, u'#' };
}

MarkedWordFinder usernameFinder(QStringView text)
{
    return { text, Expressions::forThread().username, u'@' };
}

MarkedWordFinder stockSymbolFinder(QStringView text)
{
    return { text, Expressions::forThread().stockSymbol, u'$' };
}

// The characters without which there is no span of a kind. Most texts hold none, and one pass tells.
enum Mark : unsigned char { HashMark = 1, AtMark = 2, DollarMark = 4, LinkMark = 8 };

unsigned marksIn(QStringView text)
{
    static constexpr auto marks = [] {
        std::array<unsigned char, 128> table {};
        table[u'#'] = HashMark;
        table[u'@'] = AtMark;
        table[u'$'] = DollarMark;
        table[u':'] = LinkMark;
        table[u'.'] = LinkMark;
        return table;
    }();
    unsigned found = 0;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        found |= unit < marks.size() ? marks[unit] : 0U;
    }
    return found;
}

template <class Finder>
bool matchesWhole(Finder finder, QStringView text)
{
    return finder.firstFrom(0) == KRRange { 0, text.size() };
}

} // namespace

namespace KRAdditions {

KRRangeList arrayOfRangesForRegex(QStringView text, QStringView pattern)
{
    if (pattern == QStringView(KRLinkRegex))
        return allRanges(LinkFinder(text), text);
    if (pattern == QStringView(KRHashTagRegex))
        return allRanges(hashtagFinder(text), text);
    if (pattern == QStringView(KRTwitterUsernameRegex))
        return allRanges(usernameFinder(text), text);
    if (pattern == QStringView(KRStockSymbolRegex))
        return allRanges(stockSymbolFinder(text), text);
    if (pattern == QStringView(KREmailRegex))
        return allRanges(EmailFinder(text), text);
    return allRanges(PlainFinder(text, pattern), text);
}

KRActiveStringType activeStringType(QStringView text)
{
    if (text.isEmpty())
        return KRActiveStringTypeNone;
    if (matchesWhole(LinkFinder(text), text))
        return KRActiveStringTypeLink;
    if (matchesWhole(hashtagFinder(text), text))
        return KRActiveStringTypeHashtag;
    if (matchesWhole(usernameFinder(text), text))
        return KRActiveStringTypeUsername;
    if (matchesWhole(stockSymbolFinder(text), text))
        return KRActiveStringTypeStockSymbol;
    if (matchesWhole(EmailFinder(text), text))
        return KRActiveStringTypeEmailAddress;
    return KRActiveStringTypeNone;
}

} // namespace KRAdditions

KRActiveTextRanges::KRActiveTextRanges(QStringView text)
{
    const unsigned marks = marksIn(text);
    if (marks == 0)
        return;
    if (marks & LinkMark)
        m_links = allRanges(LinkFinder(text), text);
    if (marks & HashMark)
        m_hashtags = allRanges(hashtagFinder(text), text);
    if (marks & AtMark) {
        m_usernames = allRanges(usernameFinder(text), text);
        m_emailAddresses = allRanges(EmailFinder(text), text);
    }
    if (marks & DollarMark)
        m_stockSymbols = allRanges(stockSymbolFinder(text), text);
    // Most texts have spans of one kind at most, whose list is shared.
    for (const KRRangeList* ranges :
        { &m_links, &m_hashtags, &m_usernames, &m_stockSymbols, &m_emailAddresses }) {
        if (!ranges->isEmpty())
            m_activeRanges += *ranges;
    }
}
