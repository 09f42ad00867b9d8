#include "services/KRLinkAction.h"

#include "services/KRImageService.h"
#include "services/URLShorteningService.h"
#include "text/KRActiveTextRanges.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = KRLinkAction::Kind;

bool isSafeScheme(const QString& scheme)
{
    return scheme == "http"_L1 || scheme == "https"_L1 || scheme == "ftp"_L1 || scheme == "mailto"_L1;
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
