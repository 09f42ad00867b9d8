#include "KRTestAccount.h"

namespace {

class AccountRequests : public KRTestAccount {
protected:
    /// The targets and bodies since the last call.
    std::string sent()
    {
        QByteArrayList lines;
        const QList<KRTestServer::Request> requests = m_site.requests();
        for (; m_seen < requests.size(); ++m_seen) {
            const KRTestServer::Request& one = requests[m_seen];
            const bool isSigned = one.value("authorization") == "Basic " + QByteArray("Alice:pw").toBase64();
            lines += (isSigned ? "" : "unsigned ") + one.target + (one.body.isEmpty() ? "" : " ") + one.body;
        }
        return lines.join('\n').toStdString();
    }

    qsizetype m_seen = 0;
};

} // namespace

TEST_F(AccountRequests, NamePeopleByIDOrElseByName)
{
    for (const char* path :
        { "/friendships/create.xml", "/friendships/destroy/2.xml", "/friendships/destroy/bob.xml" })
        m_site.answer(path, KRTestSite::user(2, "bob"));
    m_site.answer("/friendships/exists.xml", "<friends>true</friends>");
    const TwitterUserPtr bob = KRTestUser(u"2"_s, u"bob"_s);
    const TwitterUserPtr carol = KRTestUser(u"3"_s, u"carol"_s);
    const auto expectSent
        = [&](const std::string& created, const std::string& destroyed, const std::string& asked) {
              KRTestReceive<TwitterUserPtr>([&](const auto& callback) { m_account->follow(*bob, callback); });
              KRTestReceive<TwitterUserPtr>(
                  [&](const auto& callback) { m_account->stopFollowing(*bob, callback); });
              const auto check = KRTestReceive<bool>(
                  [&](const auto& callback) { m_account->checkIfUserFollows(*bob, *carol, callback); });
              EXPECT_TRUE(check->result->value());
              EXPECT_TRUE(check->wasOnMainThread);
              EXPECT_EQ(sent(),
                  "/friendships/create.xml?" + created + "\n/friendships/destroy/" + destroyed
                      + ".xml\n/friendships/exists.xml?" + asked);
          };
    expectSent("user_id=2", "2", "user_a=2&user_b=3");
    carol->setUserID({});
    expectSent("user_id=2", "2", "user_a=bob&user_b=carol");
    bob->setUserID({});
    carol->setUserID(u"3"_s);
    expectSent("screen_name=bob", "bob", "user_a=bob&user_b=carol");
}

TEST_F(AccountRequests, WhatIsSentLoadsWhatItChanges)
{
    const QByteArray message = KRTestSite::message(9, "Alice", "bob")
                                   .replace("<direct_message>", "")
                                   .replace("</direct_message>", "");
    answerWithNothing();
    m_site.answer("/statuses/update.xml", KRTestSite::status(9, "Alice", "posted"));
    m_site.answer("/statuses/home_timeline.xml",
        KRTestSite::statuses({ KRTestSite::status(9, "Alice", "posted") }));
    m_site.answer("/direct_messages/new.xml", "<direct_message>" + message + "</direct_message>");
    const TwitterUserPtr bob = KRTestUser(u"2"_s, u"bob"_s);
    const auto post = [&] {
        return KRTestReceive<TwitterStatusPtr>(
            [&](const auto& callback) { m_account->update(u"posted & <sent>"_s, u"4"_s, callback); });
    };
    const auto send = [&] {
        return KRTestReceive<TwitterDirectMessagePtr>(
            [&](const auto& callback) { m_account->sendDirectMessage(u"hi & bye"_s, *bob, callback); });
    };
    EXPECT_EQ(post()->result->value()->statusID(), u"9"_s);
    ASSERT_TRUE(KRWaitUntil([&] { return m_account->timelineStream()->newestStatusID() == u"9"; }));
    EXPECT_EQ(sent(),
        "/statuses/update.xml status=posted+%26+%3Csent%3E&in_reply_to_status_id=4&source=pelinor\n"
        "/statuses/home_timeline.xml?count=200");
    EXPECT_EQ(send()->result->value()->messageID(), u"9"_s);
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 5; })) << "the message, then both lists";
    EXPECT_EQ(sent().find("/direct_messages/new.xml user=2&text=hi+%26+bye\n"), 0U);

    m_site.answer("/statuses/update.xml", "<hash><error>duplicate</error></hash>", 400);
    m_site.answer("/direct_messages/new.xml", "<hash><error>not your friend</error></hash>", 403);
    bob->setUserID({});
    EXPECT_EQ(post()->result->error().description, u"Bad request. duplicate"_s);
    EXPECT_EQ(send()->result->error().description, u"Forbidden. not your friend"_s);
    EXPECT_EQ(sent(),
        "/statuses/update.xml status=posted+%26+%3Csent%3E&in_reply_to_status_id=4&source=pelinor\n"
        "/direct_messages/new.xml user=bob&text=hi+%26+bye")
        << "a failure loads nothing";
}

