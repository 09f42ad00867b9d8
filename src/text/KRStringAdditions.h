#pragma once

#include <QByteArray>
#include <QString>

#include <compare>

/// Operations on text that the platform's string lacks. Pure; any thread. Lengths and positions count UTF-16
/// code units; where bytes matter they are the text's UTF-8 form.
namespace KRAdditions {

/// Form and query encoding (application/x-www-form-urlencoded): a space becomes "+", ASCII letters, digits and
/// "-._~" stay, every other byte becomes a percent escape with upper-case digits. Ends at a zero character.
[[nodiscard]] QString URLEncodedString(const QString& text);
/// The number's decimal text.
[[nodiscard]] QString URLEncodedString(qint64 number);

/// Replaces the five entities of XML, each over the result of the one before, in the order quot, amp, apos,
/// lt, gt: services escape "<" and ">" once more than XML asks for, and this undoes both layers. Numeric
/// references stay.
[[nodiscard]] QString stringByUnescapingXMLEntities(const QString& text);

/// Whether the other text occurs in this one. An empty text occurs nowhere.
[[nodiscard]] bool containsSubstring(QStringView text, QStringView substring);
[[nodiscard]] bool containsSubstringIgnoringCase(QStringView text, QStringView substring);
[[nodiscard]] std::weak_ordering caseInsensitiveCompare(QStringView text, QStringView other);

[[nodiscard]] QString stringByRot13ingString(const QString& text);

/// SHA-1 (FIPS 180) of the UTF-8 form as 40 lower-case hexadecimal digits.
[[nodiscard]] QString kr_sha1Digest(const QString& text);
/// Base64 (RFC 4648, section 4) of the UTF-8 form, without line breaks.
[[nodiscard]] QString base64EncodedString(const QString& text);
/// A fresh random UUID (RFC 4122, version 4), upper case, without braces.
[[nodiscard]] QString GUID();

} // namespace KRAdditions
