#include "app/lists/PelinorListFakes.h"
#include "app/messages/PelinorAnswerView.h"
#include "app/messages/PelinorConversation.h"
#include "app/messages/PelinorDirectMessageConversationViewController.h"
#include "app/messages/PelinorDirectMessageTableViewCell.h"
#include "app/messages/PelinorDirectMessagesViewController.h"
#include "app/messages/PelinorReadMarks.h"
#include "compose/ComposeFixture.h"
#include "support/KRManualClock.h"
#include "support/KRTest.h"

#include <QDir>
#include <QPlainTextEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr char newMessage[] = "/direct_messages/new.xml";
constexpr char received[] = "/direct_messages.xml";
constexpr char sent[] = "/direct_messages/sent.xml";

QByteArray messageXML(int number, const QByteArray& text, bool isMine)
{
    const QByteArray alice = "<id>1</id><screen_name>alice</screen_name><name>Alice</name>";
    const QByteArray bob = "<id>2</id><screen_name>bob</screen_name><name>Bob</name>";
    // A message a minute.
    return "<direct_message><id>" + QByteArray::number(number) + "</id><text>" + text
        + "</text><created_at>Sun Nov 22 10:" + QByteArray::number(number).rightJustified(2, '0')
        + ":00 +0000 2026</created_at><sender>" + (isMine ? alice : bob) + "</sender><recipient>"
        + (isMine ? bob : alice) + "</recipient></direct_message>";
}

QByteArray page(int from, int to)
{
    QByteArray messages;
    for (int number = to; number >= from; --number)
        messages += messageXML(number, "message " + QByteArray::number(number), false);
    return "<direct-messages>" + messages + "</direct-messages>";
}

class PelinorConversationTest : public ComposeFixture {
protected:
    PelinorConversationTest()
    {
        answer(received, KRTestServer::always(200, page(30, 49)));
        answer(sent, KRTestServer::always(200, "<direct-messages/>"));
        account->directMessagesManager()->refresh();
        EXPECT_TRUE(KRWaitUntil([&] { return conversation() && conversation()->messages().size() == 20; }));
    }

    TwitterDirectMessageConversationPtr conversation() const
    {
        return account->directMessagesManager()->conversations().value(0);
    }
    const TwitterUser& bob() const { return *conversation()->correspondent(); }
    std::shared_ptr<PelinorDraftStore> store() const
    {
        return std::make_shared<PelinorDraftStore>(directory.filePath(u"drafts"_s),
            directory.filePath(u"pictures"_s));
    }
    /// What a later run would find.
    QStringList textsOnDisk() const
    {
        QStringList texts;
        for (const PelinorDraftStore::Stored& left : store()->takeLeftDrafts())
            texts.append((left.draft.mayHaveGoneOut ? u"?"_s : QString()) + left.draft.text + u" to "_s
                + left.draft.recipientUsername);
        return texts;
    }
    std::optional<PelinorOutgoingMessage> outgoing() const
    {
        const auto messages = outbox.messages(*account, bob());
        return messages.isEmpty() ? std::nullopt : std::optional(messages.first());
    }
    bool waitForState(PelinorOutgoingMessage::State state) const
    {
        return KRWaitUntil([&] { return outgoing() && outgoing()->state == state; });
    }

    FakeSurroundings surroundings;
    PelinorScreenEnvironment environment { defaults,
        KRNotificationCenter::defaultCenter(),
        surroundings.preferences,
        surroundings.heights,
        surroundings.screens,
        surroundings.screens };
    PelinorOutbox outbox { *twitter, defaults, KRNotificationCenter::defaultCenter(), store() };
};

