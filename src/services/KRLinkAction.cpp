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

bool isHexadecimal(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

QByteArray percentEscaped(const QString& text)
{
    // What an address may hold, and "%" where it begins an escape.
    const QByteArrayView allowed = "-._~:/?#[]@!$&'()*+,;=";
    const QByteArray bytes = text.toUtf8();
    QByteArray escaped;
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        const char byte = bytes.at(at);
        const bool isLetterOrDigit
            = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        const bool beginsEscape = byte == '%' && at + 2 < bytes.size() && isHexadecimal(bytes.at(at + 1))
            && isHexadecimal(bytes.at(at + 2));
        if (isLetterOrDigit || beginsEscape || allowed.contains(byte))
            escaped += byte;
        else
            escaped += '%' + QByteArray(1, byte).toHex().toUpper();
    }
    return escaped;
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
    QUrl url(urlString, QUrl::StrictMode);
    if (!url.isValid())
        url = QUrl::fromEncoded(percentEscaped(urlString), QUrl::StrictMode);
    // The desktop would take an address without a scheme for the name of a file.
    if (!url.isValid() || url.scheme().isEmpty())
        return {};
    return { .kind = isSafeScheme(url.scheme()) ? Kind::Open : Kind::OpenWhenUserAgrees, .url = url };
}
