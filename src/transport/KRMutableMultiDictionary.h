#pragma once

#include <QLatin1String>
#include <QList>
#include <QString>
#include <QStringList>

class KRKeyedArchiver;
class KRKeyedUnarchiver;

/// Keys with any number of values each, in the order they came: a request's headers. A value, for one
/// thread at a time.
class KRMutableMultiDictionary {
public:
    KRMutableMultiDictionary() = default;
    explicit KRMutableMultiDictionary(const KRKeyedUnarchiver& coder);
    void encodeWithCoder(KRKeyedArchiver& coder) const;

    void addObjectForKey(const QString& object, const QString& key);
    /// Replaces every value of the key by this one.
    void setObjectForKey(const QString& object, const QString& key);
    void removeObjectForKey(const QString& object, const QString& key);
    /// Empties the key's values; the key stays, and comes into being where it was not.
    void removeObjectsForKey(const QString& key);

    /// The key's values, or null where there is no such key.
    [[nodiscard]] const QStringList* objectsForKey(const QString& key) const;
    /// The number of keys, those without values included.
    [[nodiscard]] qsizetype count() const { return m_entries.size(); }
    [[nodiscard]] QStringList keys() const;

private:
    struct Entry {
        QString key;
        QStringList values;

        void encodeWithCoder(KRKeyedArchiver& coder) const;
    };

    QStringList& _valuesForKey(const QString& key);

    QList<Entry> m_entries;
};
