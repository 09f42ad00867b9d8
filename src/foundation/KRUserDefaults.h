#pragma once

#include "foundation/KRResult.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <mutex>

class QSettings;

/// The preferences store: one INI file in the user's configuration directory, readable by its owner only and
/// replaced atomically. An absent key reads as empty, 0 or false. A file that cannot be read is set aside
/// before anything is written. Any thread.
class KRUserDefaults {
public:
    explicit KRUserDefaults(const QString& filePath);
    KRUserDefaults(const KRUserDefaults&) = delete;
    KRUserDefaults& operator=(const KRUserDefaults&) = delete;
    ~KRUserDefaults();

    /// The program's own defaults, "pelinor/pelinor.ini" in the XDG configuration directory.
    static KRUserDefaults& standardUserDefaults();

    [[nodiscard]] bool contains(QAnyStringView key) const;
    [[nodiscard]] QString stringForKey(QAnyStringView key) const;
    [[nodiscard]] QStringList stringListForKey(QAnyStringView key) const;
    [[nodiscard]] QByteArray dataForKey(QAnyStringView key) const;
    [[nodiscard]] int integerForKey(QAnyStringView key) const;
    [[nodiscard]] bool boolForKey(QAnyStringView key) const;

    void setString(QAnyStringView key, const QString& value);
    void setStringList(QAnyStringView key, const QStringList& value);
    void setData(QAnyStringView key, const QByteArray& value);
    void setInteger(QAnyStringView key, int value);
    void removeObjectForKey(QAnyStringView key);

    /// The keys "GROUP/…" of the store, without the group.
    [[nodiscard]] QStringList keysInGroup(const QString& group) const;

    /// Moves data that cannot be understood to "KEY.unreadable" (-2, -3, …) and logs it, so that the next
    /// write to the key destroys nothing.
    void setAsideUnreadableData(const QString& key);

    /// Writes what changed to disk now. Data that could not be written stays in memory and is written by the
    /// next call that succeeds.
    KRResult<void> synchronize();

private:
    QVariant _value(QAnyStringView key) const;
    void _setValue(QAnyStringView key, const QVariant& value);

    mutable std::mutex m_lock;
    std::unique_ptr<QSettings> m_settings;
};
