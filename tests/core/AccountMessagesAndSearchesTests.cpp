#include "KRTestAccount.h"
#include "core/Twitter.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRManualClock.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class MessagesAndSearches : public KRTestAccount {
protected:
    TwitterSearchPtr search(const QString& query) const
    {
        auto search = std::make_shared<TwitterSearch>(m_context.tables, m_context.hosts);
        if (!query.isNull())
            search->setQuery(query);
        return search;
    }

    static TwitterDirectMessagePtr message(int id, const QString& sender, const QDateTime& date)
    {
        return KRTestMessage(QString::number(id), KRTestUser({}, sender), KRTestUser({}, u"alice"_s), date);
    }

    static TwitterStatusPtr found(const QString& id, const QDateTime& date)
    {
        return status(id, u"bob"_s, date);
    }
};

} // namespace

TEST_F(MessagesAndSearches, KeepsEverySearchOnceAndHearsOfIt)
{
    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(m_account);
    const auto tea = search(u"tea"_s);
    m_account->addSavedSearch(tea);
    m_account->addSavedSearch(tea);
    m_account->addSavedSearch(search(u"TEA"_s));
    EXPECT_EQ(m_account->savedSearches(), QList<TwitterSearchPtr> { tea });
    EXPECT_TRUE(m_account->containsSavedSearch(*search(u"Tea"_s)));
    tea->stream()->addStatuses({ found(u"1"_s, KRNow()) });
    EXPECT_EQ(updates.count, 1);
    m_account->removeSavedSearch(search(u"coffee"_s));
    EXPECT_EQ(m_account->savedSearches().size(), 1);
    m_account->removeSavedSearch(search(u"tEa"_s));
    EXPECT_TRUE(m_account->savedSearches().isEmpty());
    tea->stream()->addStatuses({ found(u"2"_s, KRNow()) });
    EXPECT_EQ(updates.count, 1) << "no longer observed";
    EXPECT_TRUE(m_log.lines().isEmpty());

    const auto bare = search({});
    m_account->addSavedSearch(bare);
    EXPECT_TRUE(m_account->containsSavedSearch(*bare));
    m_account->removeSavedSearch(bare);
    EXPECT_EQ(m_log.lines().size(), 2);
    EXPECT_TRUE(m_log.lines().value(0).endsWith(u"Error: saving search with no stream attached"_s));
    EXPECT_TRUE(m_log.lines().value(1).endsWith(u"Error: remove saved search with no stream attached"_s));
}

TEST_F(MessagesAndSearches, ArchivesItsSearches)
{
    const auto named = search(u"tea"_s);
    named->setDisplayName(u"Cups"_s);
    m_account->addSavedSearch(named);
    m_account->addSavedSearch(search(u"#b"_s));
    KRKeyedArchiver archiver;
    archiver.encodeObject("account"_L1, *m_account);
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
    const auto restored
        = TwitterAccount::accountWithCoder(*coder.value().decodeObject("account"_L1), m_context);
    ASSERT_EQ(restored->savedSearches().size(), 2);
    EXPECT_EQ(restored->savedSearches()[0]->displayName(), u"Cups"_s);
    EXPECT_EQ(restored->savedSearches()[1]->query(), u"#b"_s);

    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(restored);
    restored->savedSearches()[1]->stream()->addStatuses({ found(u"1"_s, KRNow()) });
    EXPECT_EQ(updates.count, 1) << "a restored search is observed as an added one is";
}

