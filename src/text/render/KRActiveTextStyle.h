#pragma once

#include "foundation/KRColor.h"
#include "text/KRActiveTextRanges.h"
#include "text/render/KRAttributedString.h"

/// The colours of active spans.
struct KRActiveTextColors {
    /// E-mail addresses too.
    KRColor links = KRColor::rgba(0, 0.4F, 0.8F, 1);
    KRColor hashtags = KRColor::rgba(0.5F, 0.5F, 0.5F, 1);
    KRColor usernames = KRColor::rgba(0, 0.4F, 0.8F, 1);
    KRColor stockSymbols = KRColor::rgba(0, 0.4F, 0.8F, 1);

    bool operator==(const KRActiveTextColors&) const = default;
};

/// How texts are set: the size the user chose, as the number the preferences keep, and the colours of spans.
struct KRActiveTextStyle {
    int statusCellFontSizePreference = 0;
    KRActiveTextColors colors;

    bool operator==(const KRActiveTextStyle&) const = default;
};

enum class KRStatusTextSize {
    Normal,
    /// Where a single status is shown large.
    Enlarged,
};

/// The size of status texts, as KRMessageFont() takes it, for a value of the preference; an unknown value is
/// the standard size.
[[nodiscard]] int KRPointSizeForStatusCellFontSizePreference(int preference);
/// The font of the user's desktop. A size of 12 is that of the desktop's own texts, but never below 13
/// pixels; other sizes stand to it in proportion.
[[nodiscard]] QFont KRMessageFont(int size);
[[nodiscard]] QFont KRStatusFont(KRStatusTextSize size, const KRActiveTextStyle& style);

/// The styled text of a status, or of a direct message, its active spans coloured. Spans of later kinds cover
/// earlier ones: links, e-mail addresses, hashtags, user names, stock symbols.
[[nodiscard]] KRAttributedString AttributedStringForStatus(const QString& text,
    const KRActiveTextRanges& ranges,
    KRStatusTextSize size,
    const KRActiveTextStyle& style = {});
[[nodiscard]] KRAttributedString AttributedStringForMessage(const QString& text,
    const KRActiveTextRanges& ranges,
    const KRActiveTextStyle& style = {});
