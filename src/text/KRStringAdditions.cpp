#include "text/KRStringAdditions.h"

#include "text/KRDataAdditions.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace KRAdditions {

namespace {

constexpr bool isUnreserved(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9')
        || byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

constexpr char16_t rot13(char16_t unit)
{
    if ((unit >= u'a' && unit <= u'm') || (unit >= u'A' && unit <= u'M'))
        return static_cast<char16_t>(unit + 13);
    if ((unit >= u'n' && unit <= u'z') || (unit >= u'N' && unit <= u'Z'))
        return static_cast<char16_t>(unit - 13);
    return unit;
}

} // namespace

QString URLEncodedString(const QString& text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    const QByteArray bytes = text.toUtf8();
    QByteArray encoded;
    encoded.reserve(bytes.size() + bytes.size() / 2);
    for (const char byte : bytes) {
        if (byte == '\0')
            break;
        if (byte == ' ') {
            encoded.append('+');
        } else if (isUnreserved(byte)) {
            encoded.append(byte);
        } else {
            const auto value = static_cast<unsigned char>(byte);
            encoded.append('%').append(digits[value >> 4]).append(digits[value & 0xF]);
        }
    }
    return QString::fromLatin1(encoded);
}

QString URLEncodedString(qint64 number)
{
    return URLEncodedString(QString::number(number));
}

QString stringByUnescapingXMLEntities(const QString& text)
{
    // Most texts hold no entity, at most an address with an "&" in it, and a replacement costs a pass.
    if (!text.contains(u'&') || !text.contains(u';'))
        return text;
    QString unescaped = text;
    unescaped.replace("&quot;"_L1, R"(")"_L1);
    unescaped.replace("&amp;"_L1, "&"_L1);
    unescaped.replace("&apos;"_L1, "'"_L1);
    unescaped.replace("&lt;"_L1, "<"_L1);
    unescaped.replace("&gt;"_L1, ">"_L1);
    return unescaped;
}

bool containsSubstring(QStringView text, QStringView substring)
{
    return !substring.isEmpty() && text.contains(substring, Qt::CaseSensitive);
}

bool containsSubstringIgnoringCase(QStringView text, QStringView substring)
{
    return !substring.isEmpty() && text.contains(substring, Qt::CaseInsensitive);
}

std::weak_ordering caseInsensitiveCompare(QStringView text, QStringView other)
{
    return text.compare(other, Qt::CaseInsensitive) <=> 0;
}

QString stringByRot13ingString(const QString& text)
{
    QString rotated = text;
    for (QChar& character : rotated)
        character = QChar(rot13(character.unicode()));
    return rotated;
}

QString kr_sha1Digest(const QString& text)
{
    return kr_sha1Digest(text.toUtf8());
}

QString base64EncodedString(const QString& text)
{
    return QString::fromLatin1(text.toUtf8().toBase64());
}

QString GUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace KRAdditions
