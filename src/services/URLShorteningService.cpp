#include "services/URLShorteningService.h"

#include "api/TwitterServiceHostKeys.h"
#include "foundation/KRLog.h"
#include "services/TwitterServiceRequest.h"
#include "services/URLServiceAnswers.h"
#include "services/URLShorteners.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* shortLinkKeys[] = {
    TwitterServiceHostKeys::BitlyLinkHost,
    TwitterServiceHostKeys::TinyURLLinkHost,
    TwitterServiceHostKeys::TrImLinkHost,
    TwitterServiceHostKeys::IsGdLinkHost,
    TwitterServiceHostKeys::OtherShort1LinkHost,
    TwitterServiceHostKeys::OtherShort2LinkHost,
    TwitterServiceHostKeys::OtherShort3LinkHost,
    TwitterServiceHostKeys::OtherShort4LinkHost,
};

struct Services {
    BitlyShortener bitly;
    TinyURLShortener tinyURL;
    LongURLShortener longURL;
    IsGdShortener isGd;
    TrImShortener trIm;
    DiggBarShortener diggBar;
};

const Services& sharedServices()
{
    // Never released: a request may be made until the very end.
    static const auto* services = new Services;
    return *services;
}

KRError programError(const QString& description)
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain), -1, description);
}

KRResult<QString> readExpansion(const KRHTTPRequest& request)
{
    return URLServiceAnswers::anyJSONMember(request.data(), programError(u"Could not unshorten URL"_s));
}

} // namespace

bool URLShorteningService::isShortURLString(const TwitterServiceHosts& hosts, const QString& string)
{
    return std::ranges::any_of(shortLinkKeys, [&](const char* key) {
        const QString prefix = hosts.linkPrefixForKey(key);
        return !prefix.isNull() && string.startsWith(prefix);
    });
}

void URLShorteningService::shortenURLString(const TwitterServiceContext& context,
    const QString& url,
    KRCallback<QString> callback)
{
    if (isShortURLString(context.hosts, url))
        callback.invoke(programError(u"Already shortened"_s));
    else
        currentService(context).shortenURLString(context.hosts, url, std::move(callback));
}

void URLShorteningService::expandURLString(const TwitterServiceContext& context,
    const QString& url,
    KRCallback<QString> callback)
{
    _sendGET(context.hosts,
        TwitterServiceHostKeys::ExpansionAPIHost,
        u"api/v1.1"_s,
        KRParameters().add("q"_L1, url),
        readExpansion,
        std::move(callback));
}

const URLShorteningService& URLShorteningService::currentService(const TwitterServiceContext& context)
{
    const Services& services = sharedServices();
    switch (context.preferenceForKey(URLShorteningServicePreferredServiceDefaultsKey)) {
    case URLShorteningServiceTinyURL:
        return services.tinyURL;
    case URLShorteningServiceIsGd:
        return services.isGd;
    case URLShorteningServiceTrIm:
        return services.trIm;
    case URLShorteningServiceDiggBar:
        return services.diggBar;
    default:
        return services.bitly;
    }
}

void URLShorteningService::shortenURLString(const TwitterServiceHosts&,
    const QString&,
    KRCallback<QString>) const
{
    KRLog(u"Error: can't shorten with a generic service"_s);
}

void URLShorteningService::expandURLString(const TwitterServiceHosts&,
    const QString&,
    KRCallback<QString>) const
{
    KRLog(u"Error: can't expand with a generic service"_s);
}

void URLShorteningService::_sendGET(const TwitterServiceHosts& hosts,
    const char* hostKey,
    const QString& path,
    const KRParameters& parameters,
    Reader reader,
    KRCallback<QString> callback)
{
    TwitterServiceRequest::GET(
        hosts.publicURLForPath(TwitterServiceRequest::pathWithQuery(path, parameters), hostKey),
        TwitterServiceRequest::answerHandler(reader, std::move(callback)));
}
