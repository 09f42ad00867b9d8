#include "parsing/KRXMLForbiddenCharacters.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view replacementBytes = "\xEF\xBF\xBD";
constexpr std::string_view replacementReference = "&#xFFFD;";
constexpr std::string_view sectionStart = "<![CDATA[";
constexpr std::string_view sectionEnd = "]]>";

constexpr bool isAllowed(char32_t character)
{
    return character == 0x9 || character == 0xA || character == 0xD
        || (character >= 0x20 && character <= 0xD7FF) || (character >= 0xE000 && character <= 0xFFFD)
        || (character >= 0x10000 && character <= 0x10FFFF);
}

// Most of a page: characters that are allowed and begin nothing that must be looked at.
constexpr bool isPlain(char byte)
{
    return byte >= 0x20 && byte < 0x7F && byte != '<' && byte != '&' && byte != ']';
}

// What a step reads: a character's value (forbidden for bytes that are none) and how many bytes it takes.
struct Step {
    char32_t character;
    size_t length;
};

constexpr char32_t noCharacter = 0;

// RFC 3629, without overlong forms. Of bytes that are no UTF-8 one is taken at a time.
Step stepUTF8(std::string_view rest)
{
    const auto byteAt = [rest](size_t index) { return static_cast<unsigned char>(rest[index]); };
    const unsigned char first = byteAt(0);
    if (first < 0x80)
        return { first, 1 };
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    constexpr char32_t smallest[] = { 0, 0, 0x80, 0x800, 0x10000 };
    if (first < 0xC2 || first > 0xF4 || rest.size() < length)
        return { noCharacter, 1 };
    char32_t character = first & (0x7Fu >> length);
    for (size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0) != 0x80)
            return { noCharacter, 1 };
        character = (character << 6) | (byteAt(index) & 0x3F);
    }
    if (character < smallest[length])
        return { noCharacter, 1 };
    return { character, length };
}

// A numeric reference ("&#8;", "&#x8;"); a length of 0 when this is none.
Step stepReference(std::string_view rest)
{
    const bool isHexadecimal = rest.substr(0, 3) == "&#x";
    const char32_t base = isHexadecimal ? 16 : 10;
    size_t index = isHexadecimal ? 3 : 2;
    const size_t firstDigit = index;
    char32_t character = 0;
    for (; index < rest.size() && rest[index] != ';'; ++index) {
        const char byte = rest[index];
        char32_t digit = 16;
        if (byte >= '0' && byte <= '9')
            digit = static_cast<char32_t>(byte - '0');
        else if (byte >= 'a' && byte <= 'f')
            digit = static_cast<char32_t>(byte - 'a' + 10);
        else if (byte >= 'A' && byte <= 'F')
            digit = static_cast<char32_t>(byte - 'A' + 10);
        if (digit >= base)
            return { noCharacter, 0 };
        // Enough to stay forbidden however many digits follow.
        character = std::min<char32_t>(character * base + digit, 0x110000);
    }
    if (index == firstDigit || index >= rest.size())
        return { noCharacter, 0 };
    return { character, index + 1 };
}

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

// Whether bytes above ASCII are UTF-8: no XML declaration says otherwise.
bool declaresOtherEncoding(std::string_view document)
{
    if (!startsWith(document, "<?xml"))
        return false;
    const std::string_view declaration = document.substr(0, document.find("?>"));
    size_t position = declaration.find("encoding");
    if (position == std::string_view::npos)
        return false;
    position = declaration.find_first_of("\"'", position);
    if (position == std::string_view::npos)
        return false;
    const QByteArrayView rest(declaration.substr(position + 1));
    return rest.first(std::min<qsizetype>(rest.size(), 5)).compare("utf-8", Qt::CaseInsensitive) != 0;
}

} // namespace

std::optional<QByteArray> KRXMLByReplacingForbiddenCharacters(const QByteArray& document)
{
    std::string_view rest(document.constData(), static_cast<size_t>(document.size()));
    // UTF-16 and UTF-32 show by their byte order mark or by a zero byte beside the first "<".
    if (startsWith(rest, "\xFE\xFF") || startsWith(rest, "\xFF\xFE")
        || rest.substr(0, 2).find('\0') != std::string_view::npos)
        return std::nullopt;
    const bool isUTF8 = !declaresOtherEncoding(rest);
    const std::string_view replacement = isUTF8 ? replacementBytes : replacementReference;

    const std::string_view text = rest;
    QByteArray repaired;
    // How much of the text is in there already.
    size_t done = 0;
    size_t position = 0;
    bool isInSection = false;
    while (position < text.size()) {
        if (isPlain(text[position])) {
            ++position;
            continue;
        }
        rest = text.substr(position);
        if (!isInSection && startsWith(rest, sectionStart))
            isInSection = true;
        else if (isInSection && startsWith(rest, sectionEnd))
            isInSection = false;
        Step step { noCharacter, 0 };
        // In a CDATA section a reference is just text.
        if (!isInSection && startsWith(rest, "&#"))
            step = stepReference(rest);
        if (step.length == 0)
            step = isUTF8 ? stepUTF8(rest) : Step { static_cast<unsigned char>(rest.front()), 1 };
        if (!isAllowed(step.character)) {
            repaired.append(text.data() + done, static_cast<qsizetype>(position - done));
            repaired.append(replacement.data(), static_cast<qsizetype>(replacement.size()));
            done = position + step.length;
        }
        position += step.length;
    }
    if (done == 0)
        return std::nullopt;
    repaired.append(text.data() + done, static_cast<qsizetype>(text.size() - done));
    return repaired;
}
