#include "KRTestAccount.h"

#include <future>

namespace {

class TwitterTest : public KRTestAccount {
protected:
    static QString namesOf(const Twitter& twitter)
    {
        QStringList names;
        for (const TwitterAccountPtr& account : twitter.accounts())
            names.append(account->username());
        return names.join(u' ');
    }
    /// The accounts whose timelines are loading.
    QString loading() const
    {
        QString loading;
        for (const TwitterAccountPtr& account : m_twitter->accounts())
            loading += account->timelineStream()->isLoadingNewer() ? account->username() : QString();
        return loading;
    }
    /// No answer comes before `release`.
    void holdAnswers()
    {
        answerLists([gate = m_gate](const auto&) {
            gate.wait();
            return KRTestSite::Answer { 200, "<nothing/>" };
        });
    }
    void release() { m_release.set_value(); }

private:
    std::promise<void> m_release;
    std::shared_future<void> m_gate = m_release.get_future().share();
};

} // namespace

TEST_F(TwitterTest, BeatsAfterThreeSecondsAndThenEverySixMinutes)
{
    answerWithNothing();
    addAccounts({ u"a"_s });
    ASSERT_TRUE(KRWaitUntil([&] { return loading().isEmpty() && m_site.requests().size() == 4; }));
    holdAnswers();
    KRManualClock clock;
    QList<qint64> beats;
    const auto start = clock.monotonicNow();
    const KRObservation observation = KRTestObserve<TwitterHeartbeatNotification>(
        [&](const auto&) { beats.append((clock.monotonicNow() - start) / 1s); });
    m_twitter = makeTwitter(true);
    EXPECT_FALSE(m_twitter->hasFreshAnythingApplicableToDockBadge());
    clock.advance(3s);
    EXPECT_EQ(loading(), u"a"_s) << "a heartbeat refreshes";
    clock.advance(997s);
    EXPECT_EQ(beats, (QList<qint64> { 3, 360, 720 }));
    release();
}

TEST_F(TwitterTest, RefreshesAccountsTwoSecondsApartAndNoneThatWasRemoved)
{
    answerWithNothing();
    addAccounts({ u"a"_s, u"b"_s, u"c"_s, u"d"_s });
    ASSERT_TRUE(KRWaitUntil([&] { return loading().isEmpty() && m_site.requests().size() == 16; }));
    holdAnswers();
    {
        KRManualClock clock;
        m_twitter->refresh();
        const TwitterAccountPtr kept = m_twitter->accounts()[2];
        clock.advance(0s);
        EXPECT_EQ(loading(), u"a"_s);
        clock.advance(1999ms);
        EXPECT_EQ(loading(), u"a"_s);
        clock.advance(1ms);
        EXPECT_EQ(loading(), u"ab"_s);
        m_twitter->removeAccount(kept);
        clock.advance(2s);
        EXPECT_FALSE(kept->timelineStream()->isLoadingNewer());
        clock.advance(2s);
        EXPECT_EQ(loading(), u"abd"_s);
    }
    release();
}

TEST_F(TwitterTest, KeepsTheAccountListInItsOrder)
{
    const KRTestCounter<TwitterAccountsDidChangeNotification> changes;
    struct Move {
        qsizetype from, to;
        const char16_t* result = u"a b c";
    };
    for (const Move& move : { Move { 0, 2, u"b a c" },
             { 2, 0, u"c a b" },
             { 0, 3, u"b c a" },
             { 0, 1 },
             { 1, 1 },
             { -1, 2 },
             { 3, 0 },
             { 0, 4 },
             { 1, -1 } }) {
        const QString result = QString::fromUtf16(move.result);
        m_twitter = makeTwitter();
        while (!m_twitter->accounts().isEmpty())
            m_twitter->removeAccount(m_twitter->accounts().first());
        m_hosts = {};
        m_context.hosts = {};
        addAccounts({ u"a"_s, u"b"_s, u"c"_s });
        changes.count = 0;
        m_twitter->reorderAccountFromIndex(move.from, move.to);
        EXPECT_EQ(namesOf(*m_twitter), result);
        EXPECT_EQ(changes.count, result == u"a b c"_s ? 0 : 1);
        EXPECT_EQ(namesOf(*makeTwitter()), result) << "what is shown is saved";
        EXPECT_TRUE(m_twitter->containsAccount(makeAccount(u"B"_s)));
        EXPECT_FALSE(m_twitter->containsAccount(makeAccount(u"d"_s)));
    }
}

