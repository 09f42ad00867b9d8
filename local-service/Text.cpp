#include "Text.h"

#include <QByteArray>
#include <QDateTime>
#include <QLocale>
#include <QString>

#include <algorithm>
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

// The names are English whatever the locale.
std::string dateText(std::int64_t secondsSinceEpoch, QStringView format)
{
    const QDateTime date = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
    return QLocale::c().toString(date, format).toStdString();
}

QByteArrayView bytes(std::string_view text)
{
    return { text.data(), static_cast<qsizetype>(text.size()) };
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
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
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
    return QString::fromUtf8(bytes(text)).toHtmlEscaped().toStdString();
}

std::string percentEncoded(std::string_view text)
{
    return bytes(text).toByteArray().toPercentEncoding().toStdString();
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
    const auto decoded
        = QByteArray::fromBase64Encoding(bytes(text).toByteArray(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return decoded.decoded.toStdString();
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
    return dateText(secondsSinceEpoch, u"ddd MMM dd HH:mm:ss '+0000' yyyy");
}

std::string searchDate(std::int64_t secondsSinceEpoch)
{
    return dateText(secondsSinceEpoch, u"ddd, dd MMM yyyy HH:mm:ss '+0000'");
}

std::string isoDate(std::int64_t secondsSinceEpoch)
{
    return dateText(secondsSinceEpoch, u"yyyy-MM-dd'T'HH:mm:ss'+00:00'");
}

std::int64_t currentTime()
{
    return QDateTime::currentSecsSinceEpoch();
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
