#include "KRTestStreamAccount.h"
#include "model/streams/TwitterDirectMessagesConversationManager.h"

#include <future>

namespace {

using Manager = TwitterDirectMessagesConversationManager;

// "bob>me"; later messages have higher IDs.
TwitterDirectMessagePtr message(int id, const QString& sender, const QString& recipient)
{
    const auto person = [](const QString& name) { return KRTestUser(u"id of "_s + name, name); };
    const QDateTime date = QDate(2026, 11, 1).startOfDay(Qt::UTC).addSecs(id * 60LL);
    return KRTestMessage(QString::number(id), person(sender), person(recipient), date);
}

QByteArray messages(int first, int last, const QByteArray& sender, const QByteArray& recipient)
{
    QByteArray elements;
    for (int id = last; id >= first; --id)
        elements += KRTestSite::message(id, sender, recipient);
    return "<direct-messages type=\"array\">" + elements + "</direct-messages>";
}

QString idsOf(const TwitterDirectMessageList& messages)
{
    QStringList ids;
    for (const TwitterDirectMessagePtr& one : messages)
        ids.append(one->messageID());
    return ids.join(u' ');
}

// "bob: 3 1, carol: 2"
QString summaryOf(const Manager& manager)
{
    QStringList lines;
    for (const TwitterDirectMessageConversationPtr& conversation : manager.conversations())
        lines.append(conversation->correspondent()->username() + u": "_s + idsOf(conversation->messages()));
    return lines.join(u", ");
}

class DirectMessages : public KRTestStreams {
protected:
    std::shared_ptr<Manager> m_manager = KRMakeMainThreadObject<Manager>(m_account->tables(), m_account);
};

} // namespace

TEST_F(DirectMessages, BothListsFoldIntoConversations)
{
    m_site.answer("/direct_messages.xml", messages(1, 2, "bob", "me"));
    m_site.answer("/direct_messages/sent.xml", messages(3, 3, "me", "bob"));
    m_manager->refresh();
    ASSERT_TRUE(KRWaitUntil([&] { return summaryOf(*m_manager) == u"bob: 3 2 1"_s; }));
    EXPECT_EQ(m_account->tables()->cachedDirectMessageWithID(u"3"_s),
        m_manager->conversations().first()->mostRecentMessage());
    EXPECT_EQ(m_manager->newestMessageDate().time(), QTime(0, 3));
    EXPECT_EQ(m_manager->newestMessageDateNotFromMe().time(), QTime(0, 2)) << "one's own is passed over";

    m_site.answer("/direct_messages.xml", messages(4, 4, "carol", "me"));
    m_manager->refresh();
    ASSERT_TRUE(KRWaitUntil([&] { return summaryOf(*m_manager) == u"carol: 4, bob: 3 2 1"_s; }));
    ASSERT_TRUE(KRWaitUntil([&] { return m_site.targets().size() == 4; }));
    QList<QByteArray> targets = m_site.targets();
    std::sort(targets.begin(), targets.end());
    EXPECT_EQ(targets.join(' '),
        "/direct_messages.xml? /direct_messages.xml?since_id=2 /direct_messages/sent.xml? "
        "/direct_messages/sent.xml?since_id=3");
}

TEST_F(DirectMessages, OlderPagesAreAskedForEvenAtTheEnd)
{
    const auto stream = m_manager->receivedStream();
    const auto loadOlder = [&](const QByteArray& body, int status) {
        std::promise<void> askedTwice;
        m_site.answer("/direct_messages.xml",
            [status, body, gate = askedTwice.get_future().share()](const auto&) {
                gate.wait();
                return KRTestSite::Answer { status, body };
            });
        stream->loadOlder();
        stream->loadOlder();
        askedTwice.set_value();
        return KRWaitUntil([&] { return !stream->isLoadingOlder(); });
    };
    ASSERT_TRUE(loadOlder(messages(21, 39, "bob", "me"), 200));
    EXPECT_FALSE(stream->isAtEnd()) << "19 messages";
    ASSERT_TRUE(loadOlder(messages(3, 20, "bob", "me"), 200));
    EXPECT_TRUE(stream->isAtEnd()) << "18 messages";
    ASSERT_TRUE(loadOlder(messages(1, 3, "bob", "me"), 200));
    ASSERT_TRUE(KRWaitUntil([&] { return stream->messages().size() == 39; }));
    EXPECT_EQ(stream->newestMessageID(), u"39"_s);
    EXPECT_EQ(stream->oldestMessageID(), u"1"_s);
    EXPECT_EQ(m_site.targets().join(' ').replace("/direct_messages.xml", ""), "?page=0 ?page=1 ?page=2");
    m_site.answer("/direct_messages/sent.xml", messages(40, 40, "me", "bob"));
    m_manager->loadOlder();
    EXPECT_TRUE(KRWaitUntil([&] { return m_manager->sentStream()->messages().size() == 1; }));
    EXPECT_TRUE(KRWaitUntil([&] { return m_site.targets().contains("/direct_messages.xml?page=3"); }));
}

