#include "transport/KRMutableMultiDictionary.h"

#include "foundation/KRKeyedArchiver.h"

#include <algorithm>

using namespace Qt::StringLiterals;

KRMutableMultiDictionary::KRMutableMultiDictionary(const KRKeyedUnarchiver& coder)
{
    for (const KRKeyedUnarchiver& entry : coder.decodeObjects("dictionary"_L1))
        m_entries.append({ entry.decodeString("key"_L1), entry.decodeStrings("values"_L1) });
}

void KRMutableMultiDictionary::encodeWithCoder(KRKeyedArchiver& coder) const
{
    QList<const Entry*> entries;
    for (const Entry& entry : m_entries)
        entries.append(&entry);
    coder.encodeObjects("dictionary"_L1, entries);
}

void KRMutableMultiDictionary::Entry::encodeWithCoder(KRKeyedArchiver& coder) const
{
    coder.encodeString("key"_L1, key);
    coder.encodeStrings("values"_L1, values);
}

QStringList& KRMutableMultiDictionary::_valuesForKey(const QString& key)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&key](const Entry& entry) {
        return entry.key == key;
    });
    if (found != m_entries.end())
        return found->values;
    m_entries.append({ key, {} });
    return m_entries.last().values;
}

void KRMutableMultiDictionary::addObjectForKey(const QString& object, const QString& key)
{
    _valuesForKey(key).append(object);
}

void KRMutableMultiDictionary::setObjectForKey(const QString& object, const QString& key)
{
    removeObjectsForKey(key);
    addObjectForKey(object, key);
}

void KRMutableMultiDictionary::removeObjectForKey(const QString& object, const QString& key)
{
    if (objectsForKey(key))
        _valuesForKey(key).removeAll(object);
}

void KRMutableMultiDictionary::removeObjectsForKey(const QString& key)
{
    _valuesForKey(key).clear();
}

const QStringList* KRMutableMultiDictionary::objectsForKey(const QString& key) const
{
    for (const Entry& entry : m_entries) {
        if (entry.key == key)
            return &entry.values;
    }
    return nullptr;
}

QStringList KRMutableMultiDictionary::keys() const
{
    QStringList keys;
    for (const Entry& entry : m_entries)
        keys.append(entry.key);
    return keys;
}
