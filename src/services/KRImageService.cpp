#include "services/KRImageService.h"

#include "api/TwitterServiceHostKeys.h"
#include "foundation/KRLog.h"
#include "services/PictureServices.h"

using namespace Qt::StringLiterals;

namespace {

struct Services {
    TwitPic twitPic;
    yFrog yfrog;
    Twitgoo twitgoo;
    Posterous posterous;
    ImgLy imgLy;
    PixIm pixIm;
    SitePictureStore site;
};

const Services& sharedServices()
{
    // Never released: an upload may be answered at the very end.
    static const auto* services = new Services;
    return *services;
}

bool usesSite(const TwitterServiceContext& context)
{
    return context.hasPreferenceForKey(ImageServicePreferredServiceDefaultsKey)
        ? context.preferenceForKey(ImageServicePreferredServiceDefaultsKey) == KRImageServiceSite
        : context.siteTakesUploads;
}

bool beginsWithPrefix(const TwitterServiceHosts& hosts, const char* key, const QString& link)
{
    const QString prefix = hosts.linkPrefixForKey(key);
    return !prefix.isNull() && link.startsWith(prefix);
}

} // namespace

const KRImageService& KRImageService::currentService(const TwitterServiceContext& context)
{
    const Services& services = sharedServices();
    if (usesSite(context))
        return services.site;
    switch (context.preferenceForKey(ImageServicePreferredServiceDefaultsKey)) {
    case KRImageServiceTwitPic:
        return services.twitPic;
    case KRImageServiceTwitgoo:
        return services.twitgoo;
    case KRImageServicePosterous:
        return services.posterous;
    case KRImageServiceImgLy:
        return services.imgLy;
    case KRImageServicePixIm:
        return services.pixIm;
    default:
        return services.yfrog;
    }
}

void KRImageService::postImage(const TwitterServiceContext& context,
    const QString& path,
    const TwitterCredentials& account,
    KRCallback<QUrl> callback)
{
    currentService(context).postImage({ context.hosts, path, account, context.monitor }, std::move(callback));
}

void KRImageService::postVideo(const TwitterServiceContext& context,
    const QString& path,
    const TwitterCredentials& account,
    KRCallback<QUrl> callback)
{
    const Services& services = sharedServices();
    const KRImageService& service
        = usesSite(context) ? static_cast<const KRImageService&>(services.site) : services.yfrog;
    service.postVideo({ context.hosts, path, account, context.monitor }, std::move(callback));
}

bool KRImageService::isTwitPicLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return beginsWithPrefix(hosts, TwitterServiceHostKeys::TwitPicLinkHost, link);
}

bool KRImageService::isYFrogImageLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return !link.endsWith(u'z')
        && (beginsWithPrefix(hosts, TwitterServiceHostKeys::YFrogLinkHost, link)
            || beginsWithPrefix(hosts, TwitterServiceHostKeys::YFrogSecondLinkHost, link));
}

bool KRImageService::isTwitgooLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return beginsWithPrefix(hosts, TwitterServiceHostKeys::TwitgooLinkHost, link);
}

bool KRImageService::isImglyLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return beginsWithPrefix(hosts, TwitterServiceHostKeys::ImgLyLinkHost, link);
}

bool KRImageService::isPixImLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return beginsWithPrefix(hosts, TwitterServiceHostKeys::PixImLinkHost, link);
}

bool KRImageService::isImageServiceLink(const TwitterServiceHosts& hosts, const QString& link)
{
    return imageServiceForLink(hosts, link) != nullptr;
}

QUrl KRImageService::isVideoServiceLink(const TwitterServiceHosts& hosts, const QString& link)
{
    if (!link.endsWith(u'z') || !beginsWithPrefix(hosts, TwitterServiceHostKeys::YFrogSecondLinkHost, link))
        return {};
    return QUrl(link + u":iphone"_s);
}

const KRImageService* KRImageService::imageServiceForLink(const TwitterServiceHosts& hosts,
    const QString& link)
{
    const Services& services = sharedServices();
    if (isTwitPicLink(hosts, link))
        return &services.twitPic;
    if (isYFrogImageLink(hosts, link))
        return &services.yfrog;
    if (isTwitgooLink(hosts, link))
        return &services.twitgoo;
    if (isImglyLink(hosts, link))
        return &services.imgLy;
    if (isPixImLink(hosts, link))
        return &services.pixIm;
    return nullptr;
}

void KRImageService::postImage(const KRUpload&, KRCallback<QUrl>) const
{
    KRLog(u"subclasses must implement"_s);
}

void KRImageService::postVideo(const KRUpload&, KRCallback<QUrl>) const
{
    KRLog(u"subclasses must implement"_s);
}

QUrl KRImageService::fullSizeImageURLForURL(const TwitterServiceHosts&, const QString&) const
{
    return {};
}
