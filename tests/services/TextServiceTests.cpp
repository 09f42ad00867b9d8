#include "ServicesFixture.h"
#include "services/Tweetshrink.h"
#include "services/Twitlonger.h"
#include "transport/KRHTTPRequest.h"

namespace {

class TextServiceTest : public ServicesFixture {
protected:
    TextServiceTest()
    {
        setHost(TwitterServiceHostKeys::TwitlongerAPIHost, server.host() + u"/f"_s);
        setHost(TwitterServiceHostKeys::TweetshrinkAPIHost, server.host() + u"/f"_s);
    }

    KRResult<Twitlonger> post(const QString& text = u"text"_s, const QString& username = u"alice"_s)
    {
        return resultOf<Twitlonger>([&](const KRCallback<Twitlonger>& callback) {
            Twitlonger::post(context.hosts, text, username, callback);
        });
    }
    KRResult<Tweetshrink> shrink(const QString& text = u"text"_s)
    {
        return resultOf<Tweetshrink>([&](const KRCallback<Tweetshrink>& callback) {
            Tweetshrink::shrink(context.hosts, text, callback);
        });
    }
};

} // namespace

TEST_F(TextServiceTest, SendsALongPostAsAForm)
{
    answer(200, "<t><post><content>c</content></post></t>");
    ASSERT_FALSE(post(u"a&b=ü c\n%"_s).isError());
    ASSERT_FALSE(post(u"x"_s, {}).isError());
    const auto requests = server.requests();
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].target, "/f/api_post");
    EXPECT_EQ(requests[0].value("content-type"), "application/x-www-form-urlencoded");
    EXPECT_TRUE(requests[0].values("authorization").isEmpty());
    EXPECT_EQ(requests[0].body,
        "application=pelinordesktop&api_key=Zq4TnB7wKd2XuR9e&username=alice&message=a%26b%3D%C3%BC+c%0A%25");
    EXPECT_EQ(requests[1].body, "application=pelinordesktop&api_key=Zq4TnB7wKd2XuR9e&message=x");
}

TEST_F(TextServiceTest, ReadsALongPostsAnswer)
{
    answer(200,
        "<twitlonger><post><id> 7 </id><link>http://l/7</link><short>http://s/\xC3\xBC</short>"
        "<content>one</content><content>two &amp; \x01three</content><content> </content>"
        "<username>bob</username></post></twitlonger>");
    const KRResult<Twitlonger> result = post();
    ASSERT_FALSE(result.isError()) << qPrintable(result.error().description);
    EXPECT_EQ(result.value().identifier(), u"7"_s);
    EXPECT_EQ(result.value().link(), QUrl(u"http://l/7"_s));
    EXPECT_EQ(result.value().shortLink(), u"http://s/%C3%BC"_s);
    EXPECT_TRUE(result.value().content().startsWith(u"two & "_s));
    EXPECT_TRUE(result.value().username().isNull());
}

TEST_F(TextServiceTest, ALongPostWithoutContentHasFailed)
{
    const struct {
        int status;
        QByteArray body;
        QString domain;
        QString description; // a part of it
    } cases[] = {
        { 200, "<t><post><id>7</id><content> </content></post></t>", u"com.kestrin.pelinor"_s, u"answer"_s },
        { 200, "<t><error>Not today.</error></t>", u"com.kestrin.pelinor"_s, u"Not today."_s },
        { 200, "<html><body>hello</body></html>", u"com.kestrin.pelinor"_s, u"answer"_s },
        { 200, "", u"com.kestrin.pelinor"_s, u"empty"_s },
        { 200, "<t><content>c</content>", u"com.kestrin.xmlparser-error"_s, {} },
        { 200, "content", u"com.kestrin.xmlparser-error"_s, {} },
        { 403, "<t><content>c</content></t>", QString::fromUtf16(KRHTTPRequestErrorDomain), {} },
    };
    for (const auto& test : cases) {
        answer(test.status, test.body);
        const KRResult<Twitlonger> result = post();
        ASSERT_TRUE(result.isError()) << test.body.constData();
        EXPECT_EQ(result.error().domain, test.domain) << test.body.constData();
        EXPECT_TRUE(result.error().code == -1 || test.domain != u"com.kestrin.pelinor");
        EXPECT_TRUE(result.error().description.contains(test.description))
            << qPrintable(result.error().description);
        EXPECT_FALSE(result.error().description.isEmpty());
    }
}

TEST_F(TextServiceTest, ShrinksATextAndCountsWhatItSaved)
{
    const struct {
        QByteArray body;
        QString text;
        int difference;
    } cases[] = {
        { "<t><text>a &amp; b</text><difference> 12 </difference></t>", u"a & b"_s, 12 },
        { "<t><text>a</text><text>b</text><difference>-3</difference></t>", u"b"_s, -3 },
        { "<t><difference>many</difference></t>", {}, 0 },
        { "<t><text>a</text><difference>99999999999</difference></t>", u"a"_s, 2147483647 },
        { "<t><difference>7 characters</difference></t>", {}, 7 },
        { "<t/>", {}, 0 },
    };
    for (const auto& test : cases) {
        answer(200, test.body);
        const KRResult<Tweetshrink> result = shrink(u"a&b ü"_s);
        ASSERT_FALSE(result.isError()) << test.body.constData();
        EXPECT_EQ(result.value().text(), test.text) << test.body.constData();
        EXPECT_EQ(result.value().difference(), test.difference) << test.body.constData();
    }
    EXPECT_EQ(server.requests().first().target, "/f/shrink?format=xml&text=a%26b+%C3%BC");
    answer(200, "<t>");
    EXPECT_EQ(shrink().error().domain, u"com.kestrin.xmlparser-error"_s);
    answer(500, "<t/>");
    EXPECT_EQ(shrink().error().code, 500);
}

TEST_F(TextServiceTest, AServiceWithoutAHostIsNotAsked)
{
    context.hosts = {};
    EXPECT_TRUE(post().error().description.contains(u"TwitlongerAPIHost"_s));
    EXPECT_TRUE(shrink().error().description.contains(u"TweetshrinkAPIHost"_s));
    EXPECT_EQ(server.requestCount(), 0);
}
