#include "ServicesFixture.h"
#include "services/URLShorteners.h"
#include "services/URLShorteningService.h"
#include "transport/KRHTTPRequest.h"

namespace {

class URLShorteningServiceTest : public ServicesFixture {
protected:
    URLShorteningServiceTest()
    {
        using namespace TwitterServiceHostKeys;
        for (const char* key : { BitlyAPIHost, TinyURLAPIHost, IsGdAPIHost, TrImAPIHost, DiggBarAPIHost })
            setHost(key, server.host() + u"/f"_s);
        for (const char* key : { LongURLAPIHost, ExpansionAPIHost })
            setHost(key, server.host() + u"/f"_s);
        int number = 0;
        for (const char* key : { BitlyLinkHost, TinyURLLinkHost, IsGdLinkHost, TrImLinkHost })
            setHost(key, u"s%1.example"_s.arg(++number));
        for (const char* key :
            { OtherShort1LinkHost, OtherShort2LinkHost, OtherShort3LinkHost, OtherShort4LinkHost })
            setHost(key, u"s%1.example"_s.arg(++number));
    }

    KRResult<QString> shorten(int preference, const QString& url = u"http://x.example/"_s)
    {
        defaults.setInteger(URLShorteningServicePreferredServiceDefaultsKey, preference);
        return resultOf<QString>([&](const KRCallback<QString>& callback) {
            URLShorteningService::shortenURLString(context, url, callback);
        });
    }
    KRResult<QString> expand(const QString& url = u"http://x.example/"_s)
    {
        return resultOf<QString>([&](const KRCallback<QString>& callback) {
            URLShorteningService::expandURLString(context, url, callback);
        });
    }
    KRResult<QString> expandWith(const URLShorteningService& service,
        const QString& url = u"http://x.example/"_s)
    {
        return resultOf<QString>([&](const KRCallback<QString>& callback) {
            service.expandURLString(context.hosts, url, callback);
        });
    }
    QByteArray lastTarget() const { return server.requests().last().target; }

    const BitlyShortener bitly;
    const LongURLShortener longURL;
};

constexpr char bitlyAccount[]
    = "version=2.0.1&login=pelinorapp&apiKey=R_0a1b2c3d4e5f60718293a4b5c6d7e8f9&format=json";
const QString target = u"http://x.example/a b?c=d&e=ü#f"_s;
constexpr char encodedTarget[] = "http%3A%2F%2Fx.example%2Fa+b%3Fc%3Dd%26e%3D%C3%BC%23f";

} // namespace