TEST_F(PelinorConversationTest, AMessageThatFailedStaysUntilItHasGoneOut)
{
    using State = PelinorOutgoingMessage::State;
    outbox.setAnswer(account, bob(), u"  "_s);
    outbox.sendAnswer(account, bob());
    EXPECT_FALSE(outgoing());
    answer(newMessage, KRTestServer::always(403, "<hash><error>no room</error></hash>"));
    outbox.setAnswer(account, bob(), u"hello\n\n"_s);
    EXPECT_EQ(outbox.answer(*account, bob()), u"hello\n\n"_s);
    outbox.sendAnswer(account, bob());
    EXPECT_EQ(outbox.answer(*account, bob()), QString());
    ASSERT_TRUE(waitForState(State::Failed));
    EXPECT_TRUE(outgoing()->reason.contains(u"no room"_s)) << outgoing()->reason.toStdString();
    EXPECT_EQ(textsOnDisk(), QStringList { u"hello to bob"_s });

    // An answer that was lost: only the user may send it again.
    answer(newMessage, [](const auto&, auto& connection) { connection.close(); });
    outbox.tryAgain(outgoing()->number);
    outbox.discard(outgoing()->number);
    EXPECT_EQ(outgoing()->state, State::Sending);
    ASSERT_TRUE(waitForState(State::Unknown));
    EXPECT_EQ(textsOnDisk(), QStringList { u"?hello to bob"_s });
    EXPECT_EQ(requestsTo(newMessage).size(), 2);

    // A site that does not say who wrote it: what the next refresh brings is shown.
    QByteArray anonymous = messageXML(55, "hello", true);
    anonymous.replace("<screen_name>alice</screen_name>", "");
    answer(newMessage, KRTestServer::always(200, anonymous));
    answer(sent, KRTestServer::always(200, "<messages>" + messageXML(55, "hello", true) + "</messages>"));
    outbox.tryAgain(outgoing()->number);
    ASSERT_TRUE(KRWaitUntil([&] { return !outgoing(); }));
    ASSERT_TRUE(KRWaitUntil([&] { return conversation()->mostRecentMessage()->messageID() == u"55"_s; }));
    EXPECT_TRUE(account->isAuthorOfDirectMessage(*conversation()->mostRecentMessage()));
    EXPECT_EQ(textsOnDisk(), QStringList());
}

TEST_F(PelinorConversationTest, WhatIsWrittenIsKeptAndWhatIsNotWantedGoes)
{
    {
        PelinorOutbox first { *twitter, defaults, KRNotificationCenter::defaultCenter(), store() };
        first.setAnswer(account, bob(), u"half a thou"_s);
    }
    EXPECT_EQ(textsOnDisk(), QStringList { u"half a thou to bob"_s });
    {
        PelinorOutbox second { *twitter, defaults, KRNotificationCenter::defaultCenter(), store() };
        second.setAnswer(account, bob(), u"x"_s);
        second.setAnswer(account, *makeUser(u"carol"_s), u"y"_s);
        EXPECT_EQ(second.answer(*account, bob()), u"x"_s);
        second.setAnswer(account, bob(), {});
        EXPECT_EQ(second.answer(*account, bob()), QString());
    }
    EXPECT_EQ(textsOnDisk(), (QStringList { u"half a thou to bob"_s, u"y to carol"_s }));
    answer(newMessage, KRTestServer::always(403, {}));
    outbox.setAnswer(account, bob(), u"z"_s);
    outbox.sendAnswer(account, bob());
    ASSERT_TRUE(waitForState(PelinorOutgoingMessage::State::Failed));
    outbox.discard(outgoing()->number);
    EXPECT_FALSE(outgoing());
    EXPECT_EQ(textsOnDisk().size(), 2);
}

TEST_F(PelinorConversationTest, UnreadUntilItWasLookedAt)
{
    // What was there before the program first looked is nothing new.
    EXPECT_FALSE(PelinorReadMarks(defaults, *account).isUnread(*conversation()));
    const auto fresh = std::make_shared<TwitterDirectMessage>();
    fresh->setMessageID(u"60"_s);
    fresh->setSender(conversation()->correspondent());
    fresh->setRecipient(makeUser(u"alice"_s));
    // After the account was made, and before its messages were first asked about.
    fresh->setDate(account->freshMessages().addMSecs(1));
    account->directMessagesManager()->addMessages({ fresh },
        TwitterDirectMessagesConversationManager::FromMe::No);
    EXPECT_TRUE(PelinorReadMarks(defaults, *account).isUnread(*conversation()));
    PelinorDirectMessagesViewController list(environment, *twitter, outbox);
    list.setAccount(account);
    list.tableView().setFrame({ 0, 0, 415, 300 });
    list.viewWillAppear(false);
    EXPECT_TRUE(list.tableView().cellForRow(0)->accessibleName().contains(u"new"_s));

    const auto presenter = std::make_shared<PelinorConversation>(account,
        conversation(),
        outbox,
        KRNotificationCenter::defaultCenter(),
        defaults);
    presenter->beginLooking();
    EXPECT_FALSE(PelinorReadMarks(defaults, *account).isUnread(*conversation()));
    account->noteFreshMessages();
    EXPECT_FALSE(list.tableView().cellForRow(0)->accessibleName().contains(u"new"_s));
}

