#include "LocalService.h"
#include "ServicesFixture.h"
#include "services/KRImageService.h"
#include "services/Tweetshrink.h"
#include "services/Twitlonger.h"
#include "services/URLShorteners.h"
#include "transport/KRHTTPRequest.h"

using namespace Qt::StringLiterals;

namespace {

/// The services as the local service plays them, found through the table that it writes.
class LocalServiceTest : public testing::Test {
protected:
    void SetUp() override
    {
        localservice::LocalServiceOptions options;
        options.dataDirectory = m_folder.filePath(u"service"_s).toStdString();
        options.httpPort = options.httpsPort = 0;
        const auto running = m_service.start(options);
        ASSERT_TRUE(running) << m_service.failure();
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = QString::fromStdString(running->authorityFile);
        KRHTTPTransportSettings::setCurrent(settings);
        context.hosts = TwitterServiceHosts::hostsWithDefaults(m_defaults,
            QString::fromStdString(running->servicesFile))
                            .value();
    }
    void TearDown() override { m_service.stop(); }

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
    localservice::LocalService m_service;

protected:
    TwitterServiceContext context { {}, &m_defaults };
    KRUserDefaults& defaults = m_defaults;
};

} // namespace

TEST_F(LocalServiceTest, ShortensAndExpandsLinks)
{
    const QString target = u"http://example.org/a_(b)?x=1&y=2#z"_s;
    const BitlyShortener bitly;
    const LongURLShortener longURL;
    for (int preference = 0; preference <= 4; ++preference) {
        defaults.setInteger(URLShorteningServicePreferredServiceDefaultsKey, preference);
        const auto shortened = [this](const QString& url) {
            return resultOf<QString>([&](const KRCallback<QString>& callback) {
                URLShorteningService::shortenURLString(context, url, callback);
            });
        };
        const KRResult<QString> link = shortened(target);
        ASSERT_FALSE(link.isError()) << preference << qPrintable(link.error().description);
        // DiggBar's links are not among the known ones.
        EXPECT_EQ(URLShorteningService::isShortURLString(context.hosts, link.value()), preference != 4);
        const auto expansion = [&](const auto& expand) {
            const KRResult<QString> result = resultOf<QString>(expand);
            return result.isError() ? result.error().description : result.value();
        };
        EXPECT_EQ(expansion([&](const KRCallback<QString>& callback) {
            URLShorteningService::expandURLString(context, link.value(), callback);
        }),
            target);
        EXPECT_EQ(expansion([&](const KRCallback<QString>& callback) {
            longURL.expandURLString(context.hosts, link.value(), callback);
        }),
            target);
        EXPECT_EQ(expansion([&](const KRCallback<QString>& callback) {
            bitly.expandURLString(context.hosts, link.value(), callback);
        }),
            target);
        EXPECT_TRUE(shortened(u"no link"_s).isError());
    }
}

TEST_F(LocalServiceTest, UploadedFilesAreBehindTheirLinks)
{
    const QByteArray picture = "\xff\xd8\xff\xe0 a picture" + QByteArray(200'000, '\7');
    const QString path = fileWith(picture);
    for (int preference = 0; preference <= 5; ++preference) {
        const KRResult<QUrl> link = postImage(preference, path);
        ASSERT_FALSE(link.isError()) << preference << qPrintable(link.error().description);
        const QString text = link.value().toString();
        const KRImageService* service = KRImageService::imageServiceForLink(context.hosts, text);
        EXPECT_EQ(service == nullptr, preference == KRImageServicePosterous);
        if (service) {
            EXPECT_EQ(bodyAt(service->fullSizeImageURLForURL(context.hosts, text)), picture);
        }
        const KRResult<QUrl> refused = postImage(preference, path, TestCredentials(u"alice"_s, u"wrong"_s));
        ASSERT_TRUE(refused.isError());
        EXPECT_EQ(refused.error().domain, u"twitpic-compatible-error"_s);
    }
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

TEST_F(LocalServiceTest, StoresLongPostsAndShrinksTexts)
{
    QString text;
    for (int i = 0; i < 50; ++i)
        text += u"wört & <%1> = "_s.arg(i);
    const KRResult<Twitlonger> stored = resultOf<Twitlonger>([&](const KRCallback<Twitlonger>& callback) {
        Twitlonger::post(context.hosts, text, u"alice"_s, callback);
    });
    ASSERT_FALSE(stored.isError()) << qPrintable(stored.error().description);
    EXPECT_LE(stored.value().content().size(), 140);
    EXPECT_TRUE(stored.value().content().startsWith(u"wört & <0> = wört & <1>"_s));
    EXPECT_TRUE(stored.value().content().endsWith(stored.value().shortLink()));
    EXPECT_FALSE(stored.value().identifier().isEmpty());
    EXPECT_TRUE(bodyAt(stored.value().link()).contains("&lt;49&gt;"));
    EXPECT_TRUE(resultOf<Twitlonger>([&](const KRCallback<Twitlonger>& callback) {
        Twitlonger::post(context.hosts, {}, u"alice"_s, callback);
    }).isError());

    const KRResult<Tweetshrink> shrunk = resultOf<Tweetshrink>([&](const KRCallback<Tweetshrink>& callback) {
        Tweetshrink::shrink(context.hosts, u"Thanks to you, see later"_s, callback);
    });
    ASSERT_FALSE(shrunk.isError());
    EXPECT_EQ(shrunk.value().text(), u"thx 2 u, c l8r"_s);
    EXPECT_EQ(shrunk.value().difference(), 10);
}
