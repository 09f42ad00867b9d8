#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace localservice {

using Parameters = std::vector<std::pair<std::string, std::string>>;

[[nodiscard]] bool isValidUTF8(std::string_view text);
[[nodiscard]] std::size_t characterCount(std::string_view text);
// Carriage returns become line feeds, characters that XML cannot carry are dropped, both ends are trimmed.
[[nodiscard]] std::string tidiedText(std::string_view text);
[[nodiscard]] std::string asciiLowercase(std::string_view text);
[[nodiscard]] std::string replacingAll(std::string text, std::string_view what, std::string_view with);

[[nodiscard]] std::string escapedMarkup(std::string_view text);
[[nodiscard]] std::string percentEncoded(std::string_view text);
[[nodiscard]] Parameters parametersOfForm(std::string_view body);
[[nodiscard]] std::optional<std::string> decodedBase64(std::string_view text);

// The whole text as a decimal number that is not negative; what is too large counts as the largest.
[[nodiscard]] std::optional<std::int64_t> decimalNumber(std::string_view text);

// ‘Wed Aug 27 13:08:45 +0000 2008’
[[nodiscard]] std::string restDate(std::int64_t secondsSinceEpoch);
// ‘Wed, 27 Aug 2008 13:08:45 +0000’
[[nodiscard]] std::string searchDate(std::int64_t secondsSinceEpoch);
// ‘2008-08-27T13:08:45+00:00’
[[nodiscard]] std::string isoDate(std::int64_t secondsSinceEpoch);
[[nodiscard]] std::int64_t currentTime();

// A piece of a post's text: plain words, or something a reader can click.
struct TextPiece {
    enum class Kind { Plain, Link, Mention, Hashtag };
    Kind kind = Kind::Plain;
    std::string text;
};
[[nodiscard]] std::vector<TextPiece> piecesOfText(std::string_view text);

} // namespace localservice
