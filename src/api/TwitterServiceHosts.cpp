#include "api/TwitterServiceHosts.h"

#include "foundation/KRUserDefaults.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

KRError serviceError(const QString& description)
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain), -1, description);
}

constexpr auto httpPrefix = "http://"_L1;
constexpr auto httpsPrefix = "https://"_L1;

KRError unprotectedError(const QString& value)
{
    return serviceError(u"%1 would take the password unprotected: only https is used there"_s.arg(value));
}

// A name or number that never leaves this computer; the host as QUrl writes it.
bool isLoopbackHost(const QString& host)
{
    static const QRegularExpression network(u"\\A127(\\.[0-9]{1,3}){3}\\z"_s);
    return host == "localhost"_L1 || host == "::1"_L1 || network.match(host).hasMatch();
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

QStringList TwitterServiceHosts::keys() const
{
    QStringList keys = m_values.keys();
    keys.sort();
    return keys;
}

QString TwitterServiceHosts::server() const
{
    QString server = RESTHost().toLower();
    if (server.startsWith(httpsPrefix))
        server.remove(0, httpsPrefix.size());
    const auto dropSlashes = [&server] {
        while (server.endsWith(u'/'))
            server.chop(1);
    };
    dropSlashes();
    if (server.endsWith("/api"_L1))
        server.chop(4);
    dropSlashes();
    return server;
}

KRResult<QUrl> TwitterServiceHosts::RESTURLForPath(const QString& path) const
{
    return _urlForPath(path, RESTHostKey, "https"_L1);
}

KRResult<QUrl> TwitterServiceHosts::searchURLForPath(const QString& path) const
{
    return publicURLForPath(path, searchHostKey);
}

KRResult<QUrl> TwitterServiceHosts::publicURLForPath(const QString& path, const char* key) const
{
    const bool isSecure = valueForKey(QLatin1String(key)).startsWith(httpsPrefix, Qt::CaseInsensitive);
    return _urlForPath(path, key, isSecure ? "https"_L1 : "http"_L1);
}

KRResult<QUrl>
TwitterServiceHosts::uploadURLForPath(const QString& path, const char* key, ServiceScheme scheme) const
{
    const QString value = valueForKey(QLatin1String(key));
    const bool isPlain = value.startsWith(httpPrefix, Qt::CaseInsensitive);
    const bool isSecure = value.startsWith(httpsPrefix, Qt::CaseInsensitive);
    const QUrl written(isPlain || isSecure ? value : httpPrefix + value, QUrl::StrictMode);
    const bool isLocal = isLoopbackHost(written.host());
    if (isPlain && !isLocal)
        return unprotectedError(value);
    if ((isPlain || isSecure) && !written.path().isEmpty() && !written.path().endsWith(u'/')) {
        if (!written.isValid() || written.host().isEmpty() || !written.userInfo().isEmpty()
            || written.hasFragment())
            return serviceError(u"%1 is no address of a service"_s.arg(value));
        return written;
    }
    const bool usesPlain = isPlain || (!isSecure && isLocal && scheme == ServiceScheme::HTTP);
    return _urlForPath(path, key, usesPlain ? "http"_L1 : "https"_L1);
}

QString TwitterServiceHosts::linkPrefixForKey(const char* key) const
{
    QString host = valueForKey(QLatin1String(key));
    while (host.endsWith(u'/'))
        host.chop(1);
    if (host.isEmpty())
        return {};
    // Links are compared letter by letter, and their schemes are small.
    for (const QLatin1String scheme : { httpPrefix, httpsPrefix }) {
        if (host.startsWith(scheme, Qt::CaseInsensitive))
            return scheme + host.sliced(scheme.size()) + u'/';
    }
    return httpPrefix + host + u'/';
}

QString TwitterServiceHosts::webRoot() const
{
    const bool isPlain = webHost().startsWith(httpPrefix, Qt::CaseInsensitive);
    const KRResult<QUrl> url = _urlForPath({}, webHostKey, isPlain ? "http"_L1 : "https"_L1);
    return url.isError() ? QString() : url.value().toString(QUrl::FullyEncoded);
}

QStringList TwitterServiceHosts::protectedServers() const
{
    QStringList servers;
    for (const KRResult<QUrl>& url :
        { RESTURLForPath({}), searchURLForPath({}), KRResult<QUrl>(QUrl(webRoot())) })
        servers.append(url.isError() ? QString() : KRServerCertificate::serverOfURL(url.value()));
    servers.removeAll(QString());
    servers.removeDuplicates();
    return servers;
}

QList<KRServerCertificate> TwitterServiceHosts::trustedCertificates() const
{
    QList<KRServerCertificate> certificates;
    for (const QString& server : protectedServers()) {
        const QString fingerprint = KRTrustedCertificates::fingerprintForServer(server);
        if (!fingerprint.isEmpty())
            certificates.append({ server, fingerprint });
    }
    return certificates;
}

QUrl TwitterServiceHosts::webURLForUser(const QString& username) const
{
    const QString root = webRoot();
    if (root.isNull() || username.isEmpty())
        return {};
    return QUrl(root + QString::fromLatin1(QUrl::toPercentEncoding(username)), QUrl::StrictMode);
}

// The host may be written with this scheme, and with no other.
KRResult<QUrl>
TwitterServiceHosts::_urlForPath(const QString& path, const char* key, QLatin1String scheme) const
{
    const QString value = valueForKey(QLatin1String(key));
    QString host = value;
    if (host.isEmpty()) {
        return serviceError(
            u"No service is set up: %1 has no value in %2"_s.arg(QLatin1String(key), QLatin1String(group)));
    }
    const QString prefix = scheme + "://"_L1;
    if (prefix == httpsPrefix && host.startsWith(httpPrefix, Qt::CaseInsensitive))
        return unprotectedError(value);
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
