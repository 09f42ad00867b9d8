#pragma once

#include "services/KRImageService.h"

class KRHTTPRequest;

/// Domain of errors about an answer without a link; the code is -1.
inline constexpr char16_t TwitPicCompatibleErrorDomain[] = u"twitpic-compatible-error";
/// Domain of errors about a link that is no address; the code is -1.
inline constexpr char16_t TwitPicCompatibleURLErrorDomain[] = u"twitpic-compatible-url-error";

/// The upload that all services share: one form with the user name, the password and the file, answered with
/// the link in XML. The answer is read on the background thread. What a service says when it refuses is not shown.
///
/// Where the address is on the account's own server the request is signed in as all others there, and the
/// form holds no password. Otherwise that goes to the service's own address only, and over plain http not beyond this computer. Without
/// a password, or a file that can be read, nothing is sent and the callback gets an error.
class TwitPicCompatibleImageService : public KRImageService {
public:
    using KRImageService::postImage;
    using KRImageService::postVideo;
    void postImage(const KRUpload& upload, KRCallback<QUrl> callback) const override;
    void postVideo(const KRUpload& upload, KRCallback<QUrl> callback) const override;

    /// Where files are sent.
    [[nodiscard]] virtual KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const;
    /// The form's name for the file.
    [[nodiscard]] virtual QString mediaParameterName() const;
    /// The element with the link.
    [[nodiscard]] virtual QString mediaURLResponseTag() const;

private:
    enum class Media { Image, Video };

    void _post(Media media, const KRUpload& upload, KRCallback<QUrl> callback) const;
    void didPostImage(const KRHTTPRequest& request, const KRCallback<QUrl>& callback) const;
};
