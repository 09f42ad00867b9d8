#include "api/TwitterSiteFinder.h"

#include "parsing/KRXMLParser.h"
#include "transport/KRHTTPRequest.h"
#include "transport/KRProxy.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

// A copied address may lie some folders below the site's own.
constexpr qsizetype DeepestFolder = 3;
constexpr int Unauthorized = 401;
constexpr qsizetype LongestName = 100;

/// The address with another last part.
QUrl below(const QUrl& folder, const QString& path)
{
    QUrl url = folder;
    url.setPath(folder.path() + path);
    return url;
}

/// The address without its last part; empty when it ends in another one.
QUrl above(const QUrl& url, const QString& path)
{
    if (!url.path().endsWith(u'/' + path))
        return {};
    QUrl folder = url;
    folder.setPath(url.path().chopped(path.size()));
    return folder;
}

/// The folder itself, and those above it.
QList<QUrl> foldersOf(const QUrl& root)
{
    const QStringList names = root.path().split(u'/', Qt::SkipEmptyParts).mid(0, DeepestFolder);
    QList<QUrl> folders;
    for (qsizetype depth = names.size(); depth >= 0; --depth) {
        QUrl folder = root;
        folder.setPath(depth == 0 ? u"/"_s : u'/' + names.mid(0, depth).join(u'/') + u'/');
        folders.append(folder);
    }
    return folders;
}

/// An address a site gave, as one that may be asked; empty when it is none.
QUrl secured(const QUrl& url)
{
    QUrl result = url;
    if (result.scheme() == "http"_L1) {
        result.setScheme(u"https"_s);
        if (result.port() == 80)
            result.setPort(-1);
    }
    const bool isUsable = result.isValid() && result.scheme() == "https"_L1 && !result.host().isEmpty()
        && result.userInfo().isEmpty();
    return isUsable ? result : QUrl();
}

QUrl asFolder(QUrl url)
{
    url.setQuery(QString());
    url.setFragment(QString());
    if (!url.path().endsWith(u'/'))
        url.setPath(url.path() + u'/');
    return url;
}

/// Calls for every element, at its start with its attributes and at its end with its text.
struct EveryElement {
    std::function<void(KRXMLParser& parser)> handle;
    void element(KRXMLParser& parser) { handle(parser); }
};

bool readElements(const QByteArray& data, std::function<void(KRXMLParser&)> handle)
{
    const auto reader = std::make_shared<EveryElement>(EveryElement { std::move(handle) });
    return !KRXMLParser::parseData(data, Callback(reader, &EveryElement::element)).isError();
}

} // namespace

