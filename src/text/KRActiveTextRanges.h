#pragma once

#include "foundation/KRRange.h"

#include <QStringView>

/// The patterns of active text, for ICU's regular expressions without options; the whole match is the span.
inline constexpr char16_t KRLinkRegex[]
    = u"\\b(?:(?:[A-Za-z]+(?:[A-Za-z0-9\\-]*[A-Za-z0-9]+)?:\\/\\/)|(?:www\\.))"
      u"(?:(?:[^ \"\n\\t\\]\\[\\}\\{\\(\\)`]+[\\(][^ \"\n\\t\\]\\[\\}\\{\\(\\)`]+[\\)])"
      u"|(?:[^ \"\n\\t\\]\\[\\}\\{`]+[^ \"\n\\t\\]\\[\\}\\{\\(\\)`.,]))";
inline constexpr char16_t KRHashTagRegex[] = u"\\B\\#(\\w)+";
inline constexpr char16_t KRTwitterUsernameRegex[] = u"\\B@[a-zA-Z0-9_]+";
inline constexpr char16_t KRStockSymbolRegex[] = u"\\B\\$[A-Za-z]{1,5}";
inline constexpr char16_t KREmailRegex[] = u"[a-zA-Z0-9_\\-+\\.!\\&]+@([a-zA-Z0-9\\-_]+\\.)+[a-zA-Z]{2,7}";

/// What a whole piece of text is.
enum KRActiveStringType : int {
    KRActiveStringTypeNone = 0,
    KRActiveStringTypeLink = 1,
    KRActiveStringTypeHashtag = 2,
    KRActiveStringTypeUsername = 3,
    KRActiveStringTypeStockSymbol = 4,
    KRActiveStringTypeEmailAddress = 5,
};

namespace KRAdditions {

/// All matches of the pattern in text order, in UTF-16 code units, none overlapping another. The patterns
/// above are found in time proportional to the text's length whatever the text; another pattern takes what
/// ICU takes for it. Any thread.
[[nodiscard]] KRRangeList arrayOfRangesForRegex(QStringView text, QStringView pattern);

/// The first kind, in the order of the values, whose first match is the whole text. Any thread.
[[nodiscard]] KRActiveStringType activeStringType(QStringView text);

} // namespace KRAdditions

/// The active spans of one text, in UTF-16 code units. Spans of different kinds may overlap. The text is not
/// kept. Immutable, hence safe to read from any thread.
class KRActiveTextRanges {
public:
    KRActiveTextRanges() = default;
    explicit KRActiveTextRanges(QStringView text);

    const KRRangeList& links() const { return m_links; }
    const KRRangeList& hashtags() const { return m_hashtags; }
    /// Each includes the "@".
    const KRRangeList& usernames() const { return m_usernames; }
    /// Each includes the "$".
    const KRRangeList& stockSymbols() const { return m_stockSymbols; }
    const KRRangeList& emailAddresses() const { return m_emailAddresses; }
    /// The five lists one after the other, in the order above: the first that holds a position is what a
    /// click there means.
    const KRRangeList& activeRanges() const { return m_activeRanges; }

private:
    KRRangeList m_links;
    KRRangeList m_hashtags;
    KRRangeList m_usernames;
    KRRangeList m_stockSymbols;
    KRRangeList m_emailAddresses;
    KRRangeList m_activeRanges;
};
