#include "KRTestAccount.h"
#include "foundation/KRKeyedArchiver.h"

namespace {

using TwitterAccountTest = KRTestAccount;

TwitterAccountPtr restored(const TwitterAccount& account)
{
    KRKeyedArchiver archiver;
    account.encodeWithCoder(archiver);
    const QByteArray data = archiver.archivedData();
    EXPECT_FALSE(data.contains("pw"));
    return TwitterAccount::accountWithCoder(KRKeyedUnarchiver::unarchiverWithData(data).value(),
        account.context());
}

/// What the three kinds of news have in common.
struct Kind {
    using Account = TwitterAccount;

    const char* name;
    bool (Account::*hasFresh)() const;
    void (Account::*noteFresh)();
    quint32 statusItem;
    quint32 dockBadge = statusItem << 1;
    quint32 growl = statusItem << 2;
    /// One's own post is the newest one when posts are marked as seen, and no news when they are announced.
    bool ownCounts = statusItem < 0x800;

    void add(Account& account, const QString& id, const QString& author, const QDateTime& date) const
    {
        const TwitterUserPtr from = KRTestUser({}, author);
        if (hasFresh == &Account::hasFreshTweets)
            account.timelineStream()->addStatuses({ KRTestStatus(id, from, date, u"x"_s) });
        else if (hasFresh == &Account::hasFreshMentions)
            account.repliesStream()->addStatuses({ KRTestStatus(id, from, date, u"x"_s) });
        else
            account.directMessagesManager()->receivedStream()->addMessages(
                { KRTestMessage(id, from, KRTestUser({}, u"alice"_s), date) });
    }
};

using A = TwitterAccount;
const Kind kinds[] = {
    { "timeline", &A::hasFreshTweets, &A::noteFreshTweets, 0x2 },
    { "mentions", &A::hasFreshMentions, &A::noteFreshMentions, 0x40 },
    { "messages", &A::hasFreshMessages, &A::noteFreshMessages, 0x800 },
};

} // namespace

TEST_F(TwitterAccountTest, KnowsWhatIsFreshAndKeepsItsMarks)
{
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        KRManualClock clock;
        const QDateTime start = clock.now();
        const TwitterAccountPtr account = makeAccount();
        const auto hasFresh = [&] { return ((*account).*kind.hasFresh)(); };
        EXPECT_FALSE(hasFresh());
        kind.add(*account, u"1"_s, u"bob"_s, start.addSecs(-10));
        EXPECT_FALSE(hasFresh()) << "older than the account";
        kind.add(*account, u"2"_s, u"ALICE"_s, start.addSecs(10));
        EXPECT_FALSE(hasFresh()) << "one's own is no news";
        kind.add(*account, u"3"_s, u"bob"_s, start.addSecs(5));
        EXPECT_TRUE(hasFresh());
        EXPECT_TRUE(account->hasFreshAnythingApplicableToStatusItem()) << "as long as nobody chose otherwise";
        EXPECT_FALSE(account->hasFreshAnythingApplicableToDockBadge());
        for (const Kind& other : kinds) {
            for (const quint32 bit : { other.statusItem, other.dockBadge, other.growl }) {
                account->setNotificationOptions(bit);
                EXPECT_EQ(account->hasFreshAnythingApplicableToStatusItem(), bit == kind.statusItem);
                EXPECT_EQ(account->hasFreshAnythingApplicableToDockBadge(), bit == kind.dockBadge);
            }
        }

        const KRTestCounter<TwitterAccountDidUpdateNotification> updates(account.get());
        ((*account).*kind.noteFresh)();
        EXPECT_EQ(updates.count, 1);
        EXPECT_FALSE(hasFresh());
        kind.add(*account, u"4"_s, u"bob"_s, start.addSecs(7));
        EXPECT_EQ(hasFresh(), !kind.ownCounts);
        clock.advance(100s);
        const TwitterAccountPtr again = restored(*account);
        kind.add(*again, u"5"_s, u"bob"_s, start.addSecs(12));
        EXPECT_TRUE(((*again).*kind.hasFresh)()) << "the mark is kept";

        // Marking an empty list leaves no mark, and without a mark nothing is fresh.
        const TwitterAccountPtr empty = makeAccount();
        ((*empty).*kind.noteFresh)();
        kind.add(*empty, u"6"_s, u"bob"_s, start.addSecs(999));
        EXPECT_FALSE(((*empty).*kind.hasFresh)());
    }
}

TEST_F(TwitterAccountTest, AnnouncesEachOnce)
{
    QString announced;
    const auto note = [&](const QString& kind, const auto& notification) {
        EXPECT_EQ(notification.account, m_account.get());
        announced += kind;
        for (const auto& one : *notification.object) {
            if constexpr (requires { one->messageID(); })
                announced += one->messageID();
            else
                announced += one->statusID();
        }
        announced += u' ';
    };
    const KRObservation observations[] = {
        KRTestObserve<TwitterAccountGrowlForNewTimelineStatuses>(
            [&](const auto& posted) { note(u"timeline"_s, posted); }),
        KRTestObserve<TwitterAccountGrowlForNewMentionStatuses>(
            [&](const auto& posted) { note(u"mentions"_s, posted); }),
        KRTestObserve<TwitterAccountGrowlForNewMessages>(
            [&](const auto& posted) { note(u"messages"_s, posted); }),
    };
    const QDateTime now = KRNow();
    for (const Kind& kind : kinds) {
        // Records are the same for all accounts of one run, and announced once in it.
        m_twitter = makeTwitter();
        m_context = m_twitter->accountContext();
        m_account = makeAccount();
        m_account->setNotificationOptions(kind.growl);
        announced.clear();
        kind.add(*m_account, u"1"_s, u"bob"_s, now);
        kind.add(*m_account, u"1"_s, u"bob"_s, now);
        kind.add(*m_account, u"2"_s, u"alice"_s, now);
        const Kind& other = kinds[&kind == kinds];
        other.add(*m_account, u"3"_s, u"bob"_s, now);
        const QString name = QLatin1String(kind.name);
        EXPECT_EQ(announced, u"%1%2 %1 %1%3 %1 "_s.arg(name, u"1"_s, kind.ownCounts ? u"2"_s : u""_s));
        m_account->setNotificationOptions(0);
        kind.add(*m_account, u"4"_s, u"bob"_s, now);
        EXPECT_EQ(announced.count(u'4'), 0);
    }
}