TEST_F(MessagesAndSearches, SearchesFollowThreeFourAndFiveSecondsAfterTheRest)
{
    for (const char* path : { "/statuses/home_timeline.xml", "/statuses/replies.xml" })
        m_site.answer(path, "<nothing/>");
    for (const char* path : { "/direct_messages.xml", "/direct_messages/sent.xml" })
        m_site.answer(path, "<nothing/>");
    m_site.answer("/search.json", "{}");
    KRManualClock clock;
    const QStringList queries { u"a"_s, u"b"_s, u"c"_s };
    for (const QString& query : queries)
        m_account->addSavedSearch(search(query));
    m_account->refresh();
    EXPECT_TRUE(m_account->timelineStream()->isLoadingNewer());
    EXPECT_TRUE(m_account->directMessagesManager()->receivedStream()->isLoadingNewer());
    EXPECT_TRUE(m_account->directMessagesManager()->sentStream()->isLoadingNewer());
    // A load begins at once when its time has come; its answer takes another thread a while.
    const auto searchesSent = [&] {
        QByteArrayList sent;
        for (const QByteArray& target : m_site.targets()) {
            if (target.startsWith("/search.json"))
                sent.append(target.sliced(15, 1));
        }
        return sent.join();
    };
    const auto settle = [&](const QByteArray& expected) {
        for (int i = 0; i < 5000 && searchesSent() != expected; ++i)
            std::this_thread::sleep_for(1ms);
        return searchesSent();
    };
    clock.advance(2999ms);
    EXPECT_EQ(searchesSent(), "");
    clock.advance(1ms);
    EXPECT_EQ(settle("a"), "a");
    clock.advance(999ms);
    EXPECT_EQ(searchesSent(), "a");
    clock.advance(1ms);
    EXPECT_EQ(settle("ab"), "ab");
    clock.advance(1s);
    EXPECT_EQ(settle("abc"), "abc");
}

TEST_F(MessagesAndSearches, KnowsWhatIsFresh)
{
    KRManualClock clock;
    const auto account = makeAccount();
    const QDateTime now = clock.now();
    EXPECT_FALSE(account->hasFreshMessages());
    const auto received = account->directMessagesManager()->receivedStream();
    received->addMessages({ message(1, u"bob"_s, now.addSecs(-5)), message(2, u"ALICE"_s, now.addSecs(9)) });
    EXPECT_FALSE(account->hasFreshMessages()) << "old, or by the account itself";
    received->addMessages({ message(3, u"bob"_s, now.addSecs(5)) });
    EXPECT_TRUE(account->hasFreshMessages());
    EXPECT_TRUE(account->hasFreshAnythingApplicableToStatusItem());
    EXPECT_FALSE(account->hasFreshAnythingApplicableToDockBadge());

    const auto tea = search(u"tea"_s);
    account->addSavedSearch(tea);
    tea->stream()->addStatuses({ found(u"1"_s, now) });
    EXPECT_FALSE(account->hasFreshSearches()) << "nothing was marked yet";
    tea->stream()->noteFreshStatuses();
    tea->stream()->addStatuses({ found(u"2"_s, now.addSecs(1)) });
    EXPECT_TRUE(account->hasFreshSearches());

    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(account);
    account->noteFreshMessages();
    EXPECT_FALSE(account->hasFreshMessages());
    account->noteFreshSearches();
    EXPECT_TRUE(account->hasFreshSearches()) << "each search keeps its own mark";
    EXPECT_EQ(updates.count, 2);
    account->markAllAsRead();
    EXPECT_EQ(updates.count, 6);
    EXPECT_FALSE(account->hasFreshSearches());
}

TEST_F(MessagesAndSearches, EachKindAnswersToItsOwnBits)
{
    const QDateTime fresh = KRNow().addSecs(60);
    const auto received = [&] { return m_account->directMessagesManager()->receivedStream(); };
    const std::function<void()> makeFresh[] = {
        [&] { m_account->timelineStream()->addStatuses({ found(u"1"_s, fresh) }); },
        [&] { m_account->repliesStream()->addStatuses({ found(u"2"_s, fresh) }); },
        [&] { received()->addMessages({ message(1, u"bob"_s, fresh) }); },
    };
    const quint32 statusItemBits[] = { 0x2, 0x40, 0x800 };
    const quint32 dockBadgeBits[] = { 0x4, 0x80, 0x1000 };
    for (int kind = 0; kind < 3; ++kind) {
        m_account = makeAccount();
        makeFresh[kind]();
        for (int other = 0; other < 3; ++other) {
            m_account->setNotificationOptions(statusItemBits[other]);
            EXPECT_EQ(m_account->hasFreshAnythingApplicableToStatusItem(), kind == other) << kind << other;
            EXPECT_FALSE(m_account->hasFreshAnythingApplicableToDockBadge());
            m_account->setNotificationOptions(dockBadgeBits[other]);
            EXPECT_EQ(m_account->hasFreshAnythingApplicableToDockBadge(), kind == other) << kind << other;
            EXPECT_FALSE(m_account->hasFreshAnythingApplicableToStatusItem());
        }
    }
}

