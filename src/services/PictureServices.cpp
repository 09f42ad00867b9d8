#include "services/PictureServices.h"

#include "api/TwitterServiceHostKeys.h"

using namespace Qt::StringLiterals;
using Scheme = TwitterServiceHosts::ServiceScheme;

namespace {

// The picture lies in a folder of the links' host, under the name that the link has there.
QUrl pictureInFolder(const QString& prefix, const QString& folder, const QString& link)
{
    const qsizetype found = prefix.isNull() ? -1 : link.indexOf(prefix);
    if (found < 0)
        return {};
    return QUrl(prefix + folder + link.sliced(found + prefix.size()));
}

} // namespace

KRResult<QUrl> TwitPic::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/upload"_s, TwitterServiceHostKeys::TwitPicAPIHost, Scheme::HTTPS);
}

QUrl TwitPic::fullSizeImageURLForURL(const TwitterServiceHosts& hosts, const QString& link) const
{
    return pictureInFolder(hosts.linkPrefixForKey(TwitterServiceHostKeys::TwitPicLinkHost),
        u"show/iphone/"_s,
        link);
}

KRResult<QUrl> yFrog::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/upload"_s, TwitterServiceHostKeys::YFrogAPIHost, Scheme::HTTPS);
}

QUrl yFrog::fullSizeImageURLForURL(const TwitterServiceHosts&, const QString& link) const
{
    return QUrl(link + u":iphone"_s);
}

KRResult<QUrl> Twitgoo::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/upload"_s, TwitterServiceHostKeys::TwitgooAPIHost, Scheme::HTTP);
}

QUrl Twitgoo::fullSizeImageURLForURL(const TwitterServiceHosts&, const QString& link) const
{
    return QUrl(link + u"/img"_s);
}

KRResult<QUrl> Posterous::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/upload"_s, TwitterServiceHostKeys::PosterousAPIHost, Scheme::HTTP);
}

KRResult<QUrl> ImgLy::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/upload"_s, TwitterServiceHostKeys::ImgLyAPIHost, Scheme::HTTP);
}

QUrl ImgLy::fullSizeImageURLForURL(const TwitterServiceHosts& hosts, const QString& link) const
{
    return pictureInFolder(hosts.linkPrefixForKey(TwitterServiceHostKeys::ImgLyLinkHost),
        u"show/large/"_s,
        link);
}

KRResult<QUrl> SitePictureStore::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.RESTURLForPath(u"statusnet/media/upload"_s);
}

KRResult<QUrl> PixIm::apiRoot(const TwitterServiceHosts& hosts) const
{
    return hosts.uploadURLForPath(u"api/pictures.xml"_s, TwitterServiceHostKeys::PixImAPIHost, Scheme::HTTP);
}

QString PixIm::mediaParameterName() const
{
    return u"picture"_s;
}

QString PixIm::mediaURLResponseTag() const
{
    return u"picture_url"_s;
}

QUrl PixIm::fullSizeImageURLForURL(const TwitterServiceHosts&, const QString& link) const
{
    return QUrl(link + u"/full"_s);
}
