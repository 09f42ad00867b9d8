#pragma once

#include <QByteArray>

#include <optional>

/// Sites put into their pages what people typed, and some of that XML 1.0 has no way to write: control
/// characters, U+FFFE and U+FFFF, surrogates (production 2, "Char"), as bytes or as numeric references, or
/// bytes that are no UTF-8. One such character makes a whole page unreadable.
///
/// Answers the document with U+FFFD in the place of each of them; nothing when there are none, or when the
/// encoding is not one in which ASCII bytes stand for themselves (UTF-16, for one). Any thread.
[[nodiscard]] std::optional<QByteArray> KRXMLByReplacingForbiddenCharacters(const QByteArray& document);