TEST_F(DirectMessages, AFailedLoadIsReportedAndChangesNothing)
{
    KRTestLog log;
    const KRTestCounter<TwitterStreamErrorNotification> errors(m_manager->sentStream().get());
    EXPECT_FALSE(
        m_manager->newestMessageDate().isValid() || m_manager->newestMessageDateNotFromMe().isValid());
    m_manager->sentStream()->addMessages({ message(1, u"me"_s, u"bob"_s) });
    EXPECT_TRUE(m_manager->newestMessageDate().isValid());
    EXPECT_EQ(m_manager->newestMessageNotFromMe(), nullptr);
    m_manager->addMessages({ KRTestMessage(u"2"_s, nullptr, nullptr) }, Manager::FromMe::No);
    m_site.answer("/direct_messages/sent.xml", "", 503);
    m_manager->sentStream()->loadNewer();
    ASSERT_TRUE(KRWaitUntil([&] { return errors.count == 1; }));
    EXPECT_FALSE(m_manager->sentStream()->isAtEnd());
    m_manager->sentStream()->loadOlder();
    ASSERT_TRUE(KRWaitUntil([&] { return errors.count == 2; }));
    EXPECT_TRUE(m_manager->sentStream()->isAtEnd());
    EXPECT_TRUE(log.contains(u"messages response error Service unavailable"_s));
    EXPECT_EQ(summaryOf(*m_manager), u"bob: 1"_s);

    m_account.reset();
    m_manager->sentStream()->loadNewer();
    EXPECT_FALSE(m_manager->sentStream()->isLoadingNewer()) << "without an account a load ends at once";
    EXPECT_EQ(errors.count, 3);
}

TEST_F(DirectMessages, FoldingTheSameListAgainOnlyTellsTheManagersObservers)
{
    QStringList updates;
    const KRObservation conversations = KRTestObserve<TwitterDirectMessageConversationDidUpdateNotification>(
        [&](const auto& one) { updates.append(one.object->correspondent()->username()); });
    const KRObservation managers
        = KRTestObserve<TwitterDirectMessageConversationManagerDidUpdateNotification>(
            [&](const auto&) { updates.append(u"*"_s); });
    const TwitterDirectMessageList received { message(5, u"carol"_s, u"me"_s),
        message(1, u"bob"_s, u"me"_s) };
    const TwitterDirectMessageList sent { message(7, u"me"_s, u"zoe"_s), message(3, u"me"_s, u"bob"_s) };
    m_manager->addMessages(received, Manager::FromMe::No);
    m_manager->addMessages(sent, Manager::FromMe::Yes);
    EXPECT_EQ(summaryOf(*m_manager), u"zoe: 7, carol: 5, bob: 3 1"_s);
    EXPECT_EQ(updates.join(u' '), u"carol bob * bob zoe *"_s);
    updates.clear();
    m_manager->addMessages(received, Manager::FromMe::No);
    m_manager->addMessages({}, Manager::FromMe::Yes);
    EXPECT_EQ(updates.join(u' '), u"* *"_s);
    EXPECT_EQ(m_manager->newestMessageNotFromMe()->messageID(), u"5"_s);
    EXPECT_EQ(m_manager->conversationWith(*KRTestUser(u"id of bob"_s, {}))->messages().size(), 2);
    EXPECT_EQ(m_manager->conversationWith(*KRTestUser({}, u"Bob"_s)), nullptr);

    // Of one date the conversation with the higher ID comes first, one without messages last.
    const auto conversation = [](const TwitterDirectMessageList& messages) {
        auto made = std::make_unique<TwitterDirectMessageConversation>(nullptr);
        made->setMessages(messages);
        for (const TwitterDirectMessagePtr& one : messages)
            made->addMessage(one);
        return made;
    };
    const QDateTime date = received.first()->date();
    const auto ninth = conversation({ KRTestMessage(u"9"_s, {}, {}, date) });
    const auto tenth = conversation({ KRTestMessage(u"10"_s, {}, {}, date) });
    const auto none = conversation({});
    EXPECT_EQ(ninth->messages().size(), 1) << "what is there already is not added";
    EXPECT_TRUE(tenth->compare(*ninth) < 0 && ninth->compare(*tenth) > 0);
    EXPECT_TRUE(ninth->compare(*none) < 0 && none->compare(*ninth) > 0 && none->compare(*none) == 0);
}

// The answer of a plain search: the first conversation whose correspondent is equal by ID or by exact name.
TEST_F(DirectMessages, TheIndexFindsWhatASearchThroughTheListFinds)
{
    QList<std::pair<TwitterUserPtr, QStringList>> expected;
    unsigned random = 7;
    const auto next
        = [&random](unsigned limit) { return (random = random * 1664525 + 1013904223) / 65536 % limit; };
    TwitterDirectMessageList messages;
    for (int id = 1; id <= 400; ++id) {
        // Few IDs and names, in all combinations and some of them missing, so that they cross each other.
        const QString userID = next(4) ? QString::number(next(12)) : QString();
        const QString name = userID.isNull() || next(4) ? u"name%1"_s.arg(next(12)) : QString();
        const TwitterUserPtr user = KRTestUser(userID, name);
        messages.append(message(id, u"x"_s, u"me"_s));
        messages.last()->setSender(user);
        const auto found = std::find_if(expected.begin(), expected.end(), [&](const auto& one) {
            return one.first->isEqual(*user);
        });
        if (found == expected.end())
            expected.append({ user, { QString::number(id) } });
        else
            found->second.prepend(QString::number(id));
    }
    m_manager->addMessages(messages, Manager::FromMe::No);
    ASSERT_EQ(m_manager->conversations().size(), expected.size());
    for (const TwitterDirectMessageConversationPtr& conversation : m_manager->conversations()) {
        const auto found = std::find_if(expected.begin(), expected.end(), [&](const auto& one) {
            return one.first == conversation->correspondent();
        });
        ASSERT_NE(found, expected.end());
        EXPECT_EQ(idsOf(conversation->messages()), found->second.join(u' '));
    }
}
