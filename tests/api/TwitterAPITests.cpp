#include "TwitterAPIFixture.h"
#include "api/TwitterAnswers.h"
#include "text/KRArrayAdditions.h"

namespace {

using TwitterAPITest = TwitterAPIFixture;

// Whom a request is sent for.
struct Sender {
    const TwitterServiceHosts& hosts;
    bool withAccount;

    // The operations that deliver such results, to nobody.
    template <class Result>
    auto api() const
    {
        const KRCallback<Result> nobody;
        return withAccount ? TwitterAPI::authenticatedRequest(hosts, TestCredentials(), nobody)
                           : TwitterAPI::request(hosts, nobody);
    }
    auto statuses() const { return api<TwitterStatusList>(); }
    auto status() const { return api<TwitterStatusPtr>(); }
    auto messages() const { return api<TwitterDirectMessageList>(); }
    auto message() const { return api<TwitterDirectMessagePtr>(); }
    auto users() const { return api<TwitterUserList>(); }
    auto user() const { return api<TwitterUserPtr>(); }
    auto truth() const { return api<bool>(); }
    auto text() const { return api<QString>(); }
    auto commands() const
    {
        return withAccount ? TwitterAPI::authenticatedRequest(hosts, TestCredentials())
                           : TwitterAPI::request(hosts);
    }
};

struct Row {
    // Method, target (without "/api/" and ".xml") and body; after "needs" the operation in the log when there is no account.
    QByteArray request;
    void (*send)(const Sender& from);
};

const QString none;
const QString one = u"1"_s;
const QString two = u"2"_s;
const QString bob = u"b&b"_s;

const Row rows[] = {
    { "GET statuses/home_timeline? needs friendsTimelineSinceID:maxID:count:page:",
        [](auto& a) { a.statuses()->friendsTimelineSinceID(none, none, {}, {}); } },
    { "GET statuses/home_timeline?since_id=1&max_id=2&count=200&page=3 needs "
      "friendsTimelineSinceID:maxID:count:page:",
        [](auto& a) { a.statuses()->friendsTimelineSinceID(one, two, 200, 3); } },
    { "GET statuses/replies?since_id=1&max_id=2&page=3 needs repliesSinceID:maxID:page:",
        [](auto& a) { a.statuses()->repliesSinceID(one, two, 3); } },
    { "GET statuses/user_timeline?screen_name=j%26%C3%B6+e&max_id=2&count=40",
        [](auto& a) { a.statuses()->userTimelineForUsername(u"j&ö e"_s, none, two, 40, {}); } },
    { "GET statuses/user_timeline?user_id=7&since_id=1&page=2",
        [](auto& a) { a.statuses()->userTimelineForUserID(u"7"_s, one, none, {}, 2); } },
    { "GET statuses/public_timeline", [](auto& a) { a.statuses()->publicTimeline(); } },
    { "GET statuses/show/4%2F2", [](auto& a) { a.status()->statusWithID(u"4/2"_s); } },
    { "POST statuses/update status=a%2Bb+%26+%C3%A9%3D%F0%9F%98%80&source=pelinor needs "
      "update:inReplyToStatusID:",
        [](auto& a) { a.status()->update(u"a+b & é=😀"_s, none); } },
    { "POST statuses/update status=hi&in_reply_to_status_id=9&source=pelinor needs "
      "update:inReplyToStatusID:",
        [](auto& a) { a.status()->update(u"hi"_s, u"9"_s); } },
    { "POST statuses/destroy/1 needs destroyStatus:", [](auto& a) { a.status()->destroyStatus(one); } },
    { "GET direct_messages?since_id=1&max_id=2&page=3 needs directMessagesSinceID:maxID:page:",
        [](auto& a) { a.messages()->directMessagesSinceID(one, two, 3); } },
    { "GET direct_messages/sent? needs sentDirectMessagesSinceID:maxID:page:",
        [](auto& a) { a.messages()->sentDirectMessagesSinceID(none, none, {}); } },
    { "POST direct_messages/new user=b%26b&text=hi+you needs send:toUsername:",
        [](auto& a) { a.message()->sendToUsername(u"hi you"_s, bob); } },
    { "POST direct_messages/new user=1&text=hi needs send:toUserID:",
        [](auto& a) { a.message()->sendToUserID(u"hi"_s, one); } },
    { "GET favorites/b+b?page=2", [](auto& a) { a.statuses()->favoritesForUsername(u"b b"_s, 2); } },
    { "GET favorites/1?", [](auto& a) { a.statuses()->favoritesForUserID(one, {}); } },
    { "POST favorites/create/1 needs favoriteStatusID:",
        [](auto& a) { a.commands()->favoriteStatusID(one); } },
    { "POST favorites/destroy/1 needs unfavoriteStatusID:",
        [](auto& a) { a.commands()->unfavoriteStatusID(one); } },
    { "POST friendships/create?screen_name=b%26b needs followUsername:",
        [](auto& a) { a.user()->followUsername(bob); } },
    { "POST friendships/create?user_id=1 needs followUserID:", [](auto& a) { a.user()->followUserID(one); } },
    { "POST friendships/destroy/bob needs unfollowUsername:",
        [](auto& a) { a.user()->unfollowUsername(u"bob"_s); } },
    { "POST friendships/destroy/1 needs unfollowUserID:", [](auto& a) { a.user()->unfollowUserID(one); } },
    { "GET friendships/exists?user_a=1&user_b=2",
        [](auto& a) { a.truth()->usernameFollowsUsername(one, two); } },
    { "GET friendships/exists?user_a=1&user_b=2", [](auto& a) { a.truth()->userIDFollowsUserID(one, two); } },
    { "GET statuses/friends?screen_name=b%26b&page=2",
        [](auto& a) { a.users()->friendsForUsername(bob, 2); } },
    { "GET statuses/friends?user_id=1", [](auto& a) { a.users()->friendsForUserID(one, {}); } },
    { "GET statuses/followers?screen_name=b%26b", [](auto& a) { a.users()->followersForUsername(bob, {}); } },
    { "GET statuses/followers?user_id=1&page=5", [](auto& a) { a.users()->followersForUserID(one, 5); } },
    { "GET users/show?screen_name=b%26b", [](auto& a) { a.user()->userWithUsername(bob); } },
    { "GET users/show?user_id=1", [](auto& a) { a.user()->userWithID(one); } },
    { "GET account/verify_credentials", [](auto& a) { a.truth()->verifyCredentials(); } },
    { "GET account/rate_limit_status", [](auto& a) { a.text()->rateLimitStatus(); } },
};

TEST_F(TwitterAPITest, EveryOperationOnTheWire)
{
    int sent = 0;
    for (const bool withAccount : { true, false }) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.request.constData());
            const qsizetype needs = row.request.indexOf(" needs ");
            KRTestLog log;
            row.send({ hosts, withAccount });
            ++sent;
            ASSERT_TRUE(KRWaitUntil([&] { return server.requestCount() == sent; }));
            const KRTestServer::Request request = server.requests().last();
            ASSERT_TRUE(request.target.startsWith("/api/") && request.target.contains(".xml"));
            const QByteArray target = request.target.sliced(5).replace(".xml", "");
            EXPECT_EQ((request.method + ' ' + target + ' ' + request.body).trimmed(),
                row.request.mid(0, needs));
            EXPECT_EQ(request.values("authorization"),
                withAccount ? QList<QByteArray> { "Basic am9lOnNlY3JldA==" } : QList<QByteArray>());
            EXPECT_EQ(request.value("x-twitter-client"), "Pelinor-Mac");
            EXPECT_EQ(request.value("x-twitter-client-version"), "1.2.6");
            EXPECT_TRUE(request.value("x-twitter-client-url").startsWith("https://"));
            QStringList complaints;
            if (needs >= 0 && !withAccount)
                complaints.append(u"Critical Error: %1 requires authentication"_s.arg(
                    QLatin1String(row.request.sliced(needs + 7))));
            EXPECT_EQ(log.lines().filter(u"Critical Error"_s), complaints);
        }
    }
}