TEST_F(URLShorteningServiceTest, TheChosenServiceIsAskedInItsOwnWay)
{
    const QByteArray bitlyShorten = QByteArray("/f/shorten?") + bitlyAccount + "&longUrl=" + encodedTarget;
    const struct {
        int preference;
        QByteArray asked;
        QByteArray body;
    } cases[] = {
        { 0, bitlyShorten, R"({"results":{"x":{"shortUrl":"http://s/1"}}})" },
        { 1, QByteArray("/f/api-create.php?url=") + encodedTarget, "http://s/1" },
        { 2, QByteArray("/f/api.php?longurl=") + encodedTarget, "http://s/1" },
        { 3, QByteArray("/f/api/trim_simple?url=") + encodedTarget, "http://s/1\n" },
        { 4,
            QByteArray("/f/url/short/create?url=") + encodedTarget
                + "&appkey=http%3A%2F%2Fpelinor.kestrin.com%2F",
            R"(<shorturls><shorturl short_url="http://s/1"/></shorturls>)" },
        { 7, bitlyShorten, R"({"shortUrl":"http://s/1"})" },
        { -1, bitlyShorten, R"({"shortUrl":"http://s/1"})" },
    };
    for (const auto& test : cases) {
        answer(200, test.body);
        const KRResult<QString> result = shorten(test.preference, target);
        ASSERT_FALSE(result.isError()) << test.preference;
        EXPECT_EQ(result.value(), u"http://s/1"_s);
        EXPECT_EQ(lastTarget(), test.asked);
        EXPECT_EQ(server.requests().last().method, "GET");
    }
    defaults.removeObjectForKey(URLShorteningServicePreferredServiceDefaultsKey);
    EXPECT_NE(dynamic_cast<const BitlyShortener*>(&URLShorteningService::currentService(context)), nullptr);
}

TEST_F(URLShorteningServiceTest, ExpandersAreAskedInTheirOwnWay)
{
    answer(200, R"({"http://s/1":"http://long/"})");
    EXPECT_EQ(expand(target).value(), u"http://long/"_s);
    EXPECT_EQ(lastTarget(), QByteArray("/f/api/v1.1?q=") + encodedTarget);
    answer(200, R"({"results":{"1":{"longUrl":"http://long/"}}})");
    EXPECT_EQ(expandWith(bitly, target).value(), u"http://long/"_s);
    EXPECT_EQ(lastTarget(), QByteArray("/f/expand?") + bitlyAccount + "&shortUrl=" + encodedTarget);
    answer(200, R"({"long_url":"http://long/"})");
    EXPECT_EQ(expandWith(longURL, target).value(), u"http://long/"_s);
    EXPECT_EQ(lastTarget(), QByteArray("/f/v1/expand?format=json&url=") + encodedTarget);
    EXPECT_EQ(expandWith(longURL, {}).value(), u"http://long/"_s);
    EXPECT_EQ(lastTarget(), "/f/v1/expand?format=json");
}

TEST_F(URLShorteningServiceTest, ReadsAnswersToTheirEnd)
{
    // The result, or the error's domain after "!".
    const auto read = [this](const KRResult<QString>& result) {
        if (!result.isError())
            return result.value();
        EXPECT_EQ(result.error().code, -1);
        return u'!' + result.error().domain + u' ' + result.error().description;
    };
    const QString bitlyError = u"!com.kestrin.bitly-parsing-error "_s;
    const QString diggBarError = u"!com.kestrin.diggbar-parsing-error "_s;
    const struct {
        int preference;
        QByteArray body;
        QString result;
    } cases[] = {
        { 0, R"({"shortUrl":"a","b":[{"shortUrl":"b"}]})", u"b"_s },
        { 0, R"({"shortUrl":"a","b":{"shortUrl":null}})", u"a"_s },
        { 0, R"({"shorturl":"a","shortUrl":true,"x":["shortUrl"]})", bitlyError },
        { 0, "<html><body>no</body></html>", bitlyError },
        { 0, "", bitlyError },
        { 1, "  abc\n", u"abc"_s },
        { 1, "\xff", u"!com.kestrin.tinyurl-parsing-error "_s },
        { 1, "", u""_s },
        { 2, "  abc\n", u"  abc\n"_s },
        { 2, "\xff", u"!com.kestrin.isgd-parsing-error "_s },
        { 3, "\r\n\tabc \n", u"abc"_s },
        { 3, "\xff", u"!com.kestrin.trim-parsing-error "_s },
        { 4, R"(<a><shorturl short_url="1"/><shorturl link="x" short_url="2&amp;3"/></a>)", u"2&3"_s },
        { 4, R"(<a short_url="1"><shorturl link="x">text</shorturl></a>)", diggBarError },
        { 4, R"(<error code="1037"/>)", diggBarError },
    };
    for (const auto& test : cases) {
        answer(200, test.body);
        EXPECT_EQ(read(shorten(test.preference)), test.result) << test.body.constData();
    }

    const QString unexpanded = u"!com.kestrin.pelinor Could not unshorten URL"_s;
    const std::pair<QByteArray, QString> expansions[] = {
        { R"({"a":"1","b":{"c":"2"},"d":null})", u"2"_s },
        { R"({})", unexpanded },
        { "<html>", unexpanded },
    };
    for (const auto& [body, result] : expansions) {
        answer(200, body);
        EXPECT_EQ(read(expand()), result) << body.constData();
    }
    answer(200, R"({"messages":"no"})");
    EXPECT_EQ(read(expandWith(longURL)), u"!com.kestrin.longurl-parsing-error "_s);
    EXPECT_EQ(read(expandWith(bitly)), bitlyError);
}

TEST_F(URLShorteningServiceTest, AnswersThatAreCutOrTooDeepEndOnce)
{
    const std::pair<int, QByteArray> answers[] = {
        { 0, R"({"a":{"shortUrl":"http://s/1"}})" },
        { 4, R"(<a><shorturl short_url="http://s/1"/></a>)" },
    };
    for (const auto& [preference, body] : answers) {
        for (qsizetype length = 0; length <= body.size(); ++length) {
            answer(200, body.first(length));
            const KRResult<QString> result = shorten(preference);
            EXPECT_EQ(result.isError() ? u"http://s/1"_s : result.value(), u"http://s/1"_s);
        }
        EXPECT_FALSE(shorten(preference).isError());
    }
    answer(200, QByteArray(R"({"shortUrl":)").repeated(100'000));
    EXPECT_TRUE(shorten(0).isError());
    answer(200, QByteArray("<shorturl>").repeated(100'000));
    EXPECT_TRUE(shorten(4).isError());
}

TEST_F(URLShorteningServiceTest, LogsWhatParsersObjectTo)
{
    KRTestLog log;
    answer(200, "{\"shortUrl\":\"\xff\"}");
    EXPECT_EQ(expand().error().domain, u"com.kestrin.json-error"_s);
    EXPECT_FALSE(log.contains(u"parsing error"_s));
    EXPECT_EQ(shorten(0).error().domain, u"com.kestrin.json-error"_s);
    EXPECT_TRUE(log.contains(u"bitly shorten parsing error Error"_s));
    EXPECT_EQ(expandWith(bitly).error().domain, u"com.kestrin.json-error"_s);
    EXPECT_EQ(expandWith(longURL).error().domain, u"com.kestrin.json-error"_s);
    EXPECT_EQ(log.lines().filter(u"bitly expand parsing error Error"_s).size(), 2);
    answer(200, "<a><shorturl short_url='1'/>");
    EXPECT_EQ(shorten(4).error().domain, u"com.kestrin.xmlparser-error"_s);
    EXPECT_TRUE(log.contains(u"diggbar shorten parsing error "_s));
}

TEST_F(URLShorteningServiceTest, ErrorsOfTheRequestArriveAsTheyAre)
{
    answer(503, "<a><shorturl short_url='http://s/1'/></a>");
    const KRError unavailable
        = errorWithDomain(QString::fromUtf16(KRHTTPRequestErrorDomain), 503, KRHTTPStatusText(503));
    for (int preference = 0; preference <= 4; ++preference)
        EXPECT_EQ(shorten(preference).error(), unavailable) << preference;
    EXPECT_EQ(expand().error(), unavailable);
    EXPECT_EQ(expandWith(longURL).error(), unavailable);

    // Nobody listens there any more.
    setHost(TwitterServiceHostKeys::TinyURLAPIHost,
        KRTestServer([](const auto&, KRTestServer::Connection&) {}).host());
    EXPECT_EQ(shorten(1).error().domain, QString::fromUtf16(KRHTTPConnectionErrorDomain));
}

TEST_F(URLShorteningServiceTest, KnowsShortLinksLetterByLetter)
{
    const auto isShort
        = [&](const QString& link) { return URLShorteningService::isShortURLString(context.hosts, link); };
    for (const QString& link : u"http://s1.example/a http://s4.example/ http://s8.example/a"_s.split(u' '))
        EXPECT_TRUE(isShort(link)) << qPrintable(link);
    const QString others
        = u"https://s1.example/a|http://S1.example/a|s1.example/a| http://s1.example/a|http://s1.example|"
          "http://s1.example.org/a|http://s9.example/a|http:///a|"_s;
    for (const QString& link : others.split(u'|'))
        EXPECT_FALSE(isShort(link)) << qPrintable(link);
    EXPECT_FALSE(URLShorteningService::isShortURLString({}, u"http:///a"_s));

    std::optional<KRResult<QString>> result;
    URLShorteningService::shortenURLString(context,
        u"http://s3.example/a"_s,
        KRCallback<QString>::withFunction([&](KRResult<QString> given) { result = std::move(given); }));
    ASSERT_TRUE(result) << "the answer comes before the call returns";
    EXPECT_EQ(result->error(), errorWithDomain(u"com.kestrin.pelinor"_s, -1, u"Already shortened"_s));
    EXPECT_EQ(server.requestCount(), 0);
    answer(200, "short");
    EXPECT_EQ(shorten(1, u"https://s3.example/a"_s).value(), u"short"_s);
}

TEST_F(URLShorteningServiceTest, AServiceWithoutAHostIsNotAsked)
{
    context.hosts = {};
    for (int preference = 0; preference <= 4; ++preference)
        EXPECT_TRUE(shorten(preference).error().description.contains(u"No service is set up"_s));
    EXPECT_TRUE(expand().isError() && expandWith(bitly).isError() && expandWith(longURL).isError());
    EXPECT_EQ(server.requestCount(), 0);
}
