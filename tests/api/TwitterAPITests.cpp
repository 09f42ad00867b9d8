#include "TwitterAPIFixture.h"
#include "text/KRArrayAdditions.h"

using namespace Qt::StringLiterals;

namespace {

using TwitterAPITest = TwitterAPIFixture;

using SendFunction = std::function<void(const TwitterServiceHosts& hosts, bool withAccount)>;

// Sends an operation of the group that delivers such results, with the account or for nobody.
template <class Result, class Operation>
SendFunction operation(Operation send)
{
    return [send](const TwitterServiceHosts& hosts, bool withAccount) {
        const KRCallback<Result> nobody;
        if (withAccount)
            send(*TwitterAPI::authenticatedRequest(hosts, TestCredentials(), nobody));
        else
            send(*TwitterAPI::request(hosts, nobody));
    };
}

SendFunction command(void (TwitterCommandOperations::*method)(const QString&), const QString& argument)
{
    return [=](const TwitterServiceHosts& hosts, bool withAccount) {
        const auto operations = withAccount ? TwitterAPI::authenticatedRequest(hosts, TestCredentials())
                                            : TwitterAPI::request(hosts);
        (operations.get()->*method)(argument);
    };
}

struct Row {
    SendFunction send;
    QByteArray request;
    QByteArray body;
    // The operation in the log when there is no account; null for one that needs none.
    const char* selector;
};

const QString none;

const Row rows[] = {
    { operation<TwitterStatusList>([](auto& api) { api.friendsTimelineSinceID(none, none, {}, {}); }),
        "GET /api/statuses/home_timeline.xml?",
        {},
        "friendsTimelineSinceID:maxID:count:page:" },
    { operation<TwitterStatusList>([](auto& api) { api.friendsTimelineSinceID(u"1"_s, u"2"_s, 200, 3); }),
        "GET /api/statuses/home_timeline.xml?since_id=1&max_id=2&count=200&page=3",
        {},
        "friendsTimelineSinceID:maxID:count:page:" },
    { operation<TwitterStatusList>([](auto& api) { api.repliesSinceID(u"1"_s, u"2"_s, 3); }),
        "GET /api/statuses/replies.xml?since_id=1&max_id=2&page=3",
        {},
        "repliesSinceID:maxID:page:" },
    { operation<TwitterStatusList>(
          [](auto& api) { api.userTimelineForUsername(u"j&ö e"_s, none, u"2"_s, 40, {}); }),
        "GET /api/statuses/user_timeline.xml?screen_name=j%26%C3%B6+e&max_id=2&count=40",
        {},
        nullptr },
    { operation<TwitterStatusList>([](auto& api) { api.userTimelineForUserID(u"7"_s, u"1"_s, none, {}, 2); }),
        "GET /api/statuses/user_timeline.xml?user_id=7&since_id=1&page=2",
        {},
        nullptr },
    { operation<TwitterStatusList>([](auto& api) { api.publicTimeline(); }),
        "GET /api/statuses/public_timeline.xml",
        {},
        nullptr },
    { operation<TwitterStatusPtr>([](auto& api) { api.statusWithID(u"4/2"_s); }),
        "GET /api/statuses/show/4%2F2.xml",
        {},
        nullptr },
    { operation<TwitterStatusPtr>([](auto& api) { api.update(u"a+b & é=😀"_s, none); }),
        "POST /api/statuses/update.xml",
        "status=a%2Bb+%26+%C3%A9%3D%F0%9F%98%80&source=pelinor",
        "update:inReplyToStatusID:" },
    { operation<TwitterStatusPtr>([](auto& api) { api.update(u"hi"_s, u"9"_s); }),
        "POST /api/statuses/update.xml",
        "status=hi&in_reply_to_status_id=9&source=pelinor",
        "update:inReplyToStatusID:" },
    { operation<TwitterStatusPtr>([](auto& api) { api.destroyStatus(u"4"_s); }),
        "POST /api/statuses/destroy/4.xml",
        {},
        "destroyStatus:" },
    { operation<TwitterDirectMessageList>([](auto& api) { api.directMessagesSinceID(u"1"_s, u"2"_s, 3); }),
        "GET /api/direct_messages.xml?since_id=1&max_id=2&page=3",
        {},
        "directMessagesSinceID:maxID:page:" },
    { operation<TwitterDirectMessageList>([](auto& api) { api.sentDirectMessagesSinceID(none, none, {}); }),
        "GET /api/direct_messages/sent.xml?",
        {},
        "sentDirectMessagesSinceID:maxID:page:" },
    { operation<TwitterDirectMessagePtr>([](auto& api) { api.sendToUsername(u"hi you"_s, u"bob"_s); }),
        "POST /api/direct_messages/new.xml",
        "user=bob&text=hi+you",
        "send:toUsername:" },
    { operation<TwitterDirectMessagePtr>([](auto& api) { api.sendToUserID(u"hi"_s, u"3"_s); }),
        "POST /api/direct_messages/new.xml",
        "user=3&text=hi",
        "send:toUserID:" },
    { operation<TwitterStatusList>([](auto& api) { api.favoritesForUsername(u"b b"_s, 2); }),
        "GET /api/favorites/b+b.xml?page=2",
        {},
        nullptr },
    { operation<TwitterStatusList>([](auto& api) { api.favoritesForUserID(u"3"_s, {}); }),
        "GET /api/favorites/3.xml?",
        {},
        nullptr },
    { command(&TwitterCommandOperations::favoriteStatusID, u"3"_s),
        "POST /api/favorites/create/3.xml",
        {},
        "favoriteStatusID:" },
    { command(&TwitterCommandOperations::unfavoriteStatusID, u"3"_s),
        "POST /api/favorites/destroy/3.xml",
        {},
        "unfavoriteStatusID:" },
    { operation<TwitterUserPtr>([](auto& api) { api.followUsername(u"b&b"_s); }),
        "POST /api/friendships/create.xml?screen_name=b%26b",
        {},
        "followUsername:" },
    { operation<TwitterUserPtr>([](auto& api) { api.followUserID(u"3"_s); }),
        "POST /api/friendships/create.xml?user_id=3",
        {},
        "followUserID:" },
    { operation<TwitterUserPtr>([](auto& api) { api.unfollowUsername(u"bob"_s); }),
        "POST /api/friendships/destroy/bob.xml",
        {},
        "unfollowUsername:" },
    { operation<TwitterUserPtr>([](auto& api) { api.unfollowUserID(u"3"_s); }),
        "POST /api/friendships/destroy/3.xml",
        {},
        "unfollowUserID:" },
    { operation<bool>([](auto& api) { api.usernameFollowsUsername(u"a"_s, u"b"_s); }),
        "GET /api/friendships/exists.xml?user_a=a&user_b=b",
        {},
        nullptr },
    { operation<bool>([](auto& api) { api.userIDFollowsUserID(u"1"_s, u"2"_s); }),
        "GET /api/friendships/exists.xml?user_a=1&user_b=2",
        {},
        nullptr },
    { operation<TwitterUserList>([](auto& api) { api.friendsForUsername(u"a"_s, 2); }),
        "GET /api/statuses/friends.xml?screen_name=a&page=2",
        {},
        nullptr },
    { operation<TwitterUserList>([](auto& api) { api.friendsForUserID(u"1"_s, {}); }),
        "GET /api/statuses/friends.xml?user_id=1",
        {},
        nullptr },
    { operation<TwitterUserList>([](auto& api) { api.followersForUsername(u"a"_s, {}); }),
        "GET /api/statuses/followers.xml?screen_name=a",
        {},
        nullptr },
    { operation<TwitterUserList>([](auto& api) { api.followersForUserID(u"1"_s, 5); }),
        "GET /api/statuses/followers.xml?user_id=1&page=5",
        {},
        nullptr },
    { operation<TwitterUserPtr>([](auto& api) { api.userWithUsername(u"a"_s); }),
        "GET /api/users/show.xml?screen_name=a",
        {},
        nullptr },
    { operation<TwitterUserPtr>([](auto& api) { api.userWithID(u"1"_s); }),
        "GET /api/users/show.xml?user_id=1",
        {},
        nullptr },
    { operation<bool>([](auto& api) { api.verifyCredentials(); }),
        "GET /api/account/verify_credentials.xml",
        {},
        nullptr },
    { operation<QString>([](auto& api) { api.rateLimitStatus(); }),
        "GET /api/account/rate_limit_status.xml",
        {},
        nullptr },
};

TEST_F(TwitterAPITest, EveryOperationOnTheWire)
{
    int sent = 0;
    for (const bool withAccount : { true, false }) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.request.constData());
            KRTestLog log;
            row.send(hosts, withAccount);
            ++sent;
            ASSERT_TRUE(KRWaitUntil([&] { return server.requestCount() == sent; }));
            const KRTestServer::Request request = server.requests().last();
            EXPECT_EQ(request.method + ' ' + request.target, row.request);
            EXPECT_EQ(request.body, row.body);
            EXPECT_EQ(request.values("authorization"),
                withAccount ? QList<QByteArray> { "Basic am9lOnNlY3JldA==" } : QList<QByteArray>());
            EXPECT_EQ(request.value("x-twitter-client"), "Pelinor-Mac");
            EXPECT_EQ(request.value("x-twitter-client-version"), "1.2.6");
            EXPECT_TRUE(request.value("x-twitter-client-url").startsWith("https://"));
            const QStringList complaints = row.selector && !withAccount
                ? QStringList(
                    u"Critical Error: %1 requires authentication"_s.arg(QLatin1String(row.selector)))
                : QStringList();
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
    EXPECT_EQ(log.lines(), QStringList(u"not implemented"_s));
    // A request sent afterwards is the only one that arrives.
    operations->favoriteStatusID(u"1"_s);
    ASSERT_TRUE(KRWaitUntil([&] { return server.requestCount() > 0; }));
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(TwitterAPITest, ResultsOfEachKind)
{
    answer(200, realAnswer(u"home_timeline.default.body.xml"_s));
    const auto statuses
        = resultOf<TwitterStatusList>([](auto& api) { api.friendsTimelineSinceID({}, {}, {}, {}); });
    EXPECT_EQ(statuses.value().size(), 20);
    answer(200, realAnswer(u"show.conv2.body.xml"_s));
    EXPECT_EQ(resultOf<TwitterStatusPtr>([](auto& api) { api.statusWithID(u"450"_s); }).value()->statusID(),
        u"450"_s);
    answer(200, realAnswer(u"friends.default.body.xml"_s));
    EXPECT_EQ(resultOf<TwitterUserList>([](auto& api) { api.friendsForUserID(u"2"_s, {}); }).value().size(),
        33);
    answer(200, realAnswer(u"friendships_create.screen_name.body.xml"_s));
    EXPECT_EQ(resultOf<TwitterUserPtr>([](auto& api) { api.followUsername(u"dave"_s); }).value()->username(),
        u"dave"_s);
    answer(200, realAnswer(u"direct_messages.default.body.xml"_s));
    EXPECT_EQ(resultOf<TwitterDirectMessageList>([](auto& api) { api.directMessagesSinceID({}, {}, {}); })
                  .value()
                  .size(),
        20);
    answer(200, realAnswer(u"direct_messages_new.id.body.xml"_s));
    EXPECT_EQ(resultOf<TwitterDirectMessagePtr>([](auto& api) { api.sendToUserID(u"by id"_s, u"3"_s); })
                  .value()
                  ->text(),
        u"by id"_s);
    answer(200, realAnswer(u"verify_credentials.ok.body.xml"_s));
    EXPECT_TRUE(resultOf<bool>([](auto& api) { api.verifyCredentials(); }).value());
    answer(200, realAnswer(u"rate_limit_status.auth.body.xml"_s));
    EXPECT_TRUE(
        resultOf<QString>([](auto& api) { api.rateLimitStatus(); }).value().contains(u"hourly-limit"_s));

    const auto follows = [this](const QByteArray& body) {
        answer(200, body);
        return resultOf<bool>([](auto& api) { api.userIDFollowsUserID(u"1"_s, u"2"_s); });
    };
    EXPECT_TRUE(follows(realAnswer(u"friendships_exists.true.body.xml"_s)).value());
    EXPECT_FALSE(follows(realAnswer(u"friendships_exists.false.body.xml"_s)).value());
    EXPECT_FALSE(follows("<hash/>").value());
    EXPECT_TRUE(follows("<friends>true").isError());
}

TEST_F(TwitterAPITest, AnErrorDocumentAddsItsTextToTheStatus)
{
    const struct {
        int status;
        QString answer;
        QString description;
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
        answer(test.status, realAnswer(test.answer));
        const auto result = resultOf<TwitterStatusPtr>([](auto& api) { api.statusWithID(u"1"_s); });
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            errorWithDomain(u"com.kestrin.httprequest"_s,
                test.status,
                KRHTTPStatusText(test.status) + u". "_s + test.description));
    }
}

