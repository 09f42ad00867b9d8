#include "Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <utility>

namespace localservice {

namespace {

bool isASCIILetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isNameCharacter(char c)
{
    return isASCIILetter(c) || isDigit(c) || c == '_';
}

// Every byte of a character beyond ASCII counts as part of a word.
bool isWordByte(char c)
{
    return isNameCharacter(c) || (static_cast<unsigned char>(c) & 0x80);
}

int hexadecimalValue(char c)
{
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string formDecoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            decoded += ' ';
        } else if (text[i] == '%' && i + 2 < text.size() && hexadecimalValue(text[i + 1]) >= 0
            && hexadecimalValue(text[i + 2]) >= 0) {
            decoded += static_cast<char>(hexadecimalValue(text[i + 1]) * 16 + hexadecimalValue(text[i + 2]));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

// Length in bytes of the character at `position`, 0 when the bytes are not well-formed UTF-8.
std::size_t sequenceLength(std::string_view text, std::size_t position)
{
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt(position);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF ? 2
        : (lead & 0xF0) == 0xE0                             ? 3
        : lead >= 0xF0 && lead <= 0xF4                      ? 4
                                                            : 0;
    if (length == 0 || position + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(position + i) & 0xC0) != 0x80)
            return 0;
    }
    const unsigned char second = byteAt(position + 1);
    const bool isOverlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool isSurrogate = lead == 0xED && second > 0x9F;
    const bool isTooLarge = lead == 0xF4 && second > 0x8F;
    return isOverlong || isSurrogate || isTooLarge ? 0 : length;
}

std::tm universalTime(std::int64_t secondsSinceEpoch)
{
    const auto time = static_cast<std::time_t>(secondsSinceEpoch);
    std::tm parts {};
    gmtime_r(&time, &parts);
    return parts;
}

// The names are English whatever the locale.
const char* dayName(const std::tm& parts)
{
    static constexpr std::array<const char*, 7> names { "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
    return names.at(static_cast<std::size_t>(parts.tm_wday));
}

const char* monthName(const std::tm& parts)
{
    static constexpr std::array<const char*, 12>
        names { "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };
    return names.at(static_cast<std::size_t>(parts.tm_mon));
}

bool startsLink(std::string_view rest)
{
    return rest.starts_with("http://") || rest.starts_with("https://") || rest.starts_with("ftp://")
        || rest.starts_with("www.");
}

std::size_t linkLength(std::string_view rest)
{
    std::size_t length = rest.find_first_of(" \t\n\"<>[]{}`");
    length = length == std::string_view::npos ? rest.size() : length;
    while (length > 0) {
        const char last = rest[length - 1];
        const std::string_view link = rest.substr(0, length);
        const bool closesNothing = last == ')'
            && std::count(link.begin(), link.end(), '(') < std::count(link.begin(), link.end(), ')');
        if (!closesNothing && std::string_view(".,;:!?'").find(last) == std::string_view::npos)
            break;
        --length;
    }
    return length;
}

} // namespace

bool isValidUTF8(std::string_view text)
{
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t length = sequenceLength(text, position);
        if (length == 0)
            return false;
        position += length;
    }
    return true;
}

std::size_t characterCount(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

std::string tidiedText(std::string_view text)
{
    std::string tidy;
    tidy.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r') {
            if (i + 1 >= text.size() || text[i + 1] != '\n')
                tidy += '\n';
        } else if (static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t') {
            tidy += c;
        }
    }
    // U+FFFE and U+FFFF are well-formed UTF-8 and still no characters of XML.
    tidy = replacingAll(replacingAll(tidy, "\xEF\xBF\xBE", ""), "\xEF\xBF\xBF", "");
    const std::size_t begin = tidy.find_first_not_of(" \t\n");
    if (begin == std::string::npos)
        return {};
    return tidy.substr(begin, tidy.find_last_not_of(" \t\n") - begin + 1);
}