TEST_F(TwitterTest, SavesSoonWhatChangesInsideAnAccount)
{
    KRManualClock clock;
    m_hosts = {};
    m_context.hosts = {};
    addAccounts({ u"a"_s });
    ASSERT_TRUE(KRTestSettle());
    const KRTestCounter<TwitterAccountsDidChangeNotification> lists;
    const TwitterAccountPtr account = m_twitter->accounts().first();
    const auto saved = [&] { return makeTwitter()->accounts().first(); };
    account->timelineStream()->addStatuses({ status(u"1"_s, u"bob"_s, clock.now().addSecs(9)) });
    const TwitterSearchPtr tea = makeSearch(u"tea"_s);
    const std::pair<std::function<void()>, std::function<bool(TwitterAccount&)>> changes[] = {
        { [&] { account->setNotificationOptions(0x8); },
            [](TwitterAccount& one) { return one.notificationOptions() == 0x9; } },
        { [&] { account->addSavedSearch(tea); },
            [](TwitterAccount& one) { return one.savedSearches().size() == 1; } },
        { [&] { account->removeSavedSearch(tea); },
            [](TwitterAccount& one) { return one.savedSearches().isEmpty(); } },
        { [&] { account->noteFreshTweets(); },
            [&](TwitterAccount& one) {
                one.timelineStream()->addStatuses({ status(u"2"_s, u"bob"_s, clock.now().addSecs(1)) });
                return !one.hasFreshTweets();
            } },
    };
    for (const auto& [change, isSaved] : changes) {
        change();
        EXPECT_FALSE(isSaved(*saved()));
        clock.advance(Twitter::saveDelay);
        EXPECT_TRUE(isSaved(*saved()));
    }
    // What changes nothing, or an account in no list, is not saved; changes that come together are saved at
    // once.
    account->noteFreshTweets();
    makeAccount(u"x"_s)->setNotificationOptions(1);
    EXPECT_GT(KRRunLoop::main().timeUntilNextWork().value_or(1h), Twitter::saveDelay);
    account->setNotificationOptions(0x2);
    clock.advance(Twitter::saveDelay / 2);
    account->setNotificationOptions(0x4);
    clock.advance(Twitter::saveDelay / 2);
    EXPECT_EQ(saved()->notificationOptions(), 0x5U);
    account->setNotificationOptions(0x8);
    EXPECT_EQ(lists.count, 0);
    m_twitter->shutdown();
    EXPECT_EQ(saved()->notificationOptions(), 0x9U);
    EXPECT_EQ(lists.count, 1);
}