TEST(PelinorConversationRows, AreGroupedByDayAndWriter)
{
    FakeSurroundings surroundings;
    const auto bob = makeUser(u"bob"_s);
    const QDateTime noon(QDate(2026, 11, 20), QTime(12, 0));
    TwitterDirectMessageList newestFirst;
    const auto add = [&](bool isMine, const QDateTime& date) {
        const auto message = std::make_shared<TwitterDirectMessage>();
        message->setMessageID(QString::number(newestFirst.size() + 1));
        message->setSender(isMine ? makeUser(u"me"_s) : bob);
        message->setDate(date);
        newestFirst.prepend(message);
    };
    add(false, noon);
    add(false, noon.addSecs(600));
    add(false, noon.addSecs(1201));
    add(true, noon.addSecs(1210));
    add(true, noon.addDays(1));
    const auto rows = PelinorConversationRows::rows(*surroundings.account,
        newestFirst,
        { { 9, u"late"_s, noon.addDays(1).addSecs(5) } },
        true);
    QStringList told;
    for (const PelinorConversationRow& row : rows)
        told.append(row.identity() + (row.isMine ? u" mine"_s : QString())
            + (row.message && !row.beginsGroup ? u" -"_s : QString())
            + (row.message && !row.endsGroup ? u" +"_s : QString()));
    EXPECT_EQ(told,
        (QStringList { u"older"_s,
            u"day 2026-11-20"_s,
            u"message 1 +"_s,
            u"message 2 -"_s,
            u"message 3"_s,
            u"message 4 mine"_s,
            u"day 2026-11-21"_s,
            u"message 5 mine +"_s,
            u"outgoing 9 mine -"_s }));
    const QDate today(2026, 11, 21);
    QLocale::setDefault(QLocale::C);
    for (const auto& [ago, title] : std::initializer_list<std::pair<int, QString>> { { 0, u"Today"_s },
             { 1, u"Yesterday"_s },
             { 6, u"Sunday"_s },
             { 7, u"Saturday, 14 November 2026"_s },
             { -1, u"Sunday, 22 November 2026"_s } })
        EXPECT_EQ(PelinorConversationRows::titleOfDay(today.addDays(-ago), today), title);
}

class PelinorConversationScreenTest : public PelinorConversationTest {
protected:
    PelinorConversationScreenTest()
    {
        screen.setAccount(account);
        screen.setConversation(conversation());
        screen.view()->resize(420, 400);
        screen.view()->show();
        screen.viewWillAppear(false);
        QCoreApplication::processEvents();
    }
    ~PelinorConversationScreenTest() override { screen.viewWillDisappear(false); }

    KRTableView& table() { return screen.tableView(); }
    QPlainTextEdit* field() { return screen.view()->findChild<QPlainTextEdit*>(u"answerField"_s); }
    bool isAtBottom() { return table().documentVisibleRect().bottom() + 1 >= table().totalHeight(); }
    QString lastName()
    {
        const auto* const cell = table().cellForRow(table().numberOfRows() - 1);
        return cell ? cell->accessibleName() : QString();
    }

    PelinorDirectMessageConversationViewController screen { environment, *twitter, outbox };
};

