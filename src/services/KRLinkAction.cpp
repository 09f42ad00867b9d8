#include "services/KRLinkAction.h"

#include "services/KRImageService.h"
#include "services/URLShorteningService.h"
#include "text/KRActiveTextRanges.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Kind = KRLinkAction::Kind;

bool isSafeScheme(const QString& scheme)
{
    return scheme == "http"_L1 || scheme == "https"_L1 || scheme == "ftp"_L1 || scheme == "mailto"_L1;
}

// What stands under the root of a site besides people.
bool isReservedName(const QString& name)
{
    static const QSet<QString> names { u"about"_s,
        u"all"_s,
        u"api"_s,
        u"apps"_s,
        u"attachment"_s,
        u"avatar"_s,
        u"directory"_s,
        u"display"_s,
        u"doc"_s,
        u"events"_s,
        u"favorited"_s,
        u"featured"_s,
        u"file"_s,
        u"group"_s,
        u"groups"_s,
        u"help"_s,
        u"hub"_s,
        u"index"_s,
        u"login"_s,
        u"logout"_s,
        u"main"_s,
        u"network"_s,
        u"notice"_s,
        u"notifications"_s,
        u"opensearch"_s,
        u"plugins"_s,
        u"public"_s,
        u"register"_s,
        u"rss"_s,
        u"search"_s,
        u"settings"_s,
        u"sitemap"_s,
        u"tag"_s,
        u"tags"_s,
        u"theme"_s,
        u"url"_s,
        u"user"_s,
        u"users"_s };
    return names.contains(name.toLower());
}

bool isUsername(const QString& name)
{
    return !isReservedName(name) && std::ranges::all_of(name, [](QChar unit) {
        return unit.unicode() < 128 && (unit.isLetterOrNumber() || unit == u'_' || unit == u'-');
    });
}

bool isStatusID(const QString& text)
{
    return !text.isEmpty()
        && std::ranges::all_of(text, [](QChar unit) { return unit >= u'0' && unit <= u'9'; });
}

// As it is written where it is not the usual one of the scheme.
int unusualPort(const QUrl& url)
{
    const int usual = url.scheme() == "https"_L1 ? 443 : 80;
    return url.port(usual) == usual ? -1 : url.port();
}

// The pages of the account's own site that the program shows itself: /USER, /USER/status/ID, /notice/ID, /tag/WORD.
KRLinkAction actionForSitePage(const TwitterServiceHosts& hosts, const QString& link)
{
    const QUrl root(hosts.webRoot());
    const QUrl url(link, QUrl::StrictMode);
    const bool isOfWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
    if (!isOfWeb || root.host().isEmpty() || url.host() != root.host()
        || unusualPort(url) != unusualPort(root) || url.hasQuery())
        return {};
    QString path = url.path();
    if (!path.startsWith(root.path()))
        return {};
    path.remove(0, root.path().size());
    const QStringList parts = path.split(u'/', Qt::SkipEmptyParts);
    if (parts.size() == 1 && isUsername(parts[0]))
        return { Kind::ShowUser, parts[0] };
    if (parts.size() == 2 && parts[0] == "notice"_L1 && isStatusID(parts[1]))
        return { Kind::ShowStatus, parts[1], url };
    if (parts.size() == 2 && parts[0] == "tag"_L1)
        return { Kind::Search, u'#' + parts[1] };
    if (parts.size() == 3 && isUsername(parts[0]) && (parts[1] == "status"_L1 || parts[1] == "statuses"_L1)
        && isStatusID(parts[2]))
        return { Kind::ShowStatus, parts[2], url };
    return {};
}

KRLinkAction actionForLink(const TwitterServiceHosts& hosts, const QString& text, KRShortLinkPreview preview)
{
    const QString link = text.startsWith("www."_L1) ? u"http://%1"_s.arg(text) : text;
    if (const KRImageService* service = KRImageService::imageServiceForLink(hosts, link)) {
        const QUrl picture = service->fullSizeImageURLForURL(hosts, link);
        if (!picture.isEmpty())
            return { Kind::ShowPicture, link, picture };
    }
    const QUrl movie = KRImageService::isVideoServiceLink(hosts, link);
    if (!movie.isEmpty())
        return { .kind = Kind::PlayMovie, .url = movie };
    if (const KRLinkAction page = actionForSitePage(hosts, link); page.kind != Kind::Nothing)
        return page;
    return KRActionForURLString(hosts, link, preview);
}

} // namespace

KRLinkAction KRActionForActiveString(const TwitterServiceHosts& hosts,
    const QString& text,
    int type,
    KRShortLinkPreview preview)
{
    switch (type) {
    case KRActiveStringTypeNone:
        return { Kind::Beep, text };
    case KRActiveStringTypeLink:
        return actionForLink(hosts, text, preview);
    case KRActiveStringTypeHashtag:
    case KRActiveStringTypeStockSymbol:
        return { Kind::Search, text };
    case KRActiveStringTypeUsername:
        return { Kind::ShowUser, text };
    case KRActiveStringTypeEmailAddress:
        return { .kind = Kind::Mail, .url = QUrl(u"mailto:%1"_s.arg(text)) };
    default:
        return {};
    }
}

KRLinkAction
KRActionForURLString(const TwitterServiceHosts& hosts, const QString& urlString, KRShortLinkPreview preview)
{
    if (urlString.isNull())
        return {};
    if (preview == KRShortLinkPreview::On && URLShorteningService::isShortURLString(hosts, urlString))
        return { Kind::PreviewShortLink, urlString };
    return KRActionForOpening(urlString);
}

KRLinkAction KRActionForOpening(const QString& urlString)
{
    const QUrl url(urlString, QUrl::TolerantMode);
    // The desktop would take an address without a scheme for the name of a file.
    if (!url.isValid() || url.scheme().isEmpty())
        return {};
    return { .kind = isSafeScheme(url.scheme()) ? Kind::Open : Kind::OpenWhenUserAgrees, .url = url };
}
