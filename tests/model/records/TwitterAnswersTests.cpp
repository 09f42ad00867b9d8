#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "text/KRArrayAdditions.h"

using namespace KRAdditions;

// What a real site answers, read into records.
namespace {

QByteArray answer(const QString& name)
{
    return KRTestSite::realAnswer(name + u".body.xml"_s);
}

template <class Record>
Record only(KRResult<Record> result)
{
    EXPECT_FALSE(result.isError()) << qPrintable(result.isError() ? result.error().description : QString());
    return result.isError() ? Record() : std::move(result).value();
}

void expectComplete(const TwitterUserPtr& user)
{
    ASSERT_TRUE(user && user->profileImageURL().isValid());
    EXPECT_FALSE(user->userID().isEmpty() || user->username().isEmpty() || user->fullName().isEmpty());
    EXPECT_TRUE(user->numberOfFollowers() && user->numberOfFollowing());
    EXPECT_TRUE(user->numberOfStatuses() && user->numberOfFavorites());
}

void expectComplete(const TwitterStatusPtr& status)
{
    EXPECT_FALSE(status->statusID().isEmpty() || status->text().isEmpty());
    EXPECT_TRUE(status->date().isValid() && !status->originalDateString().isEmpty());
    expectComplete(status->fromUser());
}

void expectComplete(const TwitterDirectMessagePtr& message)
{
    EXPECT_FALSE(message->messageID().isEmpty() || message->text().isEmpty());
    EXPECT_TRUE(message->date().isValid());
    expectComplete(message->sender());
    expectComplete(message->recipient());
}

// "COUNT FIRST_ID LAST_ID" of a list of complete records.
template <class Record, class IDOf>
QString summaryOf(KRResult<QList<std::shared_ptr<Record>>> result, IDOf idOf)
{
    const auto records = only(std::move(result));
    for (const auto& record : records)
        expectComplete(record);
    if (records.isEmpty())
        return u"0"_s;
    return u"%1 %2 %3"_s.arg(records.size()).arg((*records.first().*idOf)(), (*records.last().*idOf)());
}

TEST(RealAnswers, Lists)
{
    const std::pair<QString, QString> statuses[] = {
        { u"favorites.id_number"_s, u"20 270 156"_s },
        { u"home_timeline.count_200"_s, u"200 462 246"_s },
        { u"home_timeline.default"_s, u"20 462 440"_s },
        { u"home_timeline.empty_user"_s, u"0"_s },
        { u"home_timeline.max_id"_s, u"5 330 326"_s },
        { u"home_timeline.since_id"_s, u"5 462 456"_s },
        { u"public_timeline.no_auth"_s, u"20 462 441"_s },
        { u"replies.default"_s, u"20 460 278"_s },
        { u"user_timeline.user_id"_s, u"20 460 393"_s },
    };
    for (const auto& [name, summary] : statuses)
        EXPECT_EQ(summaryOf(TwitterStatus::statusesWithXML(answer(name)), &TwitterStatus::statusID), summary);
    for (const auto& [name, summary] :
        { std::pair(u"followers.default"_s, u"50 54 3"_s), std::pair(u"friends.default"_s, u"33 27 13"_s) })
        EXPECT_EQ(summaryOf(TwitterUser::usersWithXML(answer(name)), &TwitterUser::userID), summary);
    const std::pair<QString, QString> messages[] = {
        { u"direct_messages.default"_s, u"20 68 22"_s },
        { u"direct_messages.since_id"_s, u"4 68 56"_s },
        { u"direct_messages_sent.default"_s, u"20 67 21"_s },
    };
    for (const auto& [name, summary] : messages)
        EXPECT_EQ(
            summaryOf(TwitterDirectMessage::messagesWithXML(answer(name)), &TwitterDirectMessage::messageID),
            summary);
}

TEST(RealAnswers, SingleStatuses)
{
    // The ID, the time on 22 November 2026 in UTC, the ID of what it answers, the author and the text.
    const std::pair<QString, QString> statuses[] = {
        { u"show.conv1"_s, u"449 18:09:55 - alice: Conversation root: who wants tea?"_s },
        { u"show.conv2"_s, u"450 18:22:55 449 bob: @alice Me!"_s },
        { u"show.entities"_s,
            u"423 12:31:55 - alice: Hello & welcome <b>not bold</b> \"double\" 'single' 5 > 3 < 4 & <tag> A ©"_s },
        { u"show.astral"_s,
            u"428 13:36:55 - carol: Astral: 😀😁👍🏽 👩\u200d👩\u200d👧\u200d👦 🇵🇱 𝕳𝖊𝖑𝖑𝖔 𠜎𠜱 and BMP ☃ ✓ é\u0301 ﷺ"_s },
        { u"show.orphan"_s, u"459 20:19:55 - alice: @dave reply to a notice that is deleted later"_s },
        { u"update.plain"_s, u"463 21:04:13 - alice: A fresh status from the probe"_s },
        { u"update.reply"_s, u"466 21:04:13 463 bob: @alice a reply"_s },
    };
    for (const auto& [name, expected] : statuses) {
        SCOPED_TRACE(qPrintable(name));
        const TwitterStatusPtr read = only(TwitterStatus::statusWithXML(answer(name)));
        expectComplete(read);
        EXPECT_EQ(read->date().toUTC().date(), QDate(2026, 11, 22));
        const QString parent = read->inReplyToStatusID().isNull() ? u"-"_s : read->inReplyToStatusID();
        const QString line = read->statusID() + read->date().toUTC().toString(u" HH:mm:ss "_s) + parent + u' '
            + read->fromUser()->username() + u": "_s + read->text();
        EXPECT_EQ(line, expected) << qPrintable(line);
    }
}

TEST(RealAnswers, People)
{
    const TwitterUserPtr alice = only(TwitterUser::userWithXML(answer(u"verify_credentials.ok"_s)));
    expectComplete(alice);
    const QStringList names { alice->userID(), alice->username(), alice->fullName(), alice->location() };
    EXPECT_EQ(names.join(u'|'), u"2|alice|Alice Liddell|Oxford, England"_s);
    EXPECT_EQ(alice->bio(), u"Curiouser & curiouser! <tea> \"parties\" only. #wonderland"_s);
    EXPECT_EQ(alice->profileImageURL(), QUrl(u"http://social.example.org/avatar/2-48-20261122210328.png"_s));
    EXPECT_EQ(alice->largeProfileImageURL(), alice->profileImageURL());
    EXPECT_EQ(alice->url().toEncoded(), "http://alice.example.org/");
    EXPECT_EQ(alice->numberOfFollowers(), 50);
    EXPECT_EQ(alice->numberOfFollowing(), 33);
    EXPECT_EQ(alice->numberOfStatuses(), 81);
    EXPECT_EQ(alice->numberOfFavorites(), 50);

    const TwitterUserPtr zofia = only(TwitterUser::userWithXML(answer(u"users_show.zofia"_s)));
    EXPECT_EQ(zofia->fullName(), u"Zofia Żółć 😀 日本語"_s);
    EXPECT_EQ(zofia->url().host(), u"żółć.example.pl"_s);

    const TwitterUserPtr mallory = only(TwitterUser::userWithXML(answer(u"friendships_create.user_id"_s)));
    EXPECT_EQ(mallory->userID(), u"7"_s);
    EXPECT_EQ(mallory->fullName(), u"<b>Mallory</b> \"Q\""_s);
    EXPECT_EQ(mallory->numberOfFavorites(), 0);
}

TEST(RealAnswers, SingleMessages)
{
    const auto message
        = only(TwitterDirectMessage::messageWithXML(answer(u"direct_messages_new.screen_name"_s)));
    expectComplete(message);
    EXPECT_EQ(message->messageID(), u"72"_s);
    EXPECT_EQ(message->text(), u"Hello bob & <hi> 😀"_s);
    EXPECT_EQ(message->sender()->username(), u"alice"_s);
    EXPECT_EQ(message->recipient()->username(), u"bob"_s);
    expectComplete(only(TwitterDirectMessage::messageWithXML(answer(u"direct_messages_new.id"_s))));
}

} // namespace
