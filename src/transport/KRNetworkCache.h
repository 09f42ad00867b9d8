#pragma once

#include "transport/KRCallback.h"

#include <QByteArray>
#include <QUrl>

class KRHTTPRequest;

/// Downloads kept as files in the profile-image cache directory, found by their address. Any thread.
class KRNetworkCache {
public:
    /// The file's bytes, empty when it is not cached. With `file`, also where it is or would be.
    static QByteArray cachedDataForURL(const QUrl& url, QString* file = nullptr);
    /// Delivers the bytes: at once, on the calling thread, when they are cached; otherwise after a download,
    /// on the background thread. An error of the download is delivered in their place, and nothing is kept; nor
    /// is a web page, which is no picture and would stand in its place for ever.
    /// Who asks for what is on its way already waits for the same download.
    static void request(const QUrl& url, KRCallback<QByteArray> callback);
};
