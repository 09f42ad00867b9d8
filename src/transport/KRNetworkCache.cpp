#include "transport/KRNetworkCache.h"

#include "foundation/KRFileManager.h"
#include "foundation/KRFiles.h"
#include "foundation/KRLog.h"
#include "text/KRDataAdditions.h"
#include "text/KRStringAdditions.h"
#include "transport/KRHTTPRequest.h"

#include <QFile>

namespace {

// A file system's names hold 255 bytes, and a replacement is written under a name with a few more.
constexpr qsizetype longestName = 240;

QString pathForURL(const QUrl& url)
{
    QString name = KRAdditions::URLEncodedString(QString::fromLatin1(url.toEncoded()));
    name.replace(u'%', QLatin1String("___"));
    if (name.size() > longestName)
        name = KRAdditions::kr_sha1Digest(name);
    return KRFileManager::pelinorProfileImageCacheDirectory() + u'/' + name;
}

/// What waits for one download.
struct Download : std::enable_shared_from_this<Download> {
    Download(QString file, KRCallback<QByteArray> callback)
        : m_file(std::move(file))
        , m_callback(std::move(callback))
    {
    }

    void response(KRHTTPRequest& request)
    {
        if (request.error()) {
            m_callback.invoke(*request.error());
            return;
        }
        const KRResult<void> written = KRWriteFileAtomically(m_file, request.data());
        if (written.isError())
            KRLog(QStringLiteral("Warning: a picture is not kept: %1").arg(written.error().description));
        m_callback.invoke(request.data());
    }

private:
    QString m_file;
    KRCallback<QByteArray> m_callback;
};

} // namespace

QByteArray KRNetworkCache::cachedDataForURL(const QUrl& url, QString* file)
{
    const QString path = pathForURL(url);
    if (file)
        *file = path;
    QFile cached(path);
    return cached.open(QIODevice::ReadOnly) ? cached.readAll() : QByteArray();
}

void KRNetworkCache::request(const QUrl& url, KRCallback<QByteArray> callback)
{
    QString file;
    const QByteArray cached = cachedDataForURL(url, &file);
    if (!cached.isNull()) {
        callback.invoke(cached);
        return;
    }
    const auto download = std::make_shared<Download>(file, std::move(callback));
    KRHTTPRequest::GET(url, Callback(download, &Download::response));
}
