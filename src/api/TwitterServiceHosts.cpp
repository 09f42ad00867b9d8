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
    QString host = RESTHost();
    if (host.isEmpty()) {
        return serviceError(u"No service is set up: %1 has no value in %2"_s.arg(QLatin1String(RESTHostKey),
            QLatin1String(group)));
    }
    if (host.startsWith("https://"_L1, Qt::CaseInsensitive))
        host.remove(0, 8);
    while (host.endsWith(u'/'))
        host.chop(1);
    const QUrl base(u"https://"_s + host, QUrl::StrictMode);
    // Another scheme in front ends up as a host without a port number, and so is refused here too.
    if (!base.isValid() || base.host().isEmpty() || host.contains("://"_L1) || !base.userInfo().isEmpty()
        || base.hasQuery() || base.hasFragment())
        return serviceError(u"%1 is no host of a service"_s.arg(RESTHost()));
    return QUrl(u"https://%1/"_s.arg(host) + path, QUrl::TolerantMode);
}
