#pragma once

#include "foundation/KRResult.h"

#include <QByteArray>
#include <QCborMap>
#include <QDateTime>
#include <QLatin1String>
#include <QList>
#include <QUrl>

#include <optional>

/// Domain of unarchiving errors; the code is always -1.
inline constexpr char16_t KRArchiveErrorDomain[] = u"com.kestrin.archive";

/// Writes typed values under keys, for one thread at a time. An object archives itself through
/// `void encodeWithCoder(KRKeyedArchiver&) const`. Null strings, invalid dates, empty URLs and null data are not written.
///
/// The archive is four bytes "KRKA", a version byte, the SHA-1 of the rest, and one CBOR map (RFC 8949);
/// whatever is not exactly that is refused when it is read.
class KRKeyedArchiver {
public:
    void encodeString(QLatin1String key, const QString& value);
    void encodeInteger(QLatin1String key, qint64 value);
    void encodeDate(QLatin1String key, const QDateTime& value);
    void encodeURL(QLatin1String key, const QUrl& value);
    void encodeData(QLatin1String key, const QByteArray& value);
    void encodeStrings(QLatin1String key, const QStringList& value);

    template <class Object>
    void encodeObject(QLatin1String key, const Object& object)
    {
        _encodeMap(key, _mapOf(object));
    }

    /// A list of pointers to objects, in order.
    template <class List>
    void encodeObjects(QLatin1String key, const List& objects)
    {
        QList<QCborMap> maps;
        for (const auto& object : objects)
            maps.append(_mapOf(*object));
        _encodeMaps(key, maps);
    }

    [[nodiscard]] QByteArray archivedData() const;

private:
    template <class Object>
    static QCborMap _mapOf(const Object& object)
    {
        KRKeyedArchiver coder;
        object.encodeWithCoder(coder);
        return coder.m_map;
    }
    void _encodeMap(QLatin1String key, const QCborMap& map);
    void _encodeMaps(QLatin1String key, const QList<QCborMap>& maps);

    QCborMap m_map;
};

/// Reads what KRKeyedArchiver wrote. A missing key, or one of another type, reads as nothing.
class KRKeyedUnarchiver {
public:
    static KRResult<KRKeyedUnarchiver> unarchiverWithData(const QByteArray& data);

    [[nodiscard]] bool contains(QLatin1String key) const;
    [[nodiscard]] QString decodeString(QLatin1String key) const;
    [[nodiscard]] std::optional<qint64> decodeInteger(QLatin1String key) const;
    [[nodiscard]] QDateTime decodeDate(QLatin1String key) const;
    [[nodiscard]] QUrl decodeURL(QLatin1String key) const;
    [[nodiscard]] QByteArray decodeData(QLatin1String key) const;
    [[nodiscard]] QStringList decodeStrings(QLatin1String key) const;
    [[nodiscard]] std::optional<KRKeyedUnarchiver> decodeObject(QLatin1String key) const;
    [[nodiscard]] QList<KRKeyedUnarchiver> decodeObjects(QLatin1String key) const;

private:
    explicit KRKeyedUnarchiver(QCborMap map);

    QCborMap m_map;
};