TEST_F(AccountRequests, WhatIsDeletedIsGoneFromTheStreams)
{
    const TwitterStatusPtr first = status(u"1"_s, u"Alice"_s, KRNow());
    const TwitterStatusPtr second = status(u"2"_s, u"Alice"_s, KRNow());
    m_account->timelineStream()->setStatuses({ second, first });
    m_account->repliesStream()->setStatuses({ first });
    QStringList told;
    const auto observation = KRTestObserve<TwitterAccountDidDestroyStatusNotification>(
        [&](const auto& one) { told.append(one.status->statusID()); },
        m_account.get());
    const auto destroy = [&](const TwitterStatusPtr& status, int code) {
        m_site.answer("/statuses/destroy/" + status->statusID().toUtf8() + ".xml",
            KRTestSite::status(status->statusID().toInt(), "Alice", "x"),
            code);
        const auto received = KRTestReceive<TwitterStatusPtr>(
            [&](const auto& callback) { m_account->destroyStatus(status, callback); });
        EXPECT_TRUE(received->wasOnMainThread);
        return !received->result->isError();
    };
    EXPECT_FALSE(destroy(first, 403));
    EXPECT_EQ(m_account->timelineStream()->storedStatuses().size(), 2);
    EXPECT_TRUE(destroy(first, 200));
    EXPECT_EQ(m_account->timelineStream()->storedStatuses(), TwitterStatusList { second });
    EXPECT_TRUE(m_account->repliesStream()->storedStatuses().isEmpty());
    EXPECT_TRUE(destroy(second, 404)) << "it is not there any more";
    EXPECT_EQ(told.join(u' '), u"1 2"_s);
}

TEST_F(AccountRequests, LookUpsGoWithoutCredentialsFirst)
{
    std::atomic<bool> isPublic = true;
    const auto show = [&](const QByteArray& body) {
        return [&isPublic, body](const KRTestServer::Request& request) {
            const bool mayRead = isPublic || !request.value("authorization").isEmpty();
            return mayRead ? KRTestSite::Answer { 200, body } : KRTestSite::Answer { 401, {} };
        };
    };
    m_site.answer("/users/show.xml", show(KRTestSite::user(3, "bob")));
    m_site.answer("/statuses/show/5.xml", show(KRTestSite::status(5, "bob", "x")));
    for (const bool open : { true, false }) {
        isPublic = open;
        const auto expected
            = [&](const std::string& target) { return "unsigned " + target + (open ? "" : "\n" + target); };
        const auto byName = KRTestReceive<TwitterUserPtr>(
            [&](const auto& callback) { m_account->requestUserWithUsername(u"bob"_s, callback); });
        EXPECT_EQ(sent(), expected("/users/show.xml?screen_name=bob"));
        const auto byID = KRTestReceive<TwitterUserPtr>(
            [&](const auto& callback) { m_account->requestUserWithID(u"3"_s, callback); });
        EXPECT_EQ(sent(), expected("/users/show.xml?user_id=3"));
        const auto post = KRTestReceive<TwitterStatusPtr>(
            [&](const auto& callback) { m_account->requestStatusWithID(u"5"_s, callback); });
        EXPECT_EQ(sent(), expected("/statuses/show/5.xml"));
        EXPECT_TRUE(byName->wasOnMainThread && byID->wasOnMainThread && post->wasOnMainThread);
        EXPECT_EQ(byName->result->value(), m_account->cachedUserWithID(u"3"_s));
        EXPECT_EQ(byID->result->value(), m_account->cachedUserWithUsername(u"BOB"_s));
        EXPECT_EQ(post->result->value(), m_account->cachedStatusWithID(u"5"_s));
        const QString line = u"couldn't load user unathenticated... trying authenticated"_s;
        EXPECT_EQ(m_log.lines().filter(line).size(), open ? 0 : 2);
    }
    m_site.answer("/statuses/show/8.xml", "<hash><error>gone</error></hash>", 410);
    EXPECT_EQ(KRTestReceive<TwitterStatusPtr>(
                  [&](const auto& callback) { m_account->requestStatusWithID(u"8"_s, callback); })
                  ->result->error()
                  .code,
        410);
    EXPECT_FALSE(m_log.contains(u"couldn't load user at all..."_s));

    // An account that goes meanwhile answers with what was found out without it.
    m_seen = m_site.requests().size();
    const auto gone = KRTestReceive<TwitterUserPtr>([&](const auto& callback) {
        m_account->requestUserWithUsername(u"bob"_s, callback);
        m_account = nullptr;
    });
    EXPECT_EQ(gone->result->error().code, 401);
    EXPECT_EQ(sent(), "unsigned /users/show.xml?screen_name=bob");
}