TEST_F(TwitterAccountTest, ArchivesItselfWithoutItsPassword)
{
    const TwitterSearchPtr named = makeSearch(u"tea"_s);
    named->setDisplayName(u"Cups"_s);
    m_account->addSavedSearch(named);
    m_account->addSavedSearch(makeSearch(u"#b"_s));
    m_account->setNotificationOptions(0);
    EXPECT_EQ(m_account->notificationOptions(), 0x1U);
    const TwitterAccountPtr again = restored(*m_account);
    EXPECT_EQ(again->username(), u"Alice"_s);
    EXPECT_EQ(again->notificationOptions(), 0x1U);
    ASSERT_EQ(again->savedSearches().size(), 2);
    EXPECT_EQ(again->savedSearches()[0]->displayName(), u"Cups"_s);
    EXPECT_EQ(again->savedSearches()[1]->query(), u"#b"_s);
    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(again.get());
    again->savedSearches()[1]->stream()->addStatuses({});
    EXPECT_EQ(updates.count, 1) << "a restored search is observed as an added one is";

    EXPECT_TRUE(again->isEqual(*makeAccount(u"aLICE"_s)) && !again->isEqual(*makeAccount(u"Alic"_s)));
    EXPECT_TRUE(again->compare(*makeAccount(u"alice"_s)) < 0 && again->compare(*makeAccount(u"Al"_s)) > 0);
    KRKeyedArchiver old;
    old.encodeString("username"_L1, u"bob"_s);
    old.encodeInteger("notificationOptions"_L1, 0);
    const auto bare = KRKeyedUnarchiver::unarchiverWithData(old.archivedData());
    EXPECT_EQ(TwitterAccount::accountWithCoder(bare.value(), m_context)->notificationOptions(), 0x843U);
    EXPECT_TRUE(restored(*TwitterAccount::accountWithUsername(u"x"_s, {}, m_context))->password().isNull());
    EXPECT_TRUE(m_log.contains(u"Error: no password set for account"_s));
}

TEST_F(TwitterAccountTest, KeepsEverySearchOnceAndHearsOfIt)
{
    m_log.clear();
    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(m_account.get());
    const TwitterSearchPtr tea = makeSearch(u"tea"_s);
    for (const TwitterSearchPtr& one : { tea, tea, makeSearch(u"TEA"_s) })
        m_account->addSavedSearch(one);
    EXPECT_EQ(m_account->savedSearches(), QList<TwitterSearchPtr> { tea });
    const QDateTime now = KRNow();
    tea->stream()->addStatuses({ status(u"1"_s, u"bob"_s, now) });
    EXPECT_EQ(updates.count, 1);
    EXPECT_FALSE(m_account->hasFreshSearches()) << "nothing was marked yet";
    tea->stream()->noteFreshStatuses();
    tea->stream()->addStatuses({ status(u"2"_s, u"bob"_s, now.addSecs(1)) });
    m_account->noteFreshSearches();
    EXPECT_TRUE(m_account->hasFreshSearches()) << "each search keeps its own mark";
    EXPECT_EQ(updates.count, 3);
    m_account->markAllAsRead();
    EXPECT_FALSE(m_account->hasFreshSearches());
    EXPECT_EQ(updates.count, 7);

    m_account->removeSavedSearch(makeSearch(u"coffee"_s));
    EXPECT_EQ(m_account->savedSearches().size(), 1);
    m_account->removeSavedSearch(makeSearch(u"tEa"_s));
    EXPECT_FALSE(m_account->containsSavedSearch(*tea));
    tea->stream()->addStatuses({});
    EXPECT_EQ(updates.count, 7) << "no longer observed";
    EXPECT_TRUE(m_log.lines().isEmpty());
    const TwitterSearchPtr bare = makeSearch({});
    m_account->addSavedSearch(bare);
    EXPECT_TRUE(m_account->containsSavedSearch(*bare));
    m_account->removeSavedSearch(bare);
    EXPECT_EQ(m_log.lines(),
        (QStringList { u"Error: saving search with no stream attached"_s,
            u"Error: remove saved search with no stream attached"_s }));
}

TEST_F(TwitterAccountTest, MarksEverythingAsReadAndKnowsWhoIsMeant)
{
    const QDateTime later = KRNow().addSecs(60);
    for (const Kind& kind : kinds)
        kind.add(*m_account, u"1"_s, u"bob"_s, later);
    m_account->markAllAsRead();
    for (const Kind& kind : kinds)
        EXPECT_FALSE(((*m_account).*kind.hasFresh)()) << kind.name;
    const TwitterStatusPtr post = status(u"2"_s, u"bob"_s, later);
    for (const auto& [text, isMeant] : { std::pair(u"hi @aLICE!"_s, true),
             std::pair(u"hi @alicette"_s, true),
             std::pair(u"alice"_s, false) }) {
        post->setText(text);
        EXPECT_EQ(m_account->isMentionedInStatus(*post), isMeant);
    }
    post->setFromUser(nullptr);
    EXPECT_FALSE(m_account->isAuthorOfStatus(*post));
}
