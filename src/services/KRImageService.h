#pragma once

#include "services/TwitterServiceContext.h"
#include "transport/KRCallback.h"

#include <QString>
#include <QUrl>

class TwitterCredentials;

/// The user default with the number of the chosen service.
inline constexpr char ImageServicePreferredServiceDefaultsKey[] = "ImageServicePreferredServiceDefaultsKey";

/// The choices. Any other number means yFrog.
enum KRImageServicePreference {
    KRImageServiceYFrog = 0,
    KRImageServiceTwitPic = 1,
    KRImageServiceTwitgoo = 2,
    KRImageServicePosterous = 3,
    KRImageServiceImgLy = 4,
    KRImageServicePixIm = 5,
    /// The account's own site.
    KRImageServiceSite = 6,
};

/// A file on its way to a service. Lent for a call.
struct KRUpload {
    const TwitterServiceHosts& hosts;
    const QString& path;
    const TwitterCredentials& account;
    /// Who watches it, if anybody does.
    const std::shared_ptr<KRUploadMonitor>& monitor;
};

/// Puts pictures and movies on the network, and knows the links they get there. The base class of the
/// services, and the way to the one that the user has chosen.
///
/// Links are given as texts, for they count letter by letter and QUrl writes hosts in lower case.
class KRImageService {
public:
    KRImageService() = default;
    KRImageService(const KRImageService&) = delete;
    KRImageService& operator=(const KRImageService&) = delete;
    virtual ~KRImageService() = default;

    /// The chosen service; without a choice the account's site where that takes pictures. The instances live until the program ends, and have no state.
    [[nodiscard]] static const KRImageService& currentService(const TwitterServiceContext& context);
    /// Uploads the file to the chosen service.
    static void postImage(const TwitterServiceContext& context,
        const QString& path,
        const TwitterCredentials& account,
        KRCallback<QUrl> callback);
    /// Uploads the file to yFrog, the one of the services that takes movies, whatever the choice; to the
    /// account's site where that is what pictures go to.
    static void postVideo(const TwitterServiceContext& context,
        const QString& path,
        const TwitterCredentials& account,
        KRCallback<QUrl> callback);

    [[nodiscard]] static bool isTwitPicLink(const TwitterServiceHosts& hosts, const QString& link);
    /// Movies are left out.
    [[nodiscard]] static bool isYFrogImageLink(const TwitterServiceHosts& hosts, const QString& link);
    [[nodiscard]] static bool isTwitgooLink(const TwitterServiceHosts& hosts, const QString& link);
    [[nodiscard]] static bool isImglyLink(const TwitterServiceHosts& hosts, const QString& link);
    [[nodiscard]] static bool isPixImLink(const TwitterServiceHosts& hosts, const QString& link);
    [[nodiscard]] static bool isImageServiceLink(const TwitterServiceHosts& hosts, const QString& link);
    /// The address of the movie behind the link, to be played; an empty one when the link is none of a movie.
    [[nodiscard]] static QUrl isVideoServiceLink(const TwitterServiceHosts& hosts, const QString& link);
    /// The service whose picture the link shows; null when it shows none.
    [[nodiscard]] static const KRImageService* imageServiceForLink(const TwitterServiceHosts& hosts,
        const QString& link);

    /// Uploads the file to this service. The callback is invoked once, on the shared background thread, with
    /// the link to the file or an error. A class without an upload logs so and never answers.
    virtual void postImage(const KRUpload& upload, KRCallback<QUrl> callback) const;
    virtual void postVideo(const KRUpload& upload, KRCallback<QUrl> callback) const;
    /// The address of the picture itself behind a link of this service; an empty one when there is none.
    [[nodiscard]] virtual QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const;
};
