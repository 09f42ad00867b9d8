#include "foundation/KRKeyedArchiver.h"

#include <QCborArray>
#include <QCborValue>
#include <QCryptographicHash>
#include <QStringList>

namespace {

constexpr char magic[] = "KRKA";
constexpr char version = 1;
constexpr qsizetype digestOffset = 5;
constexpr qsizetype payloadOffset = digestOffset + 20;

QByteArray digest(const QByteArray& payload)
{
    return QCryptographicHash::hash(payload, QCryptographicHash::Sha1);
}

KRError unreadable(const char* reason)
{
    return errorWithDomain(QString::fromUtf16(KRArchiveErrorDomain),
        -1,
        QStringLiteral("The archive cannot be read: %1").arg(QLatin1String(reason)));
}

} // namespace

void KRKeyedArchiver::encodeString(QLatin1String key, const QString& value)
{
    if (!value.isNull())
        m_map.insert(key, value);
}

void KRKeyedArchiver::encodeInteger(QLatin1String key, qint64 value)
{
    m_map.insert(key, value);
}

void KRKeyedArchiver::encodeDate(QLatin1String key, const QDateTime& value)
{
    // Milliseconds as an integer, not CBOR's date tags: those lose the fraction or go through a floating
    // point number.
    if (value.isValid())
        m_map.insert(key, value.toMSecsSinceEpoch());
}

void KRKeyedArchiver::encodeURL(QLatin1String key, const QUrl& value)
{
    if (!value.isEmpty())
        m_map.insert(key, QString::fromLatin1(value.toEncoded()));
}

void KRKeyedArchiver::encodeData(QLatin1String key, const QByteArray& value)
{
    if (!value.isNull())
        m_map.insert(key, QCborValue(value));
}

void KRKeyedArchiver::encodeStrings(QLatin1String key, const QStringList& value)
{
    m_map.insert(key, QCborArray::fromStringList(value));
}

void KRKeyedArchiver::_encodeMap(QLatin1String key, const QCborMap& map)
{
    m_map.insert(key, map);
}

void KRKeyedArchiver::_encodeMaps(QLatin1String key, const QList<QCborMap>& maps)
{
    QCborArray array;
    for (const QCborMap& map : maps)
        array.append(map);
    m_map.insert(key, array);
}

QByteArray KRKeyedArchiver::archivedData() const
{
    const QByteArray payload = QCborValue(m_map).toCbor();
    return QByteArray(magic, 4) + version + digest(payload) + payload;
}

KRKeyedUnarchiver::KRKeyedUnarchiver(QCborMap map)
    : m_map(std::move(map))
{
}

KRResult<KRKeyedUnarchiver> KRKeyedUnarchiver::unarchiverWithData(const QByteArray& data)
{
    if (data.size() < payloadOffset || !data.startsWith(magic))
        return unreadable("it is no archive");
    if (data.at(4) != version)
        return unreadable("it is of another version");
    const QByteArray payload = data.mid(payloadOffset);
    if (data.mid(digestOffset, payloadOffset - digestOffset) != digest(payload))
        return unreadable("it is damaged");
    QCborParserError parseError;
    const QCborValue root = QCborValue::fromCbor(payload, &parseError);
    if (parseError.error != QCborError::NoError || !root.isMap())
        return unreadable("its content is damaged");
    return KRKeyedUnarchiver(root.toMap());
}

bool KRKeyedUnarchiver::contains(QLatin1String key) const
{
    return m_map.contains(key);
}

QString KRKeyedUnarchiver::decodeString(QLatin1String key) const
{
    const QCborValue value = m_map.value(key);
    const QString text = value.toString();
    // An empty one comes back from the map as null, which would be none.
    return value.isString() && text.isNull() ? QStringLiteral("") : text;
}

std::optional<qint64> KRKeyedUnarchiver::decodeInteger(QLatin1String key) const
{
    const QCborValue value = m_map.value(key);
    return value.isInteger() ? std::optional(value.toInteger()) : std::nullopt;
}

QDateTime KRKeyedUnarchiver::decodeDate(QLatin1String key) const
{
    const std::optional<qint64> value = decodeInteger(key);
    return value ? QDateTime::fromMSecsSinceEpoch(*value, Qt::UTC) : QDateTime();
}

QUrl KRKeyedUnarchiver::decodeURL(QLatin1String key) const
{
    return QUrl::fromEncoded(decodeString(key).toLatin1(), QUrl::StrictMode);
}

QByteArray KRKeyedUnarchiver::decodeData(QLatin1String key) const
{
    const QCborValue value = m_map.value(key);
    const QByteArray data = value.toByteArray();
    return value.isByteArray() && data.isNull() ? QByteArray("") : data;
}

QStringList KRKeyedUnarchiver::decodeStrings(QLatin1String key) const
{
    QStringList strings;
    for (const QCborValue& value : m_map.value(key).toArray())
        strings.append(value.toString());
    return strings;
}

std::optional<KRKeyedUnarchiver> KRKeyedUnarchiver::decodeObject(QLatin1String key) const
{
    const QCborValue value = m_map.value(key);
    return value.isMap() ? std::optional(KRKeyedUnarchiver(value.toMap())) : std::nullopt;
}

QList<KRKeyedUnarchiver> KRKeyedUnarchiver::decodeObjects(QLatin1String key) const
{
    QList<KRKeyedUnarchiver> objects;
    for (const QCborValue& value : m_map.value(key).toArray()) {
        if (value.isMap())
            objects.append(KRKeyedUnarchiver(value.toMap()));
    }
    return objects;
}
