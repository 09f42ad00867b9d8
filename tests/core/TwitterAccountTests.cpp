#include "KRTestAccount.h"
#include "foundation/KRKeyedArchiver.h"
#include "support/KRManualClock.h"

using namespace Qt::StringLiterals;

namespace {

using TwitterAccountTest = KRTestAccount;

} // namespace

TEST_F(TwitterAccountTest, ArchivesItselfWithoutItsPassword)
{
    m_account->setNotificationOptions(0);
    EXPECT_EQ(m_account->notificationOptions(), 0x1U);
    KRKeyedArchiver archiver;
    archiver.encodeObject("account"_L1, *m_account);
    const QByteArray data = archiver.archivedData();
    EXPECT_FALSE(data.contains("pw"));
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(data);
    const TwitterAccountPtr restored
        = TwitterAccount::accountWithCoder(*coder.value().decodeObject("account"_L1), m_context);
    EXPECT_EQ(restored->username(), u"Alice"_s);
    EXPECT_EQ(restored->notificationOptions(), 0x1U);
    EXPECT_TRUE(restored->isEqual(*m_account));

    KRKeyedArchiver old;
    old.encodeString("username"_L1, u"bob"_s);
    old.encodeInteger("notificationOptions"_L1, 0);
    const auto bare = KRKeyedUnarchiver::unarchiverWithData(old.archivedData());
    EXPECT_EQ(TwitterAccount::accountWithCoder(bare.value(), m_context)->notificationOptions(), 0x843U);
}

TEST_F(TwitterAccountTest, KnowsWhatIsFresh)
{
    KRManualClock clock;
    const TwitterAccountPtr account = makeAccount();
    const QDateTime now = clock.now();
    EXPECT_FALSE(account->hasFreshTweets());
    const auto stream = account->timelineStream();
    stream->addStatuses({ status(u"1"_s, u"bob"_s, now.addSecs(-10)) });
    EXPECT_FALSE(account->hasFreshTweets()) << "older than the account";
    stream->addStatuses({ status(u"2"_s, u"ALICE"_s, now.addSecs(10)) });
    EXPECT_FALSE(account->hasFreshTweets()) << "one's own posts are never news";
    stream->addStatuses({ status(u"3"_s, u"bob"_s, now.addSecs(5)) });
    EXPECT_TRUE(account->hasFreshTweets());
    EXPECT_TRUE(account->hasFreshAnythingApplicableToStatusItem());
    EXPECT_FALSE(account->hasFreshAnythingApplicableToDockBadge());

    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(account);
    account->noteFreshTweets();
    EXPECT_EQ(updates.count, 1);
    EXPECT_FALSE(account->hasFreshTweets());
    stream->addStatuses({ status(u"4"_s, u"bob"_s, now.addSecs(7)) });
    EXPECT_FALSE(account->hasFreshTweets()) << "the mark is the newest post's date, one's own included";

    // Marking an empty list leaves no mark, and without a mark nothing is fresh.
    account->noteFreshMentions();
    account->repliesStream()->addStatuses({ status(u"5"_s, u"bob"_s, now.addSecs(99)) });
    EXPECT_FALSE(account->hasFreshMentions());
}

TEST_F(TwitterAccountTest, AnnouncesEachStatusOnce)
{
    m_account->setNotificationOptions(TwitterAccountTimelineGrowl);
    QString announced;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountGrowlForNewTimelineStatuses>(
            [&](const auto& notification) {
                announced += u'[';
                for (const TwitterStatusPtr& one : *notification.object)
                    announced += one->statusID();
                announced += u']';
            });
    const QDateTime now = KRNow();
    m_account->timelineStream()->addStatuses(
        { status(u"1"_s, u"bob"_s, now), status(u"2"_s, u"alice"_s, now.addSecs(1)) });
    m_account->timelineStream()->addStatuses(
        { status(u"1"_s, u"bob"_s, now), status(u"3"_s, u"bob"_s, now.addSecs(2)) });
    m_account->repliesStream()->addStatuses({});
    EXPECT_EQ(announced, u"[21][3][]"_s);

    m_account->setNotificationOptions(TwitterAccountMentionsGrowl);
    QList<qsizetype> mentions;
    const KRObservation mentionsObservation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountGrowlForNewMentionStatuses>(
            [&](const auto& notification) { mentions.append(notification.object->size()); });
    m_account->repliesStream()->addStatuses({ status(u"4"_s, u"bob"_s, now) });
    m_account->timelineStream()->addStatuses({ status(u"5"_s, u"bob"_s, now) });
    EXPECT_EQ(mentions, (QList<qsizetype> { 1, 0 }));
    EXPECT_EQ(announced, u"[21][3][]"_s) << "each kind answers to its own bit";
}

TEST_F(TwitterAccountTest, RefreshesWithItsCredentials)
{
    const QByteArray hi = KRTestSite::status(5, "carol", "hi @alice");
    m_site.answer("/statuses/home_timeline.xml",
        KRTestSite::statuses({ KRTestSite::status(7, "bob", "hello"), hi }));
    m_site.answer("/statuses/replies.xml", KRTestSite::statuses({ hi }));
    m_site.answer("/direct_messages.xml", "<direct-messages/>");
    m_site.answer("/direct_messages/sent.xml", "<direct-messages/>");
    m_account->refresh();
    ASSERT_TRUE(KRWaitUntil([&] {
        return m_account->timelineStream()->storedStatuses().size() == 2
            && m_account->repliesStream()->storedStatuses().size() == 1;
    }));
    EXPECT_EQ(m_account->timelineStream()->storedStatuses().at(1),
        m_account->repliesStream()->storedStatuses().at(0))
        << "one status is one record";
    EXPECT_TRUE(m_account->isMentionedInStatus(*m_account->repliesStream()->newestStatus()));
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 4; }));
    for (const KRTestServer::Request& request : m_site.requests())
        EXPECT_EQ(request.value("authorization"), "Basic " + QByteArray("Alice:pw").toBase64());
    EXPECT_TRUE(m_site.targets().contains("/statuses/home_timeline.xml?count=200"));
}