TEST_F(MessagesAndSearches, AnnouncesEachIncomingMessageOnce)
{
    m_account->setNotificationOptions(TwitterAccountMessagesGrowl);
    QString announced;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountGrowlForNewMessages>(
            [&](const auto& notification) {
                EXPECT_EQ(notification.account, m_account.get());
                announced += u'[';
                for (const TwitterDirectMessagePtr& one : *notification.object)
                    announced += one->messageID();
                announced += u']';
            });
    const QDateTime now = KRNow();
    const auto received = m_account->directMessagesManager()->receivedStream();
    received->addMessages(
        { message(1, u"bob"_s, now), message(2, u"alice"_s, now), message(3, u"carol"_s, now.addSecs(1)) });
    received->addMessages({ message(1, u"bob"_s, now), message(4, u"bob"_s, now.addSecs(2)) });
    m_account->timelineStream()->addStatuses({});
    EXPECT_EQ(announced, u"[31][4][]"_s);
}

TEST_F(MessagesAndSearches, ASentMessageLoadsTheMessages)
{
    const QByteArray element = "<direct_message><id>9</id><text>hi</text><sender>"
        + KRTestSite::user(1, "alice") + "</sender><recipient>" + KRTestSite::user(2, "bob")
        + "</recipient></direct_message>";
    const QByteArray sent = QByteArray(element).replace("<user>", "").replace("</user>", "");
    m_site.answer("/direct_messages/new.xml", sent);
    m_site.answer("/direct_messages.xml", "<direct-messages/>");
    m_site.answer("/direct_messages/sent.xml", "<direct-messages>" + sent + "</direct-messages>");
    const TwitterUserPtr bob = KRTestUser(u"2"_s, u"bob"_s);
    using Receiver = KRTestReceiver<TwitterDirectMessagePtr>;
    const auto receiver = std::make_shared<Receiver>();
    m_account->sendDirectMessage(u"hi & bye"_s, *bob, Callback(receiver, &Receiver::took));
    ASSERT_TRUE(KRWaitUntil([&] { return !m_account->directMessagesManager()->conversations().isEmpty(); }));
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 3; })) << "the message, then both lists";
    EXPECT_EQ(receiver->count, 1);
    EXPECT_EQ(receiver->result->value()->messageID(), u"9"_s);
    EXPECT_EQ(m_site.requests().value(0).body, "user=2&text=hi+%26+bye");

    m_site.answer("/direct_messages/new.xml", "<hash><error>not your friend</error></hash>", 403);
    bob->setUserID({});
    m_account->sendDirectMessage(u"hi"_s, *bob, Callback(receiver, &Receiver::took));
    ASSERT_TRUE(KRWaitUntil([&] { return receiver->count == 2; }));
    EXPECT_EQ(receiver->result->error().description, u"Forbidden. not your friend"_s);
    EXPECT_EQ(m_site.requests().value(3).body, "user=bob&text=hi") << "known by name only";
    EXPECT_EQ(m_site.requests().size(), 4) << "a failure loads nothing";
}

TEST_F(MessagesAndSearches, TrendsLoadOnFirstDemandAndOnceAtATime)
{
    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(u"pelinor.ini"_s) };
    auto twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, m_context.hosts, false });
    const KRTestCounter<TwitterTrendsDidUpdateNotification> updates(twitter);
    m_site.answer("/trends.json", "<div>no</div>", 501);
    EXPECT_TRUE(twitter->trends().isEmpty());
    EXPECT_TRUE(twitter->trends().isEmpty());
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 1; }));
    m_site.answer("/trends.json", R"({"trends":[{"name":"#tea"},{"name":"b"}]})");
    // The failure frees the way for the next request.
    ASSERT_TRUE(KRWaitUntil([&] { return !twitter->trends().isEmpty(); }));
    EXPECT_EQ(twitter->trends(), (QStringList { u"#tea"_s, u"b"_s }));
    EXPECT_EQ(updates.count, 1);
    EXPECT_EQ(m_site.requests().size(), 2);

    m_site.answer("/trends.json", "[]");
    twitter->updateTrends();
    twitter->updateTrends();
    ASSERT_TRUE(KRWaitUntil([&] { return updates.count == 2; }));
    EXPECT_TRUE(twitter->trends().isEmpty());
    EXPECT_EQ(m_site.requests().size(), 3) << "an empty list is a list";

    twitter->updateTrends();
    twitter.reset();
    EXPECT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 4; }));
    KRRunLoop::main().runPending();
    EXPECT_EQ(updates.count, 2);
}
