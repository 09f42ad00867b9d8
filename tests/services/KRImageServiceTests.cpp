#include "ServicesFixture.h"
#include "foundation/KRFileManager.h"
#include "services/PictureServices.h"
#include "transport/KRHTTPMultipartFormData.h"
#include "transport/KRHTTPRequest.h"

namespace {

using namespace TwitterServiceHostKeys;

class KRImageServiceTest : public ServicesFixture {
protected:
    KRImageServiceTest()
        : ServicesFixture(KRTestCertificate::Good)
    {
        for (const char* key :
            { TwitPicAPIHost, YFrogAPIHost, TwitgooAPIHost, PosterousAPIHost, ImgLyAPIHost, PixImAPIHost })
            setHost(key, u"https://"_s + server.host());
        KRTestSetLinkHosts(context.hosts);
        answer(200, "<rsp><mediaurl>http://a.example/1</mediaurl></rsp>");
    }
    ~KRImageServiceTest() override
    {
        // However an upload ended, nothing of it stays behind.
        EXPECT_TRUE(QDir(KRFileManager::multipartPOSTDataDirectory()).isEmpty(QDir::Files));
    }

    KRResult<QUrl> postImage(int preference, const TestCredentials& account = TestCredentials())
    {
        defaults.setInteger(ImageServicePreferredServiceDefaultsKey, preference);
        return resultOf<QUrl>([&](const KRCallback<QUrl>& callback) {
            KRImageService::postImage(context, path, account, callback);
        });
    }
    KRResult<QUrl> postVideo()
    {
        return resultOf<QUrl>([&](const KRCallback<QUrl>& callback) {
            KRImageService::postVideo(context, path, TestCredentials(), callback);
        });
    }

    QString path = KRTestFile(folder, "picture\r\n", u"a file.png"_s);
};

QByteArray form(const QByteArray& name, const QByteArray& filename, const QByteArray& type)
{
    const QByteArray line = "--" + KRHTTPMultipartFormData::boundary() + "\r\n";
    const auto text = [&](const QByteArray& field, const QByteArray& value) {
        return line + "Content-Disposition: form-data; name=\"" + field + "\"\r\n\r\n" + value + "\r\n";
    };
    return text("username", "alice") + text("password", "wonderland") + text("source", "pelinor") + line
        + "Content-Disposition: form-data; name=\"" + name + "\"; filename=\"" + filename
        + "\"\r\nContent-Type: " + type + "\r\n\r\npicture\r\n\r\n--" + KRHTTPMultipartFormData::boundary()
        + "--\r\n";
}

} // namespace

TEST_F(KRImageServiceTest, FilesGoToTheChosenServiceAndMoviesToYFrog)
{
    // Told apart by the folders of their hosts.
    for (const char* key :
        { TwitPicAPIHost, YFrogAPIHost, TwitgooAPIHost, PosterousAPIHost, ImgLyAPIHost, PixImAPIHost })
        setHost(key, u"https://%1/%2/"_s.arg(server.host(), QLatin1String(key)));
    const std::map<int, QByteArray> targets { { 0, "/YFrogAPIHost/api/upload" },
        { 1, "/TwitPicAPIHost/api/upload" },
        { 2, "/TwitgooAPIHost/api/upload" },
        { 3, "/PosterousAPIHost/api/upload" },
        { 4, "/ImgLyAPIHost/api/upload" },
        { 5, "/PixImAPIHost/api/pictures.xml" },
        { 9, "/YFrogAPIHost/api/upload" } };
    answer(200,
        "<a><mediaurl>http://a.example/1</mediaurl><picture_url>http://a.example/1</picture_url></a>");
    for (const auto& [preference, target] : targets) {
        EXPECT_EQ(postImage(preference).value(), QUrl(u"http://a.example/1"_s));
        KRTestServer::Request request = server.requests().last();
        EXPECT_EQ(request.method, "POST");
        EXPECT_EQ(request.target, target);
        EXPECT_EQ(request.body, form(preference == 5 ? "picture" : "media", "image.jpg", "image/jpeg"));
        EXPECT_EQ(request.value("content-type"),
            "multipart/form-data; boundary=" + KRHTTPMultipartFormData::boundary());
        EXPECT_TRUE(request.values("authorization").isEmpty());
        (void)postVideo();
        request = server.requests().last();
        EXPECT_EQ(request.target, "/YFrogAPIHost/api/upload");
        EXPECT_EQ(request.body, form("media", "movie.mov", "video/quicktime"));
    }
    setHost(YFrogAPIHost, server.host());
    EXPECT_FALSE(postVideo().isError())
        << "a host without a scheme is asked over https, all this server speaks";
    defaults.removeObjectForKey(ImageServicePreferredServiceDefaultsKey);
    EXPECT_NE(dynamic_cast<const yFrog*>(&KRImageService::currentService(context)), nullptr);
}