TEST_F(TwitterAccountTest, APostLoadsTheTimeline)
{
    m_site.answer("/statuses/update.xml", KRTestSite::status(9, "alice", "posted"));
    m_site.answer("/statuses/home_timeline.xml",
        KRTestSite::statuses({ KRTestSite::status(9, "alice", "posted") }));
    using Receiver = KRTestReceiver<TwitterStatusPtr>;
    const auto receiver = std::make_shared<Receiver>();
    m_account->update(u"posted & <sent>"_s, u"4"_s, Callback(receiver, &Receiver::took));
    ASSERT_TRUE(KRWaitUntil([&] { return m_account->timelineStream()->newestStatusID() == u"9"; }));
    EXPECT_EQ(receiver->count, 1);
    EXPECT_EQ(m_site.requests().value(0).body,
        QByteArray("status=posted+%26+%3Csent%3E&in_reply_to_status_id=4&source=pelinor"));

    m_site.answer("/statuses/update.xml", "<hash><error>duplicate</error></hash>", 400);
    m_account->update(u"posted"_s, {}, Callback(receiver, &Receiver::took));
    ASSERT_TRUE(KRWaitUntil([&] { return receiver->count == 2; }));
    ASSERT_TRUE(receiver->result->isError());
    EXPECT_EQ(receiver->result->error().description, u"Bad request. duplicate"_s);
    EXPECT_EQ(m_site.targets().count("POST /statuses/update.xml"), 2);
}

TEST_F(TwitterAccountTest, LooksUpWithoutCredentialsFirst)
{
    std::atomic<bool> isPublic = true;
    m_site.answer("/users/show.xml", [&](const KRTestServer::Request& request) {
        const bool mayRead = isPublic || !request.value("authorization").isEmpty();
        return mayRead ? KRTestSite::Answer { 200, KRTestSite::user(3, "bob") }
                       : KRTestSite::Answer { 401, {} };
    });
    for (const bool open : { true, false }) {
        isPublic = open;
        const qsizetype before = m_site.requests().size();
        const auto receiver = std::make_shared<KRTestReceiver<TwitterUserPtr>>();
        m_account->requestUserWithUsername(u"bob"_s,
            Callback(receiver, &KRTestReceiver<TwitterUserPtr>::took));
        ASSERT_TRUE(KRWaitUntil([&] { return receiver->count == 1; }));
        ASSERT_FALSE(receiver->result->isError());
        EXPECT_EQ(receiver->result->value(), m_context.tables->cachedUserWithID(u"3"_s));
        EXPECT_EQ(m_site.requests().size() - before, open ? 1 : 2);
        EXPECT_TRUE(m_site.requests().value(before).value("authorization").isEmpty());
    }
    EXPECT_TRUE(m_log.contains(u"couldn't load user unathenticated... trying authenticated"_s));

    m_site.answer("/statuses/show/8.xml", "<hash><error>gone</error></hash>", 410);
    const auto receiver = std::make_shared<KRTestReceiver<TwitterStatusPtr>>();
    m_account->requestStatusWithID(u"8"_s, Callback(receiver, &KRTestReceiver<TwitterStatusPtr>::took));
    ASSERT_TRUE(KRWaitUntil([&] { return receiver->count == 1; }));
    EXPECT_EQ(receiver->result->error().code, 410);
}

TEST_F(TwitterAccountTest, LoadsItsOwnUserOnDemandAndAgainAfterAFailure)
{
    m_site.answer("/users/show.xml", "nothing", 503);
    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(m_account);
    EXPECT_EQ(m_account->user(), nullptr);
    EXPECT_EQ(m_account->user(), nullptr);
    ASSERT_TRUE(KRWaitUntil([&] { return m_log.contains(u"Error loading user for account Alice"_s); }));
    EXPECT_EQ(m_site.requests().size(), 2) << "one look-up: without and with credentials";

    m_site.answer("/users/show.xml", KRTestSite::user(1, "alice"));
    EXPECT_EQ(m_account->user(), nullptr);
    ASSERT_TRUE(KRWaitUntil([&] { return updates.count == 1; }));
    EXPECT_EQ(m_account->user(), m_context.tables->cachedUserWithID(u"1"_s));
    const TwitterUserPtr newer = KRTestUser(u"1"_s, u"alice"_s);
    newer->setLastUpdated(KRNow().addSecs(60));
    m_context.tables->definitiveUser(newer);
    EXPECT_EQ(updates.count, 2);
}

TEST_F(TwitterAccountTest, MarksFavouritesAtOnce)
{
    m_site.answer("/favorites/create/6.xml", KRTestSite::status(6, "bob", "nice"));
    const TwitterStatusPtr liked = status(u"6"_s, u"bob"_s, KRNow());
    m_account->addStatusToFavorites(liked);
    EXPECT_TRUE(m_account->isFavoriteStatus(*liked));
    EXPECT_TRUE(KRWaitUntil([&] { return m_site.targets().contains("POST /favorites/create/6.xml"); }));
}