QUrl TwitterSiteFinder::rootForText(const QString& typed)
{
    QString text = typed.trimmed();
    static const QRegularExpression scheme(u"\\A[a-z][a-z0-9+.-]*://"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = scheme.match(text);
    if (match.hasMatch() && !match.captured().startsWith("http"_L1, Qt::CaseInsensitive))
        return {};
    text.remove(0, match.capturedLength());
    // A person of the site, "alice@example.org" or "@alice@example.org".
    const QString authority = text.section(u'/', 0, 0);
    if (authority.contains(u'@'))
        text.remove(0, authority.lastIndexOf(u'@') + 1);
    const QUrl url(u"https://"_s + text, QUrl::StrictMode);
    // A word alone is no host but this computer's.
    const bool isHost
        = url.host().contains(u'.') || url.host().contains(u':') || url.host() == "localhost"_L1;
    return url.isValid() && isHost ? asFolder(url) : QUrl();
}

QUrl TwitterSiteFinder::interfaceInDescription(const QByteArray& rsd)
{
    QUrl found;
    readElements(rsd, [&found](KRXMLParser& parser) {
        const QMap<QString, QString> attributes = parser.attributes();
        if (found.isEmpty() && parser.elementName() == "api"
            && attributes.value(u"name"_s).compare("Twitter"_L1, Qt::CaseInsensitive) == 0)
            found = secured(QUrl(attributes.value(u"apiLink"_s)));
    });
    return found.isEmpty() ? found : asFolder(found);
}

QUrl TwitterSiteFinder::descriptionInPage(const QByteArray& html, const QUrl& page)
{
    // Pages are seldom well-formed; the link is a tag of its own in all of them.
    static const QRegularExpression tag(u"<link\\s[^<>]*>"_s, QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression relation(u"\\srel\\s*=\\s*[\"']?EditURI[\"'\\s/>]"_s,
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression target(u"\\shref\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)')"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QString text = QString::fromUtf8(html);
    for (auto tags = tag.globalMatch(text); tags.hasNext();) {
        const QString link = tags.next().captured();
        const QRegularExpressionMatch address = target.match(link);
        if (!relation.match(link).hasMatch() || !address.hasMatch())
            continue;
        const QString href = QString(address.captured(1) + address.captured(2)).replace("&amp;"_L1, "&"_L1);
        return secured(page.resolved(QUrl(href)));
    }
    return {};
}

bool TwitterSiteFinder::readConfiguration(const QByteArray& xml, TwitterSite& site)
{
    bool isConfiguration = false;
    bool isInSite = false;
    const bool isRead = readElements(xml, [&](KRXMLParser& parser) {
        const std::string_view element = parser.elementName();
        isConfiguration = isConfiguration || element == "config";
        if (element == "site")
            isInSite = true;
        else if (element == "license")
            isInSite = false;
        if (!parser.hasCharacters())
            return;
        if (isInSite && element == "name")
            site.name = parser.characters().simplified().left(LongestName);
        else if (isInSite && element == "textlimit") {
            bool isNumber = false;
            const qint32 limit = parser.characters().toInt(&isNumber);
            if (isNumber && limit >= 0)
                site.textLimit = limit;
        } else if (element == "uploads") {
            site.takesUploads = parser.characters() == "true"_L1;
        }
    });
    return isRead && isConfiguration;
}

void TwitterSiteFinder::findSite(const QString& typed, const KRCallback<TwitterSite>& callback)
{
    const QUrl root = rootForText(typed);
    if (root.isEmpty()) {
        callback.invoke(errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
            -1,
            u"\"%1\" is no server's address"_s.arg(typed.simplified().left(LongestName))));
        return;
    }
    const std::shared_ptr<TwitterSiteFinder> finder(new TwitterSiteFinder(root, callback));
    finder->_next();
}

TwitterSiteFinder::TwitterSiteFinder(const QUrl& root, KRCallback<TwitterSite> callback)
    : m_callback(std::move(callback))
    , m_server(root.authority())
    , m_protectedServer(KRServerCertificate::serverOfURL(root))
{
    const QList<QUrl> folders = foldersOf(root);
    for (const QUrl& folder : folders)
        m_steps.push_back({ Step::Kind::Description, below(folder, u"rsd.xml"_s) });
    for (const QUrl& folder : folders)
        m_steps.push_back({ Step::Kind::Page, folder });
    for (const QUrl& folder : folders) {
        m_steps.push_back({ Step::Kind::Configuration, below(folder, u"api/statusnet/config.xml"_s) });
        m_steps.push_back({ Step::Kind::Configuration, below(folder, u"statusnet/config.xml"_s) });
    }
}

void TwitterSiteFinder::_next()
{
    if (m_steps.empty() && m_certificateError) {
        m_callback.invoke(*m_certificateError);
        return;
    }
    if (m_steps.empty()) {
        const QString reason
            = m_error.description.isEmpty() ? QString() : u" (%1)"_s.arg(m_error.description);
        m_callback.invoke(errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
            -1,
            u"No micro-blogging service was found at %1%2"_s.arg(m_server, reason)));
        return;
    }
    m_step = m_steps.front();
    m_steps.pop_front();
    KRHTTPRequest::GET(m_step.url, Callback(shared_from_this(), &TwitterSiteFinder::_answered));
}

void TwitterSiteFinder::_tryInterface(const QUrl& base)
{
    m_steps.push_front({ Step::Kind::Configuration, below(base, u"statusnet/config.xml"_s) });
    _next();
}

void TwitterSiteFinder::_answered(KRHTTPRequest& request)
{
    using Kind = Step::Kind;
    if (request.error())
        m_error = *request.error();
    const bool isGood = !request.error();
    if (const auto refused = KRServerCertificate::refusedByError(m_error); refused && !isGood) {
        if (!m_certificateError)
            m_certificateError = m_error;
        // Everything else there would be refused as well.
        if (refused->server == m_protectedServer)
            m_steps.clear();
        _next();
        return;
    }
    switch (m_step.kind) {
    case Kind::Description:
        if (const QUrl base = isGood ? interfaceInDescription(request.data()) : QUrl(); !base.isEmpty()) {
            _tryInterface(base);
            return;
        }
        break;
    case Kind::Page:
        if (const QUrl rsd = isGood ? descriptionInPage(request.data(), request.responseURL()) : QUrl();
            !rsd.isEmpty())
            m_steps.push_front({ Kind::Description, rsd });
        break;
    case Kind::Configuration: {
        m_base = above(m_step.url, u"statusnet/config.xml"_s);
        TwitterSite site;
        if (isGood && readConfiguration(request.data(), site)) {
            _movedTo(above(request.responseURL(), u"statusnet/config.xml"_s));
            _found(site);
            return;
        }
        // Not every service tells of itself; all of them refuse who has no name.
        m_steps.push_front({ Kind::Credentials, below(m_base, u"account/verify_credentials.xml"_s) });
        break;
    }
    case Kind::Credentials:
        if (request.statusCode() == Unauthorized) {
            _movedTo(above(request.responseURL(), u"account/verify_credentials.xml"_s));
            _found({});
            return;
        }
        break;
    }
    _next();
}

void TwitterSiteFinder::_movedTo(const QUrl& base)
{
    // A password is never sent on to where a redirect leads, so it has to go there straight away.
    if (!base.isEmpty())
        m_base = base;
}

void TwitterSiteFinder::_found(TwitterSite site)
{
    const auto withoutScheme = [](const QUrl& url) {
        QString text = url.authority() + url.path();
        while (text.endsWith(u'/'))
            text.chop(1);
        return text;
    };
    const QString interface = withoutScheme(m_base);
    const QString web = interface.endsWith("/api"_L1) ? interface.chopped(4) : interface;
    site.hosts.setValueForKey(interface, QLatin1String(TwitterServiceHosts::RESTHostKey));
    site.hosts.setValueForKey(u"https://"_s + interface, QLatin1String(TwitterServiceHosts::searchHostKey));
    site.hosts.setValueForKey(u"https://"_s + web, QLatin1String(TwitterServiceHosts::webHostKey));
    site.certificates = site.hosts.trustedCertificates();
    m_callback.invoke(site);
}
