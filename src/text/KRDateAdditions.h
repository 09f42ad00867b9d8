#pragma once

#include <QDateTime>
#include <QString>

#include <compare>

/// Operations on dates. Pure but for the shared clock; any thread. Dates are in UTC; no date is an invalid
/// QDateTime.
namespace KRAdditions {

/// Reads the form of the service's XML records, "Wed Aug 27 13:08:45 +0000 2008". The names of days and
/// months are the English ones whatever the locale. Strict: anything else, a blank at an end included, is no
/// date; only the day of the week is not compared with the date.
[[nodiscard]] QDateTime dateValueFromHTTPLikeDate(QStringView text);
/// Reads the form of the search service's records, "Wed, 27 Aug 2008 13:08:45 +0000", as strictly.
[[nodiscard]] QDateTime dateValueFromJSONTwitterDate(QStringView text);

[[nodiscard]] bool isAfter(const QDateTime& date, const QDateTime& other);
[[nodiscard]] bool isBefore(const QDateTime& date, const QDateTime& other);

/// The order of two dates; no date comes before every date.
[[nodiscard]] std::weak_ordering compareDates(const QDateTime& date, const QDateTime& other);

/// How long ago the date was by the shared clock, in whole seconds, minutes, hours or days: "1 minute ago".
/// English. A date in the future reads "0 seconds ago".
[[nodiscard]] QString relativeTimeAgoString(const QDateTime& date);

} // namespace KRAdditions
