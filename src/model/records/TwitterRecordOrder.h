#pragma once

#include <QDateTime>
#include <QStringView>

#include <compare>

/// Compares two IDs as the decimal numbers they are, of any length; no ID comes before every ID. Any thread.
[[nodiscard]] std::weak_ordering compareTwitterIDs(QStringView id, QStringView otherID);

/// The order of every list of posts or messages: the later date first, of one date the higher ID first, what
/// has no date or no ID last. Any thread.
[[nodiscard]] std::weak_ordering
compareNewestFirst(const QDateTime& date, QStringView id, const QDateTime& otherDate, QStringView otherID);
