#include "TwitterAPIFixture.h"
#include "api/TwitterSearchAPI.h"

namespace {

class TwitterSearchAPITest : public TwitterAPIFixture {
protected:
    TwitterSearchAPITest() { useHost(u"https://"_s + server.host()); }

    void useHost(const QString& host) { hosts.setValueForKey(host, u"SearchHost"_s); }

    /// Sends one operation and waits for its result.
    template <class T, class Operation>
    KRResult<T> searchResultOf(Operation operation)
    {
        return received<T>([&](KRCallback<T> callback) {
            operation(*TwitterSearchAPI::request(hosts, std::move(callback)));
        });
    }

    KRResult<TwitterStatusList> resultsOfSearch(const QString& query)
    {
        return searchResultOf<TwitterStatusList>(
            [&query](auto& operations) { operations.search(query, {}, {}, {}, {}); });
    }

    KRResult<QStringList> trends()
    {
        return searchResultOf<QStringList>([](auto& operations) { operations.trends(); });
    }
};

constexpr char JSONType[] = "Content-Type: application/json\r\n";

} // namespace

TEST_F(TwitterSearchAPITest, SendsWhatWasGivenAndNothingElse)
{
    answer(200, KRTestSite::realAnswer(u"search_classic.word.body.json"_s), JSONType);
    ASSERT_EQ(resultsOfSearch(u"a&b #c é"_s).value().size(), 12);
    const auto all = searchResultOf<TwitterStatusList>([](auto& operations) {
        operations.search(u"x"_s, TwitterAPIMaxSearchCount, 2, u"404"_s, u"51,0,1km"_s);
    });
    EXPECT_EQ(all.value().first()->statusID(), u"404"_s);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_EQ(requests[0].target, "/search.json?q=a%26b+%23c+%C3%A9");
    EXPECT_EQ(requests[1].target, "/search.json?q=x&rpp=100&page=2&since_id=404&geocode=51%2C0%2C1km");
    EXPECT_TRUE(requests[0].values("authorization").isEmpty());
    EXPECT_TRUE(requests[0].values("x-twitter-client").isEmpty());
}

TEST_F(TwitterSearchAPITest, SpeaksPlainHTTPToAHostWithoutAScheme)
{
    KRTestServer plain(KRTestServer::always(200, R"({"trends":[{"name":"one"}]})"));
    useHost(plain.host());
    EXPECT_EQ(trends().value(), QStringList(u"one"_s));
    EXPECT_EQ(plain.requestCount(), 1);
    useHost({});
    EXPECT_EQ(trends().error(),
        KRTestError(u"No service is set up: SearchHost has no value in ServiceHosts"_s));
    EXPECT_TRUE(resultsOfSearch(u"x"_s).isError());
}

TEST_F(TwitterSearchAPITest, CollectsEveryTrendsName)
{
    const std::pair<QByteArray, QStringList> cases[] = {
        { R"({"trends":[{"name":"#b","url":"u"},{"name":"a \u00e9"}],"as_of":"now"})",
            { u"#b"_s, u"a é"_s } },
        { R"({"trends":{"2009-01-01":[{"query":"q","name":"x"}]},"name":"y"})", { u"x"_s, u"y"_s } },
        { R"([{"name":""},{"name":null},{"name":true},{"name":["z"]},{"name":{}},{"name":5}])", { u"5"_s } },
        { R"({"trends":[{"name":"one"},{"name":"tw)", { u"one"_s } },
        { R"({"trends":[]})", {} },
    };
    for (const auto& [body, names] : cases) {
        answer(200, body, JSONType);
        EXPECT_EQ(trends().value(), names) << body.constData();
    }
}

TEST_F(TwitterSearchAPITest, ErrorsCanBeRead)
{
    answer(501, KRTestSite::realAnswer(u"trends.body.json"_s), "Content-Type: text/html; charset=UTF-8\r\n");
    EXPECT_EQ(trends().error(),
        errorWithDomain(QString::fromUtf16(KRHTTPRequestErrorDomain),
            501,
            u"Not implemented. Status 501: the server answered with a web page"_s));
    answer(200, "<!DOCTYPE html><html><body>Sign in to this network</body></html>", JSONType);
    EXPECT_EQ(trends().error().description, u"Status 200: the server answered with a web page"_s);
    EXPECT_EQ(resultsOfSearch(u"x"_s).error().code, 200);
    answer(503, "<hash><error>Tired</error></hash>", "Content-Type: text/xml\r\n");
    EXPECT_EQ(resultsOfSearch(u"x"_s).error().description, u"Service unavailable"_s);

    KRTestLog log;
    answer(200, "{\"results\":[\"\xff\"]}", JSONType);
    EXPECT_EQ(resultsOfSearch(u"x"_s).error().domain, u"com.kestrin.json-error"_s);
    EXPECT_TRUE(log.contains(u"search json parse error Error: could not convert to UTF8"_s));
    EXPECT_EQ(trends().error().domain, u"com.kestrin.json-error"_s);
}

TEST_F(TwitterSearchAPITest, RepliesReachTheLogAlone)
{
    KRTestLog log;
    answer(200, R"({"results":[{"id":9,"from_user":"bob"}]})", JSONType);
    const auto receiver = std::make_shared<KRTestReceiver<TwitterStatusList>>();
    TwitterSearchAPI::request(hosts, Callback(receiver, &KRTestReceiver<TwitterStatusList>::took))
        ->repliesToStatusID(u"8"_s, u"alice"_s, 3);
    ASSERT_TRUE(KRWaitUntil([&] { return log.contains(u"need to filter these by statusID 8"_s); }));
    EXPECT_TRUE(log.contains(u"all results to username: [TwitterStatus:"_s));
    EXPECT_EQ(server.requests().value(0).target, "/search.json?q=%40alice&rpp=100&page=3&since_id=8");
    EXPECT_EQ(receiver->count, 0);
}
