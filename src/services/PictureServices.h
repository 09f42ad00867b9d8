#pragma once

#include "services/TwitPicCompatibleImageService.h"

/// Spoken to over https.
class TwitPic final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
    [[nodiscard]] QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const override;
};

/// Spoken to over https. Takes movies too, and gives them links on its second host that end in "z".
class yFrog final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
    [[nodiscard]] QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const override;
};

/// Adds to a link for the picture itself.
class Twitgoo final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
    [[nodiscard]] QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const override;
};

/// Its links are opened in the browser.
class Posterous final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
};

/// Like TwitPic, in another folder.
class ImgLy final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
    [[nodiscard]] QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const override;
};

/// The store of the account's own site.
class SitePictureStore final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
};

/// Has names of its own for the file and the link.
class PixIm final : public TwitPicCompatibleImageService {
public:
    [[nodiscard]] KRResult<QUrl> apiRoot(const TwitterServiceHosts& hosts) const override;
    [[nodiscard]] QString mediaParameterName() const override;
    [[nodiscard]] QString mediaURLResponseTag() const override;
    [[nodiscard]] QUrl fullSizeImageURLForURL(const TwitterServiceHosts& hosts,
        const QString& link) const override;
};
