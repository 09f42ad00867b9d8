#include "api/TwitterServiceHosts.h"

#include "foundation/KRUserDefaults.h"

#include <QFileInfo>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

KRError serviceError(const QString& description)
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain), -1, description);
}

} // namespace

KRResult<TwitterServiceHosts> TwitterServiceHosts::hostsWithDefaults(const KRUserDefaults& defaults,
    const QString& servicesFile)
{
    TwitterServiceHosts hosts;
    const QString groupName = QLatin1String(group);
    for (const QString& key : defaults.keysInGroup(groupName))
        hosts.setValueForKey(defaults.stringForKey(groupName + u'/' + key), key);
    if (servicesFile.isEmpty())
        return hosts;

    // QSettings takes a file that is not there for an empty one.
    const QFileInfo information(servicesFile);
    QSettings file(servicesFile, QSettings::IniFormat);
    file.beginGroup(groupName);
    const QStringList keys = file.allKeys();
    if (!information.isFile() || !information.isReadable() || file.status() != QSettings::NoError)
        return serviceError(u"The services file %1 cannot be read"_s.arg(servicesFile));
    if (keys.isEmpty())
        return serviceError(u"The services file %1 has no group %2"_s.arg(servicesFile, groupName));
    for (const QString& key : keys) {
        // A comma makes QSettings split the value.
        hosts.setValueForKey(file.value(key).toStringList().join(u','), key);
    }
    return hosts;
}

KRResult<QUrl> TwitterServiceHosts::RESTURLForPath(const QString& path) const
{
    return _URLForPath(path, RESTHostKey, "https"_L1);
}

KRResult<QUrl> TwitterServiceHosts::searchURLForPath(const QString& path) const
{
    const bool isSecure = searchHost().startsWith("https://"_L1, Qt::CaseInsensitive);
    return _URLForPath(path, searchHostKey, isSecure ? "https"_L1 : "http"_L1);
}

// The host may be written with this scheme, and with no other.
KRResult<QUrl>
TwitterServiceHosts::_URLForPath(const QString& path, const char* key, QLatin1String scheme) const
{
    const QString value = valueForKey(QLatin1String(key));
    QString host = value;
    if (host.isEmpty()) {
        return serviceError(
            u"No service is set up: %1 has no value in %2"_s.arg(QLatin1String(key), QLatin1String(group)));
    }
    const QString prefix = scheme + "://"_L1;
    if (host.startsWith(prefix, Qt::CaseInsensitive))
        host.remove(0, prefix.size());
    while (host.endsWith(u'/'))
        host.chop(1);
    const QUrl base(prefix + host, QUrl::StrictMode);
    // Another scheme in front ends up as a host without a port number, and so is refused here too.
    if (!base.isValid() || base.host().isEmpty() || host.contains("://"_L1) || !base.userInfo().isEmpty()
        || base.hasQuery() || base.hasFragment())
        return serviceError(u"%1 is no host of a service"_s.arg(value));
    return QUrl(u"%1%2/"_s.arg(prefix, host) + path, QUrl::TolerantMode);
}