TEST_F(KRImageServiceTest, TheAccountsOwnServerIsNotToldThePasswordTwice)
{
    const QByteArray basic = "Basic " + QByteArray("alice:wonderland").toBase64();
    setHost(TwitterServiceHosts::RESTHostKey, server.host() + u"/api"_s);
    context.siteTakesUploads = true;
    const auto lastRequest = [&](const KRResult<QUrl>& result) {
        EXPECT_EQ(result.value(), QUrl(u"https://social.example.org/attachment/8"_s));
        return server.requests().last();
    };
    answer(200,
        "<rsp stat=\"ok\"><mediaid>8</mediaid>\n <mediaurl>https://social.example.org/attachment/8</mediaurl>"
        "<media_url>https://social.example.org/attachment/9</media_url></rsp>");
    for (const bool isMovie : { false, true }) {
        const auto request = lastRequest(isMovie ? postVideo() : resultOf<QUrl>([&](const auto& callback) {
            KRImageService::postImage(context, path, TestCredentials(), callback);
        }));
        EXPECT_EQ(request.target, "/api/statusnet/media/upload") << "nobody has chosen another one";
        EXPECT_EQ(request.value("authorization"), basic);
        EXPECT_FALSE(request.body.contains("wonderland"));
        EXPECT_TRUE(request.body.contains("name=\"media\"; filename="));
    }
    KRTestServer::Request request = lastRequest(postImage(KRImageServiceTwitPic));
    EXPECT_EQ(request.target, "/api/upload") << "the preferences say so";
    EXPECT_EQ(request.value("authorization"), basic) << "it is the same server all the same";
    EXPECT_EQ(lastRequest(postImage(KRImageServiceSite)).target, "/api/statusnet/media/upload");
    for (const QString& other : { u"localhost:1"_s, u"localhost:%1"_s.arg(server.port()) }) {
        setHost(TwitterServiceHosts::RESTHostKey, other);
        request = lastRequest(postImage(KRImageServiceTwitPic));
        EXPECT_TRUE(request.values("authorization").isEmpty());
        EXPECT_TRUE(request.body.contains("wonderland"));
    }
}

TEST_F(KRImageServiceTest, OnlyALinkIsASuccess)
{
    const QByteArray noLink = "twitpic-compatible-error";
    const QByteArray badLink = "twitpic-compatible-url-error";
    const struct {
        int preference;
        QByteArray body;
        QByteArray result; // the link, or the error's domain
    } cases[] = {
        { 0,
            "<r><mediaurl>http://a/1</mediaurl><b><mediaurl> http://a/2?b&amp;c </mediaurl></b></r>",
            "http://a/2?b&c" },
        { 0, "<r><mediaurl>http://a/1</mediaurl><mediaurl/></r>", "http://a/1" },
        { 0, "<mediaurl>https://a/1</mediaurl>", "https://a/1" },
        { 0, "<r><mediaurl>http://a/1</mediaurl><broken", "http://a/1" },
        { 5, "<r><mediaurl>http://a/1</mediaurl><picture_url>http://a/2</picture_url></r>", "http://a/2" },
        { 5, "<r><mediaurl>http://a/1</mediaurl></r>", noLink },
        { 0, "<r><picture_url>http://a/1</picture_url></r>", noLink },
        { 0, "<rsp stat='fail'><err code='1001' msg='Invalid password'/></rsp>", noLink },
        { 0, "<!DOCTYPE html><html><body><p>Sign in<br></body></html>", noLink },
        { 0, "", noLink },
        { 0, "<r><mediaurl>  </mediaurl></r>", noLink },
        { 0, "<r><mediaurl>no link at all</mediaurl></r>", badLink },
        { 0, "<r><mediaurl>/relative</mediaurl></r>", badLink },
        { 0, "<r><mediaurl>http://a/%zz</mediaurl></r>", badLink },
        { 0, "<r><mediaurl>javascript:alert(1)</mediaurl></r>", badLink },
        { 0, "<r><mediaurl>file:///etc/passwd</mediaurl></r>", badLink },
    };
    for (const auto& test : cases) {
        answer(200, test.body, "Content-Type: text/xml\r\n");
        const KRResult<QUrl> result = postImage(test.preference);
        if (!result.isError()) {
            EXPECT_EQ(result.value().toEncoded(), test.result) << test.body.constData();
        } else {
            EXPECT_EQ(result.error(),
                errorWithDomain(QString::fromLatin1(test.result), -1, u"Could not post image."_s))
                << test.body.constData();
        }
    }
    answer(500, "<r><mediaurl>http://a/1</mediaurl></r>");
    EXPECT_EQ(postImage(0).error(),
        errorWithDomain(QString::fromUtf16(KRHTTPRequestErrorDomain), 500, KRHTTPStatusText(500)));
}

