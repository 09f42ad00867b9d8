#include "ServicesFixture.h"
#include "services/KRImageService.h"
#include "support/KRTestLocalService.h"
#include "transport/KRHTTPRequest.h"

namespace {

/// The services as the local service plays them, found through the table that it writes.
class LocalServiceTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_service.isRunning());
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = m_service.authorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        context.hosts = TwitterServiceHosts::hostsWithDefaults(m_defaults, m_service.servicesFile()).value();
    }

    QString fileWith(const QByteArray& content)
    {
        QFile file(m_folder.filePath(u"media"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    static QByteArray bodyAt(const QUrl& url)
    {
        QByteArray body;
        std::atomic<bool> isDone = false;
        KRHTTPRequest::GET(url, KRCallback<KRHTTPRequest&>::withFunction([&](KRHTTPRequest& request) {
            if (!request.error())
                body = request.data();
            isDone = true;
        }));
        EXPECT_TRUE(KRWaitUntil([&] { return isDone.load(); }));
        return body;
    }

    KRResult<QUrl>
    postImage(int preference, const QString& path, const TestCredentials& account = TestCredentials())
    {
        m_defaults.setInteger(ImageServicePreferredServiceDefaultsKey, preference);
        return resultOf<QUrl>([&](const KRCallback<QUrl>& callback) {
            KRImageService::postImage(context, path, account, callback);
        });
    }

private:
    QTemporaryDir m_folder;
    KRUserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
    KRTestLocalService m_service;

protected:
    TwitterServiceContext context { {}, &m_defaults };
};

} // namespace

TEST_F(LocalServiceTest, UploadedFilesAreBehindTheirLinks)
{
    const QByteArray picture = "\xff\xd8\xff\xe0 a picture" + QByteArray(200'000, '\7');
    const QString path = fileWith(picture);
    for (int preference = 0; preference <= KRImageServiceSite; ++preference) {
        const KRResult<QUrl> link = postImage(preference, path);
        ASSERT_FALSE(link.isError()) << preference << qPrintable(link.error().description);
        const QString text = link.value().toString();
        const KRImageService* service = KRImageService::imageServiceForLink(context.hosts, text);
        EXPECT_EQ(service == nullptr,
            preference == KRImageServicePosterous || preference == KRImageServiceSite);
        if (preference == KRImageServiceSite) {
            EXPECT_EQ(bodyAt(QUrl(text + u"/file"_s)), picture);
        }
        if (service) {
            EXPECT_EQ(bodyAt(service->fullSizeImageURLForURL(context.hosts, text)), picture);
        }
        const KRResult<QUrl> refused = postImage(preference, path, TestCredentials(u"alice"_s, u"wrong"_s));
        ASSERT_TRUE(refused.isError());
        // A server that people are signed in to refuses before it looks at the form.
        const bool isSignedIn = preference == KRImageServiceYFrog || preference == KRImageServiceTwitPic
            || preference == KRImageServiceSite;
        EXPECT_EQ(refused.error().domain,
            isSignedIn ? QString::fromUtf16(KRHTTPRequestErrorDomain) : u"twitpic-compatible-error"_s);
    }
    context.preference = KRImageServiceTwitPic;
    const QByteArray movie = QByteArray("\0\0\0\x14"
                                        "ftypqt  ",
                                 12)
        + QByteArray(50'000, '\1');
    const QString moviePath = fileWith(movie);
    const KRResult<QUrl> link = resultOf<QUrl>([&](const KRCallback<QUrl>& callback) {
        KRImageService::postVideo(context, moviePath, TestCredentials(), callback);
    });
    ASSERT_FALSE(link.isError()) << qPrintable(link.error().description);
    const QString text = link.value().toString();
    EXPECT_FALSE(KRImageService::isImageServiceLink(context.hosts, text));
    EXPECT_EQ(bodyAt(KRImageService::isVideoServiceLink(context.hosts, text)), movie);
}