std::string asciiLowercase(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

std::string replacingAll(std::string text, std::string_view what, std::string_view with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

std::string escapedMarkup(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size() + text.size() / 8);
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string percentEncoded(std::string_view text)
{
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        if (isNameCharacter(c) || c == '-' || c == '.' || c == '~') {
            encoded += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded += { '%', digits[byte >> 4U], digits[byte & 0xFU] };
        }
    }
    return encoded;
}

Parameters parametersOfForm(std::string_view body)
{
    Parameters parameters;
    while (!body.empty()) {
        const std::string_view pair = body.substr(0, body.find('&'));
        body.remove_prefix(std::min(body.size(), pair.size() + 1));
        if (pair.empty())
            continue;
        const std::size_t equals = std::min(pair.find('='), pair.size());
        parameters.emplace_back(formDecoded(pair.substr(0, equals)),
            formDecoded(pair.substr(std::min(pair.size(), equals + 1))));
    }
    return parameters;
}

std::optional<std::string> decodedBase64(std::string_view text)
{
    static constexpr std::string_view alphabet
        = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string decoded;
    std::uint32_t bits = 0;
    int bitCount = 0;
    while (!text.empty() && text.back() == '=')
        text.remove_suffix(1);
    for (const char c : text) {
        const std::size_t value = alphabet.find(c);
        if (value == std::string_view::npos)
            return std::nullopt;
        bits = (bits << 6U | static_cast<std::uint32_t>(value)) & 0xFFFFFFU;
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            decoded += static_cast<char>(bits >> static_cast<unsigned>(bitCount) & 0xFFU);
        }
    }
    return decoded;
}

std::optional<std::int64_t> decimalNumber(std::string_view text)
{
    if (text.empty())
        return std::nullopt;
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    std::int64_t number = 0;
    for (const char c : text) {
        if (!isDigit(c))
            return std::nullopt;
        const int digit = c - '0';
        number = number > (largest - digit) / 10 ? largest : number * 10 + digit;
    }
    return number;
}

std::string restDate(std::int64_t secondsSinceEpoch)
{
    const std::tm parts = universalTime(secondsSinceEpoch);
    std::array<char, 64> buffer {};
    std::snprintf(buffer.data(),
        buffer.size(),
        "%s %s %02d %02d:%02d:%02d +0000 %04d",
        dayName(parts),
        monthName(parts),
        parts.tm_mday,
        parts.tm_hour,
        parts.tm_min,
        parts.tm_sec,
        parts.tm_year + 1900);
    return buffer.data();
}

std::string searchDate(std::int64_t secondsSinceEpoch)
{
    const std::tm parts = universalTime(secondsSinceEpoch);
    std::array<char, 64> buffer {};
    std::snprintf(buffer.data(),
        buffer.size(),
        "%s, %02d %s %04d %02d:%02d:%02d +0000",
        dayName(parts),
        parts.tm_mday,
        monthName(parts),
        parts.tm_year + 1900,
        parts.tm_hour,
        parts.tm_min,
        parts.tm_sec);
    return buffer.data();
}

std::string isoDate(std::int64_t secondsSinceEpoch)
{
    const std::tm parts = universalTime(secondsSinceEpoch);
    std::array<char, 64> buffer {};
    std::strftime(buffer.data(), buffer.size(), "%Y-%m-%dT%H:%M:%S+00:00", &parts);
    return buffer.data();
}

std::int64_t currentTime()
{
    return std::chrono::duration_cast<std::chrono::seconds>(
        std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::vector<TextPiece> piecesOfText(std::string_view text)
{
    std::vector<TextPiece> pieces;
    std::string plain;
    const auto add = [&](TextPiece::Kind kind, std::string_view piece) {
        if (!plain.empty())
            pieces.push_back({ TextPiece::Kind::Plain, std::exchange(plain, {}) });
        pieces.push_back({ kind, std::string(piece) });
    };
    for (std::size_t position = 0; position < text.size();) {
        const std::string_view rest = text.substr(position);
        const bool followsWord = position > 0 && isWordByte(text[position - 1]);
        std::size_t length = 1;
        TextPiece::Kind kind = TextPiece::Kind::Plain;
        if (!followsWord && startsLink(rest)) {
            length = linkLength(rest);
            kind = TextPiece::Kind::Link;
        } else if (!followsWord && (rest.front() == '@' || rest.front() == '#')) {
            const bool isMention = rest.front() == '@';
            while (length < rest.size()
                && (isMention ? isNameCharacter(rest[length]) : isWordByte(rest[length])))
                ++length;
            if (length > 1)
                kind = isMention ? TextPiece::Kind::Mention : TextPiece::Kind::Hashtag;
        }
        if (kind == TextPiece::Kind::Plain)
            plain += rest.front();
        else
            add(kind, rest.substr(0, length));
        position += kind == TextPiece::Kind::Plain ? 1 : length;
    }
    if (!plain.empty())
        pieces.push_back({ TextPiece::Kind::Plain, plain });
    return pieces;
}

} // namespace localservice