TEST_F(PelinorConversationScreenTest, IsWrittenInAtTheBottom)
{
    EXPECT_TRUE(isAtBottom());
    EXPECT_TRUE(lastName().startsWith(u"Bob: message 49, "_s)) << lastName().toStdString();
    answer(newMessage, KRTestServer::always(403, "<hash><error>no room</error></hash>"));
    // Typed anywhere it goes to the field, which grows and hides nothing.
    QTest::keyClicks(&table(), u"h"_s);
    QTest::keyClicks(field(), u"ello"_s);
    const int height = field()->height();
    QTest::keyClick(field(), Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(field(), u"you"_s);
    QCoreApplication::processEvents();
    EXPECT_GT(field()->height(), height);
    EXPECT_TRUE(isAtBottom());
    EXPECT_EQ(outbox.answer(*account, bob()), u"hello\nyou"_s);
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(field()->toPlainText(), QString());
    EXPECT_TRUE(lastName().endsWith(u"being sent"_s)) << lastName().toStdString();
    ASSERT_TRUE(KRWaitUntil([&] { return lastName().endsWith(u"not sent"_s); }));
    EXPECT_TRUE(isAtBottom());
    table().selectRow(table().numberOfRows() - 1);
    answer(newMessage, KRTestServer::always(200, messageXML(50, "hello you", true)));
    QTest::keyClick(&table(), Qt::Key_Return);
    ASSERT_TRUE(KRWaitUntil([&] { return lastName().startsWith(u"You: hello you, "_s); }));
}

TEST_F(PelinorConversationScreenTest, WhatDoesNotFitIsNotSent)
{
    screen.view()->findChild<PelinorAnswerView*>()->setLongestText(5);
    QTest::keyClicks(field(), u"123456"_s);
    auto* const counter = screen.view()->findChild<QWidget*>(u"answerCounter"_s);
    EXPECT_EQ(counter->property("text").toString(), QLocale().toString(-1));
    EXPECT_FALSE(counter->isHidden());
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(field()->toPlainText(), u"123456"_s);
    QTest::keyClick(field(), Qt::Key_Backspace);
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(field()->toPlainText(), QString());
}

TEST_F(PelinorConversationScreenTest, OlderMessagesComeWithoutAJump)
{
    answer(received, KRTestServer::always(200, page(10, 29)));
    const auto placeOf = [&](const QString& text) {
        for (qint64 row = 0; row < table().numberOfRows(); ++row) {
            if (screen.tableViewAccessibleNameForRow(table(), row).contains(text))
                return table().relativeVisibleOffsetForRow(row);
        }
        return INT_MAX;
    };
    // As the key for the beginning does it.
    table().scrollToPoint({ 0, 0 }, KRScrollView::Animated::No);
    EXPECT_FALSE(isAtBottom());
    const int atTop = placeOf(u"message 33,"_s);
    ASSERT_NE(atTop, INT_MAX);
    ASSERT_TRUE(KRWaitUntil([&] { return conversation()->messages().size() == 40; }));
    EXPECT_EQ(placeOf(u"message 33,"_s), atTop);
    // A page that fails says so and is asked for again with a click; then there is no more.
    answer(received, KRTestServer::always(500, {}));
    table().scrollToPoint({ 0, 0 }, KRScrollView::Animated::No);
    const auto top = [&] { return screen.tableViewAccessibleNameForRow(table(), 0); };
    ASSERT_TRUE(KRWaitUntil([&] {
        const auto* const cell = table().cellForRow(0);
        return cell && cell->accessibleName() == u"Loading failed. Try again"_s;
    }));
    answer(received, KRTestServer::always(200, page(8, 9)));
    table().cellForRow(0)->activate();
    ASSERT_TRUE(KRWaitUntil([&] { return conversation()->messages().size() == 42; }));
    // The one that has failed, and nothing behind it.
    const auto asked = requestsTo(received);
    EXPECT_EQ(asked.last().target, asked[asked.size() - 2].target);
    ASSERT_TRUE(KRWaitUntil([&] { return !top().startsWith(u"Loading"_s); }));
    // A refresh that fails says nothing of older messages.
    const KRTestCounter<TwitterStreamErrorNotification> errors(
        account->directMessagesManager()->sentStream().get());
    answer(sent, KRTestServer::always(500, {}));
    account->directMessagesManager()->refresh();
    ASSERT_TRUE(KRWaitUntil([&] { return errors.count == 1; }));
    QTest::qWait(0);
    EXPECT_EQ(top(), PelinorConversationRows::titleOfDay({ 2026, 11, 22 }, KRNow().toLocalTime().date()));
}

} // namespace