TEST_F(TwitterAPITest, InertOperationsSendNothing)
{
    KRTestLog log;
    const auto operations = TwitterAPI::authenticatedRequest(hosts, TestCredentials());
    operations->destroyDirectMessage(TwitterDirectMessage());
    operations->updateProfileImage("image");
    operations->updateProfileName(u"n"_s, u"e"_s, u"u"_s, u"l"_s);
    operations->blockUserID(u"1"_s);
    operations->unblockUsername(u"a"_s);
    operations->enableNotificationsForUserID(u"1"_s);
    operations->disableNotificationsForUsername(u"a"_s);
    EXPECT_EQ(log.lines(), QStringList(u"not implemented"_s)); // the line of the one that sends nothing
    // A request sent afterwards is the only one that arrives.
    operations->favoriteStatusID(u"1"_s);
    ASSERT_TRUE(KRWaitUntil([&] { return server.requestCount() > 0; }));
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(TwitterAPITest, OnlyTheWordTrueIsTrue)
{
    const auto follows = [](auto& api) { api.userIDFollowsUserID(u"1"_s, u"2"_s); };
    EXPECT_TRUE(resultFrom<bool>(u"friendships_exists.true"_s, follows).value());
    EXPECT_FALSE(resultFrom<bool>(u"friendships_exists.false"_s, follows).value());
    answer(200, "<hash/>");
    EXPECT_FALSE(resultOf<bool>(follows).value());
    answer(200, "<friends>true");
    EXPECT_TRUE(resultOf<bool>(follows).isError());
}

TEST_F(TwitterAPITest, AnErrorDocumentAddsItsTextToTheStatus)
{
    const struct {
        int status;
        QString answer, description;
    } cases[] = {
        { 401, u"verify_credentials.bad_password.body.xml"_s, u"Could not authenticate you."_s },
        { 404, u"show.not_found.body.xml"_s, u"No such notice."_s },
        { 410, u"show.deleted.body.xml"_s, u"Notice deleted."_s },
        { 413,
            u"update.too_long.body.xml"_s,
            u"Maximum notice size is 1000 characters, including attachment URL."_s },
        { 500, u"favorites.not_found.body.xml"_s, u"No such user found."_s },
        { 404, u"home_timeline.bad_format.body.txt"_s, u"Status 404: the server answered with a web page"_s },
    };
    for (const auto& test : cases) {
        answer(test.status, KRTestSite::realAnswer(test.answer));
        const auto result = resultOf<TwitterStatusPtr>([](auto& api) { api.statusWithID(u"1"_s); });
        ASSERT_TRUE(result.isError());
        const KRError expected = errorWithDomain(u"com.kestrin.httprequest"_s,
            test.status,
            KRHTTPStatusText(test.status) + u". "_s + test.description);
        EXPECT_EQ(result.error(), expected);
        EXPECT_EQ(resultOf<QString>([](auto& api) { api.rateLimitStatus(); }).error(), expected);
        EXPECT_EQ(resultOf<bool>([](auto& api) { api.verifyCredentials(); }).error(), expected);
    }
}

TEST_F(TwitterAPITest, SuccessesThatAreNoneAreErrors)
{
    const QByteArray html = "Content-Type: text/html\r\n";
    const QString webPage = u"Status 200: the server answered with a web page"_s;
    const struct {
        QByteArray body, headers;
        QString text;
    } cases[] = {
        { "", {}, u"The server's answer is empty"_s },
        { "<!-- a --><!DOCTYPE HTML><html/>", {}, webPage },
        { "\xEF\xBB\xBF<?xml version='1.0'?> <html/>", {}, webPage },
        { "<div>Sign in</div>", html, webPage },
        { "<Div>Sign in</Div>", {}, webPage },
        { "<h1>Sign in</h1>", {}, webPage },
        { "Sign in", html, webPage },
        { "Sign in", "Content-Type: application/xhtml+xml\r\n", webPage },
        { "<hash><error>Not\ntoday</error></hash>", {}, u"Not today"_s },
        // What counts is what is in it.
        { "<?xml version='1.0'?><statuses/>", html, {} },
        { "<statuses/>", html, {} },
        { "<!DOCTYPE x><statuses/>", html, {} },
    };
    for (const auto& test : cases) {
        answer(200, test.body, test.headers);
        const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
        EXPECT_EQ(result.isError() ? result.error().description : QString(), test.text) << test.body.data();
    }
    for (const QByteArray broken : { "<statuses>", "Sign in", "<!-- a", "{", "[" }) {
        answer(200, broken, html.first(broken == "Sign in" ? 0 : html.size()));
        const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
        EXPECT_EQ(result.error().domain, u"com.kestrin.xmlparser-error"_s) << broken.data();
    }

    answer(200, "<?xml version='1.0'?>\n<html xmlns='http://www.w3.org/1999/xhtml'/>");
    const auto verify = [](auto& api) { api.verifyCredentials(); };
    EXPECT_TRUE(resultOf<bool>(verify).isError());
    answer(200, "<hash><error>Could not authenticate you.</error></hash>");
    const auto follows = [](auto& api) { api.userIDFollowsUserID(u"1"_s, u"2"_s); };
    for (const KRResult<bool>& refused : { resultOf<bool>(verify), resultOf<bool>(follows) }) {
        ASSERT_TRUE(refused.isError());
        EXPECT_EQ(refused.error().description, u"Could not authenticate you."_s);
    }
    const auto status
        = resultFrom<TwitterStatusPtr>(u"show.deleted"_s, [](auto& api) { api.statusWithID(u"1"_s); });
    ASSERT_TRUE(status.isError());
    EXPECT_EQ(status.error(), errorWithDomain(u"com.kestrin.pelinor"_s, 200, u"Notice deleted."_s));
    answer(200, "<other/>");
    EXPECT_TRUE(resultOf<TwitterUserPtr>([](auto& api) { api.userWithID(u"1"_s); }).isError());
    const auto send = [](auto& api) { api.sendToUserID(u"a"_s, u"1"_s); };
    EXPECT_TRUE(resultOf<TwitterDirectMessagePtr>(send).isError());
}

TEST_F(TwitterAPITest, APageWithForbiddenCharactersIsReadWithoutThem)
{
    KRTestLog log;
    const auto result = resultFrom<TwitterStatusList>(u"home_timeline.with_invalid_xml_char"_s,
        [](auto& api) { api.publicTimeline(); });
    ASSERT_FALSE(result.isError());
    EXPECT_EQ(QStringList(KRAdditions::mapFunction(result.value(), &TwitterStatus::statusID)).join(u' '),
        u"481 480 479"_s);
    EXPECT_EQ(result.value().first()->text(), u"noncharacter [\uFFFD] inside"_s);
}

TEST_F(TwitterAPITest, NobodyIsAskedForWithoutANameOrAnID)
{
    const auto expectRefused = [](const auto& result) {
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            KRTestError(u"This person has no name that the service could be asked for"_s));
    };
    for (const QString& nobody : { QString(), u""_s }) {
        expectRefused(resultOf<TwitterStatusList>(
            [&](auto& api) { api.userTimelineForUserID(nobody, one, none, {}, {}); }));
        expectRefused(resultOf<TwitterStatusList>(
            [&](auto& api) { api.userTimelineForUsername(nobody, one, none, {}, {}); }));
        expectRefused(resultOf<TwitterStatusList>([&](auto& api) { api.favoritesForUserID(nobody, {}); }));
        expectRefused(resultOf<TwitterUserList>([&](auto& api) { api.friendsForUserID(nobody, {}); }));
        expectRefused(resultOf<TwitterUserList>([&](auto& api) { api.friendsForUsername(nobody, {}); }));
        expectRefused(resultOf<TwitterUserList>([&](auto& api) { api.followersForUserID(nobody, {}); }));
        expectRefused(resultOf<TwitterUserList>([&](auto& api) { api.followersForUsername(nobody, {}); }));
        expectRefused(resultOf<TwitterUserPtr>([&](auto& api) { api.userWithID(nobody); }));
        expectRefused(resultOf<TwitterUserPtr>([&](auto& api) { api.userWithUsername(nobody); }));
        expectRefused(resultOf<TwitterUserPtr>([&](auto& api) { api.followUserID(nobody); }));
        expectRefused(resultOf<TwitterUserPtr>([&](auto& api) { api.followUsername(nobody); }));
        expectRefused(resultOf<TwitterUserPtr>([&](auto& api) { api.unfollowUserID(nobody); }));
        expectRefused(resultOf<bool>([&](auto& api) { api.userIDFollowsUserID(one, nobody); }));
        expectRefused(resultOf<bool>([&](auto& api) { api.usernameFollowsUsername(nobody, one); }));
        expectRefused(
            resultOf<TwitterDirectMessagePtr>([&](auto& api) { api.sendToUserID(u"a"_s, nobody); }));
    }
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(TwitterAPITest, WithoutAHostThereIsAnErrorAndNoRequest)
{
    hosts = {};
    const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
    ASSERT_TRUE(result.isError());
    EXPECT_EQ(result.error(), KRTestError(u"No service is set up: RESTHost has no value in ServiceHosts"_s));
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST(ErrorText, IsFitToBeShown)
{
    const std::pair<QByteArray, QString> cases[] = {
        { "<hash><error>Gone.</error><request>/x</request></hash>", u"Gone."_s },
        { "<errors><error code='32'>First.</error><error>Second.</error></errors>", u"Second."_s },
        { "<hash><error>two\n   lines &amp; &lt;b&gt;</error></hash>", u"two lines & <b>"_s },
        { "<hash><error>a\x01\xff</error></hash>", u"a\uFFFD\uFFFD"_s },
        // What came before the document broke off counts.
        { "<hash><error>Cut</error><req", u"Cut"_s },
        { "<hash><error> </error></hash>", QString() },
        { "<error>" + QByteArray(300, 'x') + "</error>", QString(300, u'x') },
        { "<error>" + QByteArray(301, 'x') + "</error>", QString(299, u'x') + u'…' },
        { "<error>" + QByteArray("word ").repeated(99) + "</error>", u"word "_s.repeated(59) + u"word…"_s },
        { "not xml", QString() },
        { "", QString() },
    };
    for (const auto& [document, text] : cases)
        EXPECT_EQ(TwitterAnswers::errorText(document), text) << document.constData();
}

} // namespace