TEST_F(AccountRequests, LoadItsOwnUserOnDemandAndAgainAfterAFailure)
{
    m_site.answer("/users/show.xml", "nothing", 503);
    const KRTestCounter<TwitterAccountDidUpdateNotification> updates(m_account.get());
    EXPECT_EQ(m_account->user(), nullptr);
    EXPECT_EQ(m_account->user(), nullptr);
    ASSERT_TRUE(KRWaitUntil([&] { return m_log.contains(u"Error loading user for account Alice"_s); }));
    EXPECT_TRUE(m_log.contains(u"couldn't load user at all..."_s));
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

TEST_F(AccountRequests, MarkFavouritesAtOnceAndVerify)
{
    m_site.answer("/favorites/create/6.xml", KRTestSite::status(6, "bob", "nice"));
    m_site.answer("/account/verify_credentials.xml", KRTestSite::user(1, "alice"));
    const TwitterStatusPtr liked = status(u"6"_s, u"bob"_s, KRNow());
    EXPECT_FALSE(m_account->isFavoriteStatus(*liked));
    m_account->addStatusToFavorites(liked);
    EXPECT_TRUE(m_account->isFavoriteStatus(*liked));
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.requests().size() == 1; }));
    const TwitterStatusPtr nameless = status({}, u"bob"_s, KRNow());
    m_account->addStatusToFavorites(nameless);
    EXPECT_FALSE(m_account->isFavoriteStatus(*nameless));
    EXPECT_TRUE(KRTestReceive<bool>([&](const auto& callback) {
        m_account->verifyCredentials(callback);
    })->result->value());
    EXPECT_EQ(sent(), "/favorites/create/6.xml\n/account/verify_credentials.xml");
}

TEST_F(AccountRequests, RefreshLoadsAllAndTheSearchesOneASecondAfterThem)
{
    answerWithNothing();
    const QByteArray hi = KRTestSite::status(5, "carol", "hi @alice");
    for (const char* path : { "/statuses/home_timeline.xml", "/statuses/replies.xml" })
        m_site.answer(path, KRTestSite::statuses({ hi }));
    KRManualClock clock;
    for (const QString& query : { u"a"_s, u"b"_s, u"c"_s })
        m_account->addSavedSearch(makeSearch(query));
    const auto isLoading = [&] {
        QByteArray loading;
        for (const TwitterSearchPtr& search : m_account->savedSearches())
            loading += search->stream()->isLoadingNewer() || !search->stream()->storedStatuses().isEmpty()
                ? search->query().toUtf8()
                : "";
        return loading;
    };
    // Nothing is found before the test has looked.
    const auto hold = std::make_shared<std::mutex>();
    std::unique_lock holding(*hold);
    m_site.answer("/search.json", [hold](const auto&) {
        std::scoped_lock waiting(*hold);
        return KRTestSite::Answer { 200, "{}" };
    });
    m_account->refresh();
    clock.advance(2999ms);
    EXPECT_EQ(isLoading(), "");
    clock.advance(1ms);
    EXPECT_EQ(isLoading(), "a");
    clock.advance(999ms);
    EXPECT_EQ(isLoading(), "a");
    m_account->removeSavedSearch(m_account->savedSearches()[1]);
    clock.advance(2s);
    EXPECT_EQ(isLoading(), "ac") << "one that was removed meanwhile is passed over";
    holding.unlock();
    ASSERT_TRUE(KRWaitUntil([&] {
        return !m_account->timelineStream()->storedStatuses().isEmpty()
            && !m_account->repliesStream()->storedStatuses().isEmpty() && m_site.requests().size() == 6;
    }));
    EXPECT_EQ(m_account->timelineStream()->newestStatus(), m_account->repliesStream()->newestStatus())
        << "one status is one record";
    const std::string all = sent();
    EXPECT_NE(all.find("unsigned /search"), std::string::npos);
    EXPECT_EQ(all.find("unsigned /statuses"), std::string::npos) << "searches alone go without credentials";
}