// Each observer removes the account as soon as it hears, with requests and delayed calls out, and nobody else
// keeps the account. Sanitizers see whether anything touches it afterwards.
TEST_F(TwitterTest, AnyObserverMayRemoveTheAccount)
{
    answerWithNothing();
    const QByteArray post = KRTestSite::statuses({ KRTestSite::status(5, "bob", "hi @alice") });
    for (const char* path : { "/statuses/home_timeline.xml", "/statuses/replies.xml" })
        m_site.answer(path, post);
    for (const char* path : { "/direct_messages.xml", "/direct_messages/sent.xml" })
        m_site.answer(path, "<list>" + KRTestSite::message(5, "bob", "Alice") + "</list>");
    m_site.answer("/users/show.xml", KRTestSite::user(3, "alice"));
    m_site.answer("/statuses/update.xml", KRTestSite::status(9, "Alice", "posted"));
    const auto remove = [this](const auto&) {
        if (!m_twitter->accounts().isEmpty())
            m_twitter->removeAccount(m_twitter->accounts().first());
    };
    using Observe = std::function<KRObservation()>;
    const Observe observers[] = {
        [&] { return KRTestObserve<TwitterAccountDidUpdateNotification>(remove); },
        [&] { return KRTestObserve<TwitterAccountGrowlForNewTimelineStatuses>(remove); },
        [&] { return KRTestObserve<TwitterAccountGrowlForNewMentionStatuses>(remove); },
        [&] { return KRTestObserve<TwitterAccountGrowlForNewMessages>(remove); },
        [&] { return KRTestObserve<TwitterAccountArchiveDidChangeNotification>(remove); },
        [&] { return KRTestObserve<TwitterAccountsDidChangeNotification>(remove); },
        [&] { return KRTestObserve<TwitterStreamDidUpdateNotification>(remove); },
        [&] { return KRTestObserve<TwitterDirectMessageConversationDidUpdateNotification>(remove); },
        [&] { return KRTestObserve<TwitterDirectMessageConversationManagerDidUpdateNotification>(remove); },
        [&] { return KRTestObserve<TwitterUserDidUpdateNotification>(remove); },
        [&] { return KRTestObserve<TwitterHeartbeatNotification>(remove); },
    };
    for (const Observe& observe : observers) {
        SCOPED_TRACE(&observe - observers);
        KRManualClock clock;
        m_twitter = makeTwitter();
        m_context = m_twitter->accountContext();
        m_account = makeAccount();
        m_account->setNotificationOptions(~0U);
        const std::weak_ptr<TwitterAccount> watched = m_account;
        const auto receiver = std::make_shared<KRTestReceiver<TwitterStatusPtr>>();
        // A stream lives until its last answer has come.
        std::vector<std::weak_ptr<void>> streams;
        const KRObservation observation = observe();
        m_twitter->addAccount(std::exchange(m_account, nullptr));
        if (const TwitterAccountPtr account = watched.lock()) {
            const auto& messages = account->directMessagesManager();
            streams = { account->timelineStream(), account->repliesStream(), messages->sentStream() };
            streams.push_back(messages->receivedStream());
            account->addSavedSearch(makeSearch(u"tea"_s));
            account->user();
            account->update(u"x"_s, {}, Callback(receiver, &KRTestReceiver<TwitterStatusPtr>::took));
        } else {
            receiver->count = 1;
        }
        m_twitter->heartbeat();
        const auto isOver = [&] {
            // A merge tells of people.
            for (const TwitterUserPtr& user : m_twitter->cachedUsers()) {
                const TwitterUserPtr newer = KRTestUser(user->userID(), user->username());
                newer->setLastUpdated(user->lastUpdated().addSecs(1));
                m_twitter->definitiveUser(newer);
            }
            if (const TwitterAccountPtr account = watched.lock(); account && receiver->count > 0)
                account->markAllAsRead();
            return watched.expired() && receiver->count > 0
                && std::all_of(streams.begin(), streams.end(), [](const auto& one) { return one.expired(); });
        };
        ASSERT_TRUE(KRWaitUntil(isOver));
        const auto sent = [this] {
            const QList<KRTestServer::Request> requests = m_site.requests();
            return std::count_if(requests.begin(), requests.end(), [](const auto& one) {
                return !one.value("authorization").isEmpty() || one.target.startsWith("/search");
            });
        };
        const auto before = sent();
        clock.advance(20s);
        ASSERT_TRUE(KRTestSettle());
        clock.advance(20s);
        ASSERT_TRUE(KRTestSettle());
        EXPECT_EQ(sent(), before);
    }
}

TEST_F(TwitterTest, AnnouncesANewAccountBeforeItIsRefreshed)
{
    answerWithNothing();
    bool wasLoading = true;
    const KRObservation observation = KRTestObserve<TwitterAccountsDidChangeNotification>(
        [&](const auto&) { wasLoading = m_account->timelineStream()->isLoadingNewer(); });
    m_twitter->addAccount(m_account);
    EXPECT_FALSE(wasLoading);
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 4; }));
}

TEST_F(TwitterTest, AsksItsAccountsForNews)
{
    const QDateTime later = KRNow().addSecs(60);
    m_hosts = {};
    m_context.hosts = {};
    addAccounts({ u"a"_s, u"b"_s });
    const TwitterAccountPtr second = m_twitter->accounts()[1];
    second->timelineStream()->addStatuses({ status(u"1"_s, u"bob"_s, later) });
    EXPECT_TRUE(m_twitter->hasFreshAnythingApplicableToStatusItem());
    EXPECT_FALSE(m_twitter->hasFreshAnythingApplicableToDockBadge());
    second->setNotificationOptions(TwitterAccountTimelineDockBadge);
    EXPECT_FALSE(m_twitter->hasFreshAnythingApplicableToStatusItem());
    EXPECT_TRUE(m_twitter->hasFreshAnythingApplicableToDockBadge());
    m_twitter->markAllAsRead();
    EXPECT_FALSE(m_twitter->hasFreshAnythingApplicableToDockBadge());
}

