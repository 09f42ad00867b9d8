#pragma once

#include <QList>
#include <QString>

#include <limits>

/// The location that stands for "not found".
inline constexpr qsizetype KRNotFound = std::numeric_limits<qsizetype>::max();

/// A range in UTF-16 code units of a text, or of rows of a list.
struct KRRange {
    qsizetype location = 0;
    qsizetype length = 0;

    [[nodiscard]] qsizetype end() const { return location + length; }
    [[nodiscard]] bool contains(qsizetype index) const
    {
        return index >= location && index - location < length;
    }
    bool operator==(const KRRange&) const = default;
};

using KRRangeList = QList<KRRange>;

/// The part of the text that the range covers; the range must lie inside the text.
[[nodiscard]] inline QString KRSubstring(const QString& text, KRRange range)
{
    return text.mid(range.location, range.length);
}