TEST_F(TwitterAPITest, SuccessesThatAreNoneAreErrors)
{
    const auto statuses = [this](const QByteArray& body, const QByteArray& headers = {}) {
        answer(200, body, headers);
        const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
        return result.isError() ? result.error().description : QString();
    };
    EXPECT_EQ(statuses(""), u"The server's answer is empty"_s);
    EXPECT_EQ(statuses("<!-- a --><!DOCTYPE HTML><html/>"),
        u"Status 200: the server answered with a web page"_s);
    EXPECT_EQ(statuses("<div>Sign in</div>", "Content-Type: text/html\r\n"),
        u"Status 200: the server answered with a web page"_s);
    EXPECT_EQ(statuses("<?xml version='1.0'?><statuses/>", "Content-Type: text/html\r\n"), QString());
    EXPECT_NE(statuses("<statuses>"), QString());

    answer(200, "<?xml version='1.0'?>\n<html xmlns='http://www.w3.org/1999/xhtml'/>");
    EXPECT_TRUE(resultOf<bool>([](auto& api) { api.verifyCredentials(); }).isError());
    answer(200, realAnswer(u"show.deleted.body.xml"_s));
    const auto status = resultOf<TwitterStatusPtr>([](auto& api) { api.statusWithID(u"1"_s); });
    ASSERT_TRUE(status.isError());
    EXPECT_EQ(status.error(), errorWithDomain(u"com.kestrin.pelinor"_s, 200, u"Notice deleted."_s));
    answer(200, "<other/>");
    EXPECT_TRUE(resultOf<TwitterUserPtr>([](auto& api) { api.userWithID(u"1"_s); }).isError());
    EXPECT_TRUE(
        resultOf<TwitterDirectMessagePtr>([](auto& api) { api.sendToUserID(u"a"_s, u"1"_s); }).isError());
}

TEST_F(TwitterAPITest, APageWithForbiddenCharactersIsReadWithoutThem)
{
    KRTestLog log;
    answer(200, realAnswer(u"home_timeline.with_invalid_xml_char.body.xml"_s));
    const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
    ASSERT_FALSE(result.isError());
    EXPECT_EQ(KRAdditions::mapFunction(result.value(), &TwitterStatus::statusID),
        (QList<QString> { u"481"_s, u"480"_s, u"479"_s }));
}

TEST_F(TwitterAPITest, WithoutAHostThereIsAnErrorAndNoRequest)
{
    hosts = {};
    const auto result = resultOf<TwitterStatusList>([](auto& api) { api.publicTimeline(); });
    ASSERT_TRUE(result.isError());
    EXPECT_EQ(result.error(),
        errorWithDomain(u"com.kestrin.pelinor"_s,
            -1,
            u"No service is set up: RESTHost has no value in ServiceHosts"_s));
    EXPECT_EQ(server.connectionCount(), 0);
}

} // namespace