TEST_F(TwitterTest, TrendsLoadOnFirstDemandAndOnceAtATime)
{
    const KRTestCounter<TwitterTrendsDidUpdateNotification> updates(m_twitter.get());
    m_site.answer("/trends.json", "<div>no</div>", 501);
    EXPECT_TRUE(m_twitter->trends().isEmpty());
    EXPECT_TRUE(m_twitter->trends().isEmpty());
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 1; }));
    m_site.answer("/trends.json", R"({"trends":[{"name":"#tea"},{"name":"b"}]})");
    // The failure frees the way for the next request.
    ASSERT_TRUE(KRWaitUntil([&] { return !m_twitter->trends().isEmpty(); }));
    EXPECT_EQ(m_twitter->trends(), (QStringList { u"#tea"_s, u"b"_s }));
    EXPECT_EQ(updates.count, 1);
    EXPECT_EQ(m_site.requests().size(), 2);

    m_site.answer("/trends.json", "[]");
    m_twitter->updateTrends();
    m_twitter->updateTrends();
    ASSERT_TRUE(KRWaitUntil([&] { return updates.count == 2; }));
    EXPECT_TRUE(m_twitter->trends().isEmpty());
    EXPECT_EQ(m_site.requests().size(), 3) << "an empty list is a list";

    m_twitter->updateTrends();
    m_twitter.reset();
    EXPECT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 4; }));
    ASSERT_TRUE(KRTestSettle());
    EXPECT_EQ(updates.count, 2);
}

TEST_F(TwitterTest, AMissingKeyringIsNotToldAccountByAccount)
{
    KRTestLog log;
    answerWithNothing();
    m_twitter->addAccount(TwitterAccount::accountWithUsername(u"bob"_s, u"x"_s, m_twitter->accountContext()));
    m_twitter->shutdown();
    EXPECT_TRUE(log.lines().filter(u"Error"_s).isEmpty()) << log.lines().join(u'\n').toStdString();
}

