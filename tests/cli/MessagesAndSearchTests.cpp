#include "KRTestCLI.h"

using MessageCommands = KRTestCLI;

TEST_F(MessageCommands, SendAndReadMessages)
{
    const QByteArray text = "tea & <cake> at 5? 😀\nbring a book";
    const QList<QJsonObject> sent = objectsOf("send bob -", text);
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(sent[0].value(u"text").toString().toUtf8(), text);
    EXPECT_EQ(nameIn(sent[0], u"sender"), u"alice"_s);
    EXPECT_EQ(nameIn(sent[0], u"recipient"), u"bob"_s);
    EXPECT_TRUE(QDateTime::fromString(sent[0].value(u"date").toString(), Qt::ISODate).isValid());

    const QJsonObject answer = objectsOf(bob("--json send alice yes")).value(0);
    EXPECT_EQ(objectsOf("sent").value(0), sent[0]);
    EXPECT_EQ(objectsOf("messages").value(0), answer);
    const QByteArray answerID = answer.value(u"messageID").toString().toLatin1();
    EXPECT_TRUE(objectsOf("messages --since-id " + answerID).isEmpty());
    EXPECT_EQ(objectsOf("messages --max-id " + answerID).value(0), answer);
    const Outcome plain = alice("messages");
    EXPECT_TRUE(plain.output.startsWith("bob to alice, ")) << plain.output.toStdString();
    EXPECT_TRUE(plain.output.contains("\n  yes\n"));

    const Outcome refused = alice("send felix hello");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.contains("aren't your friend")) << refused.errors.toStdString();
    EXPECT_EQ(alice("send bob").exitCode, 2);
}

TEST_F(MessageCommands, ConversationsHoldBothDirections)
{
    const Outcome newest = bob("send alice 'the newest of all'");
    ASSERT_EQ(newest.exitCode, 0);
    EXPECT_EQ(newest.errors, "") << "nothing for a cron job to mail";
    EXPECT_TRUE(alice("longpost x --verbose").errors.contains("UPLOAD PROGRESS"));
    const QList<QJsonObject> conversations = objectsOf("conversations");
    ASSERT_GE(conversations.size(), 5);
    EXPECT_EQ(nameIn(conversations[0], u"correspondent"), u"bob"_s);
    QStringList correspondents;
    for (const QJsonObject& conversation : conversations) {
        const QString correspondent = nameIn(conversation, u"correspondent");
        correspondents.append(correspondent);
        const QJsonArray messages = conversation.value(u"messages").toArray();
        EXPECT_FALSE(messages.isEmpty());
        // Of two in one second the one with the higher number is the newer one.
        std::pair<QString, qulonglong> previous;
        for (const QJsonValue& one : messages) {
            const QJsonObject message = one.toObject();
            QStringList parties { nameIn(message, u"sender"), nameIn(message, u"recipient") };
            parties.sort();
            QStringList expected { u"alice"_s, correspondent };
            expected.sort();
            EXPECT_EQ(parties, expected);
            const std::pair age(message.value(u"date").toString(),
                message.value(u"messageID").toString().toULongLong());
            EXPECT_TRUE(previous.first.isNull() || age < previous) << "newest first";
            previous = age;
        }
    }
    EXPECT_EQ(correspondents.removeDuplicates(), 0);
    const Outcome plain = alice("conversations");
    EXPECT_TRUE(plain.output.startsWith("bob (Bob Hartmann)\n  bob to alice, "))
        << plain.output.toStdString();
    EXPECT_EQ(runAs("alice", "wrong", "conversations").exitCode, 1);
}

TEST_F(MessageCommands, SearchFindsWhatWasPosted)
{
    for (const char* text : { "'quixotic one #zebra'", "'a Quixotic & <b>second</b>'" })
        ASSERT_EQ(alice(QByteArray("post ") + text).exitCode, 0);
    const QList<QJsonObject> found = objectsOf("search quixotic");
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].value(u"text"), u"a Quixotic & <b>second</b>"_s);
    EXPECT_EQ(found[0].value(u"isPartialStatus"), true);
    EXPECT_EQ(nameIn(found[0], u"fromUser"), u"alice"_s);
    EXPECT_EQ(objectsOf("search quixotic --count 1"), QList<QJsonObject> { found[0] });
    EXPECT_EQ(objectsOf("search quixotic --count 1 --page 2"), QList<QJsonObject> { found[1] });
    const QByteArray first = found[1].value(u"statusID").toString().toLatin1();
    EXPECT_EQ(objectsOf("search quixotic --since-id " + first), QList<QJsonObject> { found[0] });
    EXPECT_EQ(objectsOf("search '#zebra'").size(), 1);
    EXPECT_TRUE(objectsOf("search 'no such word anywhere'").isEmpty());
    EXPECT_EQ(alice("search x --max-id 1").exitCode, 2);
}

TEST_F(MessageCommands, TrendsAreNames)
{
    const QList<QJsonObject> trends = objectsOf("trends");
    ASSERT_EQ(trends.size(), 10);
    for (const QJsonObject& trend : trends)
        EXPECT_TRUE(trend.value(u"name").toString().startsWith(u'#'));
    EXPECT_EQ(alice("trends").output.count('\n'), 10);
    const Outcome nowhere = run("trends");
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_TRUE(nowhere.errors.contains("SearchHost")) << nowhere.errors.toStdString();
}