TEST_F(KRImageServiceTest, NothingIsSentWhereThePasswordWouldBeLostOrOfNoUse)
{
    // A listener on plain http would see it all.
    KRTestServer plain(KRTestServer::always(200));
    setHost(YFrogAPIHost, u"http://media.example:%1/up"_s.arg(plain.port()));
    EXPECT_TRUE(postImage(0).error().description.contains(u"https"_s));
    setHost(YFrogAPIHost, {});
    EXPECT_TRUE(postImage(0).error().description.contains(u"YFrogAPIHost"_s));
    EXPECT_TRUE(postVideo().isError());
    EXPECT_EQ(plain.requestCount(), 0);

    EXPECT_EQ(postImage(1, TestCredentials(u"alice"_s, {})).error().description,
        u"The password of alice is not known"_s);
    EXPECT_TRUE(postImage(1, TestCredentials({}, {})).error().description.contains(u"no account"_s));
    for (const QString& file : { folder.filePath(u"missing.png"_s), folder.path(), QString() }) {
        path = file;
        EXPECT_TRUE(postImage(1).error().description.contains(u"cannot be read"_s));
    }
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(KRImageServiceTest, ARedirectTakesNoPasswordElsewhere)
{
    KRTestServer other(KRTestServer::always(200), KRTestCertificate::Good);
    for (const int status : { 301, 302, 303, 307, 308 }) {
        answer(status, {}, "Location: https://" + other.host().toLatin1() + "/up\r\n");
        (void)postImage(0);
    }
    for (const KRTestServer::Request& request : other.requests())
        EXPECT_FALSE(request.body.contains("wonderland")) << request.method.constData();
    EXPECT_EQ(server.requestCount(), 5);
}

TEST_F(KRImageServiceTest, RecognisesTheLinksOfPicturesAndMovies)
{
    const struct {
        QString link;
        QByteArray picture; // the full size, where there is one
        QByteArray movie;
    } cases[] = {
        { u"http://tp.example/abc"_s, "http://tp.example/show/iphone/abc", {} },
        { u"http://tp.example/a/b?c#d"_s, "http://tp.example/show/iphone/a/b?c#d", {} },
        { u"http://yf.example/abc"_s, "http://yf.example/abc:iphone", {} },
        { u"http://yf.example/abz"_s, {}, {} },
        { u"http://yf2.example/abc"_s, "http://yf2.example/abc:iphone", {} },
        { u"http://yf2.example/abz"_s, {}, "http://yf2.example/abz:iphone" },
        { u"http://tg.example/abz"_s, "http://tg.example/abz/img", {} },
        { u"http://il.example/abc"_s, "http://il.example/show/large/abc", {} },
        { u"http://www.px.example/f/abc"_s, "http://www.px.example/f/abc/full", {} },
        { u"http://www.px.example/g/abc"_s, {}, {} },
        { u"http://TP.example/abc"_s, {}, {} },
        { u"http://x.example/?http://tp.example/abc"_s, {}, {} },
        { u"https://yf2.example/abz"_s, {}, {} },
        { u""_s, {}, {} },
    };
    for (const auto& test : cases) {
        const TwitterServiceHosts& hosts = context.hosts;
        const KRImageService* service = KRImageService::imageServiceForLink(hosts, test.link);
        EXPECT_EQ(KRImageService::isImageServiceLink(hosts, test.link), !test.picture.isNull())
            << qPrintable(test.link);
        EXPECT_EQ(service ? service->fullSizeImageURLForURL(hosts, test.link).toEncoded() : QByteArray(),
            test.picture);
        EXPECT_EQ(KRImageService::isVideoServiceLink(hosts, test.link).toEncoded(), test.movie);
        EXPECT_FALSE(KRImageService::isImageServiceLink({}, test.link)) << "without hosts nothing is known";
        EXPECT_TRUE(KRImageService::isVideoServiceLink({}, test.link).isEmpty());
    }
    EXPECT_TRUE(TwitPic().fullSizeImageURLForURL(context.hosts, u"https://tp.example/abc"_s).isEmpty());
    EXPECT_TRUE(TwitPic().fullSizeImageURLForURL({}, u"http://tp.example/abc"_s).isEmpty());
    EXPECT_TRUE(Posterous().fullSizeImageURLForURL(context.hosts, u"http://p.example/abc"_s).isEmpty());
}