TEST_F(TwitterTest, AccountsOfSeveralSitesKeepApart)
{
    answerWithNothing();
    TwitterSite other;
    other.hosts.setValueForKey(u"Other.example/api/"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    other.name = u"The other one"_s;
    other.textLimit = 0;
    const TwitterAccountContext there = m_twitter->accountContextForSite(other);
    EXPECT_NE(there.tables, m_twitter->accountContext().tables)
        << "post 17 of one is not post 17 of the other";
    EXPECT_EQ(m_twitter->accountContextForSite(other).tables, there.tables);
    const TwitterAccountPtr here = makeAccount(u"alice"_s);
    const TwitterAccountPtr elsewhere = TwitterAccount::accountWithUsername(u"ALICE"_s, u"x"_s, there);
    EXPECT_FALSE(here->isEqual(*elsewhere));
    EXPECT_EQ(here->qualifiedName(), u"alice"_s);
    EXPECT_EQ(elsewhere->qualifiedName(), u"ALICE@other.example"_s);
    EXPECT_TRUE(elsewhere->isNamed(u"alice@Other.example"_s));
    EXPECT_FALSE(here->isNamed(u"alice@other.example"_s));
    EXPECT_EQ(here->longestPost(), 140);
    EXPECT_EQ(elsewhere->longestPost(), 0);
    m_twitter->addAccount(here);
    m_twitter->addAccount(elsewhere);
    const QStringList servers = m_twitter->servers();
    EXPECT_EQ(servers, QStringList({ m_site.host(), u"other.example"_s }));

    const auto again = makeTwitter();
    ASSERT_EQ(again->accounts().size(), 2);
    EXPECT_EQ(again->servers(), servers);
    const TwitterAccountPtr restored = again->accounts()[1];
    EXPECT_TRUE(restored->isEqual(*elsewhere));
    EXPECT_EQ(restored->qualifiedName(), elsewhere->qualifiedName());
    EXPECT_EQ(restored->longestPost(), 0);
    EXPECT_EQ(restored->context().site->name, u"The other one"_s);
    again->removeAccount(restored);
    EXPECT_TRUE(again->accounts()[0]->isEqual(*here)) << "only the one of that site has gone";

    // Hosts named at the start count for everybody.
    m_twitter->shutdown();
    Twitter forAll(TwitterEnvironment { &m_defaults, m_hosts, false, true });
    ASSERT_EQ(forAll.accounts().size(), 2);
    EXPECT_EQ(forAll.accounts()[1]->context().hosts.server(), m_site.host());
    forAll.shutdown();
    const auto next = makeTwitter();
    EXPECT_EQ(next->servers(), servers) << "only for as long as they are named";
    EXPECT_EQ(next->accounts()[1]->context().site->name, u"The other one"_s);
}

TEST_F(TwitterTest, ATrustedCertificateIsKeptWithTheAccountsOfItsServer)
{
    answerWithNothing();
    const QString server = u"other.example:443"_s;
    const KRServerCertificate first { server, u"AA"_s };
    const KRServerCertificate second { server, u"BB"_s };
    const auto trusted = [&server] { return KRTrustedCertificates::fingerprintForServer(server); };
    TwitterSite site;
    site.hosts.setValueForKey(u"Other.example/api"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    site.textLimit = 7;
    const auto signIn = [&](const QString& name, const KRServerCertificate& certificate) {
        site.certificates = { certificate };
        m_twitter->addAccount(
            TwitterAccount::accountWithUsername(name, u"x"_s, m_twitter->accountContextForSite(site)));
    };
    m_twitter->addAccount(makeAccount(u"alice"_s));
    KRTrustedCertificates::trust(first);
    m_twitter->restoreTrustInServer(server);
    EXPECT_EQ(trusted(), QString()) << "no account came of it";
    signIn(u"bob"_s, first);
    EXPECT_EQ(trusted(), u"AA"_s);

    // Known again before anything is asked, also where other hosts count and in the runs after that.
    for (const bool hostsAreForAll : { false, true, false }) {
        KRTrustedCertificates::stopTrusting(server);
        const auto again
            = std::make_shared<Twitter>(TwitterEnvironment { &m_defaults, m_hosts, false, hostsAreForAll });
        EXPECT_EQ(trusted(), u"AA"_s);
        EXPECT_EQ(again->accounts()[1]->certificates(), QList { first });
        EXPECT_EQ(again->accounts()[1]->context().hosts.server(),
            hostsAreForAll ? m_site.host() : u"other.example"_s);
        EXPECT_EQ(again->accounts()[1]->longestPost(), hostsAreForAll ? 140 : 7);
        again->shutdown();
    }

    signIn(u"carol"_s, second);
    EXPECT_EQ(trusted(), u"BB"_s);
    const QList<TwitterAccountPtr> accounts = m_twitter->accounts();
    EXPECT_EQ(accounts[1]->certificates(), QList { second }) << "a server has one";
    EXPECT_TRUE(accounts[0]->certificates().isEmpty());
    m_twitter->removeAccount(accounts[1]);
    EXPECT_EQ(trusted(), u"BB"_s) << "carol is still there";
    m_twitter->stopTrustingCertificateOfServer(server);
    EXPECT_EQ(trusted(), QString());
    EXPECT_TRUE(accounts[2]->certificates().isEmpty());
    m_twitter->trustCertificate(first);
    EXPECT_EQ(accounts[2]->certificates(), QList { first });
    m_twitter->removeAccount(accounts[2]);
    EXPECT_EQ(trusted(), QString());
}

TEST(TwitterSites, TheFirstSiteBecomesTheProgramsOwn)
{
    // Whoever names no defaults has the program's own.
    const KRUserDefaults& defaults = KRUserDefaults::standardUserDefaults();
    const auto twitter = std::make_shared<Twitter>(TwitterEnvironment { nullptr, std::nullopt, false });
    EXPECT_TRUE(twitter->servers().isEmpty());
    TwitterSite site;
    site.hosts.setValueForKey(u"one.example/api"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    site.textLimit = 500;
    const TwitterAccountContext own = twitter->accountContextForSite(site);
    const TwitterAccountPtr account = TwitterAccount::accountWithUsername(u"bob"_s, u"x"_s, own);
    EXPECT_EQ(account->qualifiedName(), u"bob"_s) << "with one site a name is enough";
    EXPECT_EQ(account->longestPost(), 500);
    EXPECT_EQ(TwitterServiceHosts::hostsWithDefaults(defaults).value().RESTHost(), u"one.example/api"_s);
    site.hosts.setValueForKey(u"two.example/api"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    EXPECT_TRUE(twitter->accountContextForSite(site).isOtherSite);
    EXPECT_EQ(twitter->servers(), QStringList(u"one.example"_s));
}
