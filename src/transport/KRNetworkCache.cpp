#include "transport/KRNetworkCache.h"

#include "foundation/KRFileManager.h"
#include "foundation/KRFiles.h"
#include "foundation/KRLog.h"
#include "text/KRDataAdditions.h"
#include "text/KRStringAdditions.h"
#include "transport/KRHTTPRequest.h"

#include <QFile>
#include <QHash>

#include <mutex>
#include <utility>
#include <vector>

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

// What the networks of hotels send in place of everything. Some servers call pictures HTML too.
bool isWebPage(const KRHTTPRequest& request)
{
    return request.responseHeader("content-type").toLower().startsWith("text/html")
        && request.data().trimmed().startsWith('<');
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// One download, and all who wait for it.
class Download : public std::enable_shared_from_this<Download> {
public:
    /// Joins the download of that address, or starts it.
    static void join(const QUrl& url, const QString& file, KRCallback<QByteArray> callback)
    {
        std::shared_ptr<Download> download;
        QByteArray finished;
        {
            std::scoped_lock guard(s_lock);
            if (const auto known = s_running.constFind(url); known != s_running.cend()) {
                (*known)->m_callbacks.push_back(std::move(callback));
                return;
            }
            // It may have come since the asker looked.
            finished = contentOf(file);
            if (finished.isEmpty()) {
                download = std::make_shared<Download>(url, file, std::move(callback));
                s_running.insert(url, download);
            }
        }
        if (!download) {
            callback.invoke(finished);
            return;
        }
        const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
        request->setUrl(url);
        request->setIsPicture(true);
        request->setResponseCallback(Callback(download, &Download::response));
        request->startRequest();
    }

    Download(QUrl url, QString file, KRCallback<QByteArray> callback)
        : m_url(std::move(url))
        , m_file(std::move(file))
    {
        m_callbacks.push_back(std::move(callback));
    }

private:
    void response(KRHTTPRequest& request)
    {
        if (!request.error() && !request.data().isEmpty() && !isWebPage(request)) {
            const KRResult<void> written = KRWriteCacheFile(m_file, request.data());
            if (written.isError())
                KRLog(QStringLiteral("Warning: a picture is not kept: %1").arg(written.error().description));
        }
        for (const KRCallback<QByteArray>& callback : _end()) {
            if (request.error())
                callback.invoke(*request.error());
            else
                callback.invoke(request.data());
        }
    }

    // From here on, who asks finds the file or tries again.
    std::vector<KRCallback<QByteArray>> _end()
    {
        std::scoped_lock guard(s_lock);
        s_running.remove(m_url);
        return std::exchange(m_callbacks, {});
    }

    static inline std::mutex s_lock;
    static inline QHash<QUrl, std::shared_ptr<Download>> s_running;

    QUrl m_url;
    QString m_file;
    std::vector<KRCallback<QByteArray>> m_callbacks;
};

} // namespace

QByteArray KRNetworkCache::cachedDataForURL(const QUrl& url, QString* file)
{
    const QString path = pathForURL(url);
    if (file)
        *file = path;
    return contentOf(path);
}

void KRNetworkCache::request(const QUrl& url, KRCallback<QByteArray> callback)
{
    QString file;
    const QByteArray cached = cachedDataForURL(url, &file);
    // An empty file is what a power cut leaves.
    if (cached.isEmpty())
        Download::join(url, file, std::move(callback));
    else
        callback.invoke(cached);
}
