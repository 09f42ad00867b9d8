#include "foundation/KRUserDefaults.h"

#include "foundation/KRFiles.h"
#include "foundation/KRLog.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <chrono>
#include <sys/file.h>
#include <thread>

namespace {

QString standardFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/pelinor/pelinor.ini");
}

QString keyString(QAnyStringView key)
{
    return key.toString();
}

// Replacing a file keeps its permissions, so making them right once is enough.
void makePrivate(const QString& path)
{
    QFile file(path);
    if (!file.exists() && !file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        KRLog(
            QStringLiteral("Error: the preferences %1 could not be made: %2").arg(path, file.errorString()));
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

/// A process that is killed between making QSettings' lock and filling it leaves an empty one. It does not
/// tell whose it was, so Qt would wait half a minute for it. A living owner fills it at once, and holds it
/// (flock) from then on.
void removeOrphanedLock(const QString& path)
{
    constexpr auto longestFilling = std::chrono::milliseconds(200);
    constexpr auto step = std::chrono::milliseconds(10);
    QFile lock(path + QStringLiteral(".lock"));
    for (auto waited = step * 0; lock.exists() && lock.size() == 0; waited += step) {
        if (waited < longestFilling) {
            std::this_thread::sleep_for(step);
            continue;
        }
        if (lock.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)
            && ::flock(lock.handle(), LOCK_EX | LOCK_NB) == 0 && lock.size() == 0)
            lock.remove();
        return;
    }
}

std::unique_ptr<QSettings> openSettings(const QString& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    removeOrphanedLock(path);
    // Before it is read: of one's own file that cannot be read, nothing would be known and all be written over.
    makePrivate(path);
    auto settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    if (settings->status() == QSettings::FormatError) {
        settings.reset();
        KRSetAsideUnreadableFile(path);
        makePrivate(path);
        settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    }
    return settings;
}

} // namespace

KRUserDefaults::KRUserDefaults(const QString& filePath)
    : m_settings(openSettings(filePath))
{
}

KRUserDefaults::~KRUserDefaults() = default;

KRUserDefaults& KRUserDefaults::standardUserDefaults()
{
    static KRUserDefaults defaults(standardFilePath());
    return defaults;
}

QVariant KRUserDefaults::_value(QAnyStringView key) const
{
    std::scoped_lock guard(m_lock);
    return m_settings->value(keyString(key));
}

void KRUserDefaults::_setValue(QAnyStringView key, const QVariant& value)
{
    std::scoped_lock guard(m_lock);
    m_settings->setValue(keyString(key), value);
}

bool KRUserDefaults::contains(QAnyStringView key) const
{
    std::scoped_lock guard(m_lock);
    return m_settings->contains(keyString(key));
}

QString KRUserDefaults::stringForKey(QAnyStringView key) const
{
    const QVariant value = _value(key);
    // A text with commas, written by hand without quotes, is read as a list.
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(u", ") : value.toString();
}

QStringList KRUserDefaults::stringListForKey(QAnyStringView key) const
{
    return _value(key).toStringList();
}

QByteArray KRUserDefaults::dataForKey(QAnyStringView key) const
{
    return _value(key).toByteArray();
}

int KRUserDefaults::integerForKey(QAnyStringView key) const
{
    return _value(key).toInt();
}

bool KRUserDefaults::boolForKey(QAnyStringView key) const
{
    return _value(key).toBool();
}

void KRUserDefaults::setString(QAnyStringView key, const QString& value)
{
    _setValue(key, value);
}

void KRUserDefaults::setStringList(QAnyStringView key, const QStringList& value)
{
    _setValue(key, value);
}

void KRUserDefaults::setData(QAnyStringView key, const QByteArray& value)
{
    _setValue(key, value);
}

void KRUserDefaults::setInteger(QAnyStringView key, int value)
{
    _setValue(key, value);
}

void KRUserDefaults::removeObjectForKey(QAnyStringView key)
{
    std::scoped_lock guard(m_lock);
    m_settings->remove(keyString(key));
}

QStringList KRUserDefaults::keysInGroup(const QString& group) const
{
    std::scoped_lock guard(m_lock);
    m_settings->beginGroup(group);
    QStringList keys = m_settings->allKeys();
    m_settings->endGroup();
    return keys;
}

void KRUserDefaults::setAsideUnreadableData(const QString& key)
{
    std::scoped_lock guard(m_lock);
    QString target = key + QStringLiteral(".unreadable");
    for (int number = 2; m_settings->contains(target); ++number)
        target = key + QStringLiteral(".unreadable-%1").arg(number);
    m_settings->setValue(target, m_settings->value(key));
    m_settings->remove(key);
    KRLog(QStringLiteral("Warning: the preference \"%1\" cannot be read, it was set aside as \"%2\"")
              .arg(key, target));
}

KRResult<void> KRUserDefaults::synchronize()
{
    std::scoped_lock guard(m_lock);
    // QSettings never forgets an error. Another object of the same file has all that is not written yet.
    if (m_settings->status() != QSettings::NoError)
        m_settings = std::make_unique<QSettings>(m_settings->fileName(), QSettings::IniFormat);
    m_settings->sync();
    if (m_settings->status() == QSettings::NoError)
        return {};
    return errorWithDomain(QString::fromUtf16(KRFileErrorDomain),
        -1,
        QStringLiteral("The preferences could not be written to %1").arg(m_settings->fileName()));
}
