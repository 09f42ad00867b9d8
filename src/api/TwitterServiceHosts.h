#pragma once

#include "foundation/KRResult.h"
#include "transport/KRServerCertificate.h"

#include <QHash>
#include <QString>
#include <QUrl>

class KRUserDefaults;

/// Domain of errors the program itself finds with a service or its answers; the code is -1, or the HTTP
/// status where there was one.
inline constexpr char16_t TwitterServiceErrorDomain[] = u"com.kestrin.pelinor";

/// The table of the service's hosts; none is known to the program otherwise. A host may carry a port and a
/// folder: "example.org", "example.org:8443/api". A value; any thread.
///
/// Keys: "RESTHost" (XML interface), "SearchHost" (search interface), "WebHost" (pages people look at), and
/// those of TwitterServiceHostKeys.h for the outside services.
class TwitterServiceHosts {
public:
    /// The group of the user defaults, and of a services file, that holds the table.
    static constexpr char group[] = "ServiceHosts";
    static constexpr char RESTHostKey[] = "RESTHost";
    static constexpr char searchHostKey[] = "SearchHost";
    static constexpr char webHostKey[] = "WebHost";

    /// How a service wants to be spoken to.
    enum class ServiceScheme { HTTP, HTTPS };

    /// The built-in defaults: no host.
    TwitterServiceHosts() = default;

    /// The built-in defaults, over them the user defaults, over them the file (INI; none when the path is
    /// empty). An error when the file cannot be read.
    static KRResult<TwitterServiceHosts> hostsWithDefaults(const KRUserDefaults& defaults,
        const QString& servicesFile = {});

    /// An empty value makes the service one without a host.
    void setValueForKey(const QString& value, const QString& key) { m_values.insert(key, value.trimmed()); }
    QString valueForKey(const QString& key) const { return m_values.value(key); }

    QString RESTHost() const { return valueForKey(QLatin1String(RESTHostKey)); }
    QString searchHost() const { return valueForKey(QLatin1String(searchHostKey)); }
    QString webHost() const { return valueForKey(QLatin1String(webHostKey)); }
    /// The keys that have a value, in their order.
    QStringList keys() const;
    /// The site by a name that people know it by and that tells it from others: host, port and folder of its
    /// XML interface in lower case, without the "api" at the end. Empty without a host.
    [[nodiscard]] QString server() const;

    /// The address of a path of the XML interface, which may carry a query and is not encoded again. Always
    /// https; an error, for the user to read, when no host is set or what is set is none.
    KRResult<QUrl> RESTURLForPath(const QString& path) const;
    /// The same for the search interface: https when the host is written with that scheme, else http, as the
    /// interface is public.
    KRResult<QUrl> searchURLForPath(const QString& path) const;
    /// The same for an outside service that is told nothing secret: https when its host is written with that
    /// scheme, else http.
    KRResult<QUrl> publicURLForPath(const QString& path, const char* key) const;
    /// The address that files go to, with a user name and password. The service's scheme counts for a host
    /// written without one. A value with a scheme and a path is the whole address, unless it ends in a slash.
    /// Plain http is kept to this computer: elsewhere a host without a scheme is asked over https, and one
    /// written with http is an error.
    KRResult<QUrl> uploadURLForPath(const QString& path, const char* key, ServiceScheme scheme) const;
    /// What the links of an outside service begin with, up to and with the slash behind the host; http unless
    /// the host is written with https. Null when the service has no host.
    [[nodiscard]] QString linkPrefixForKey(const char* key) const;

    /// What the addresses of the service's pages begin with, up to and with a slash: https unless the host is
    /// written with http. Null without a host, or when what is set is none.
    [[nodiscard]] QString webRoot() const;
    /// The servers of the service itself that are asked over https, each once, as certificates name them.
    [[nodiscard]] QStringList protectedServers() const;
    /// The certificates that are trusted for these now.
    [[nodiscard]] QList<KRServerCertificate> trustedCertificates() const;
    /// A person's page; empty without a host. Names are encoded.
    [[nodiscard]] QUrl webURLForUser(const QString& username) const;

private:
    KRResult<QUrl> _urlForPath(const QString& path, const char* key, QLatin1String scheme) const;

    QHash<QString, QString> m_values;
};
