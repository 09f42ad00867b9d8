#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "parsing/KRXMLForbiddenCharacters.h"
#include "text/KRArrayAdditions.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <set>

using namespace KRAdditions;
using namespace Qt::StringLiterals;

// What a real site answers, read into records.
namespace {

const QString folder = QStringLiteral(PELINOR_TEST_DATA "/gnu-social/");

QByteArray answer(const QString& name)
{
    QFile file(folder + name + u".body.xml"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
}

template <class Record>
Record only(KRResult<Record> result)
{
    EXPECT_FALSE(result.isError()) << qPrintable(result.isError() ? result.error().description : QString());
    return result.isError() ? Record() : std::move(result).value();
}

TwitterStatusPtr status(const QString& name)
{
    return only(TwitterStatus::statusWithXML(answer(name)));
}

QStringList spans(const TwitterStatusPtr& status, const KRRangeList& ranges)
{
    return mapFunction(ranges, [&](KRRange range) { return KRSubstring(status->text(), range); });
}

QDateTime november22(int hour, int minute, int second)
{
    return { QDate(2026, 11, 22), QTime(hour, minute, second), Qt::UTC };
}

void expectComplete(const TwitterUserPtr& user)
{
    ASSERT_TRUE(user);
    EXPECT_FALSE(user->userID().isEmpty());
    EXPECT_FALSE(user->username().isEmpty());
    EXPECT_FALSE(user->fullName().isEmpty());
    EXPECT_TRUE(user->profileImageURL().isValid());
    EXPECT_TRUE(user->numberOfFollowers() && user->numberOfFollowing() && user->numberOfStatuses()
        && user->numberOfFavorites());
}

void expectComplete(const TwitterStatusPtr& status)
{
    EXPECT_FALSE(status->statusID().isEmpty());
    EXPECT_FALSE(status->text().isEmpty());
    EXPECT_TRUE(status->date().isValid());
    EXPECT_FALSE(status->originalDateString().isEmpty());
    expectComplete(status->fromUser());
}

void expectComplete(const TwitterDirectMessagePtr& message)
{
    EXPECT_FALSE(message->messageID().isEmpty());
    EXPECT_FALSE(message->text().isEmpty());
    EXPECT_TRUE(message->date().isValid());
    expectComplete(message->sender());
    expectComplete(message->recipient());
}

// Reads a list and checks each record, the count and the first and last ID.
template <class Record, class IDOf>
void expectList(KRResult<QList<std::shared_ptr<Record>>> result,
    IDOf idOf,
    qsizetype count,
    const QString& firstID,
    const QString& lastID)
{
    const auto records = only(std::move(result));
    for (const auto& record : records)
        expectComplete(record);
    ASSERT_EQ(records.size(), count);
    if (count > 0) {
        EXPECT_EQ((records.first().get()->*idOf)(), firstID);
        EXPECT_EQ((records.last().get()->*idOf)(), lastID);
    }
}

TEST(RealAnswers, ListsOfStatuses)
{
    const struct {
        QString name;
        qsizetype count;
        QString firstID;
        QString lastID;
    } lists[] = {
        { u"favorites.id_number"_s, 20, u"270"_s, u"156"_s },
        { u"home_timeline.count_200"_s, 200, u"462"_s, u"246"_s },
        { u"home_timeline.default"_s, 20, u"462"_s, u"440"_s },
        { u"home_timeline.empty_user"_s, 0, {}, {} },
        { u"home_timeline.max_id"_s, 5, u"330"_s, u"326"_s },
        { u"home_timeline.since_id"_s, 5, u"462"_s, u"456"_s },
        { u"public_timeline.no_auth"_s, 20, u"462"_s, u"441"_s },
        { u"replies.default"_s, 20, u"460"_s, u"278"_s },
        { u"user_timeline.user_id"_s, 20, u"460"_s, u"393"_s },
    };
    for (const auto& list : lists) {
        SCOPED_TRACE(qPrintable(list.name));
        expectList(TwitterStatus::statusesWithXML(answer(list.name)),
            &TwitterStatus::statusID,
            list.count,
            list.firstID,
            list.lastID);
    }
}

TEST(RealAnswers, ListsOfPeopleAndMessages)
{
    expectList(TwitterUser::usersWithXML(answer(u"followers.default"_s)),
        &TwitterUser::userID,
        50,
        u"54"_s,
        u"3"_s);
    expectList(TwitterUser::usersWithXML(answer(u"friends.default"_s)),
        &TwitterUser::userID,
        33,
        u"27"_s,
        u"13"_s);
    const auto messages
        = [](const QString& name, qsizetype count, const QString& first, const QString& last) {
              expectList(TwitterDirectMessage::messagesWithXML(answer(name)),
                  &TwitterDirectMessage::messageID,
                  count,
                  first,
                  last);
          };
    messages(u"direct_messages.default"_s, 20, u"68"_s, u"22"_s);
    messages(u"direct_messages.since_id"_s, 4, u"68"_s, u"56"_s);
    messages(u"direct_messages_sent.default"_s, 20, u"67"_s, u"21"_s);
}

TEST(RealAnswers, SingleStatuses)
{
    const struct {
        QString name;
        QString statusID;
        QDateTime date;
        QString inReplyToStatusID;
        QString author;
        QString text;
    } statuses[] = {
        { u"show.conv1"_s,
            u"449"_s,
            november22(18, 9, 55),
            {},
            u"alice"_s,
            u"Conversation root: who wants tea?"_s },
        { u"show.conv2"_s, u"450"_s, november22(18, 22, 55), u"449"_s, u"bob"_s, u"@alice Me!"_s },
        { u"show.entities"_s,
            u"423"_s,
            november22(12, 31, 55),
            {},
            u"alice"_s,
            u"Hello & welcome <b>not bold</b> \"double\" 'single' 5 > 3 < 4 & <tag> A ©"_s },
        { u"show.astral"_s,
            u"428"_s,
            november22(13, 36, 55),
            {},
            u"carol"_s,
            u"Astral: 😀😁👍🏽 👩\u200d👩\u200d👧\u200d👦 🇵🇱 𝕳𝖊𝖑𝖑𝖔 𠜎𠜱 and BMP ☃ ✓ é\u0301 ﷺ"_s },
        { u"show.orphan"_s,
            u"459"_s,
            november22(20, 19, 55),
            {},
            u"alice"_s,
            u"@dave reply to a notice that is deleted later"_s },
        { u"update.plain"_s,
            u"463"_s,
            november22(21, 4, 13),
            {},
            u"alice"_s,
            u"A fresh status from the probe"_s },
        { u"update.reply"_s, u"466"_s, november22(21, 4, 13), u"463"_s, u"bob"_s, u"@alice a reply"_s },
        { u"update.command_stats"_s, u"477"_s, november22(21, 4, 14), {}, u"alice"_s, u"as json"_s },
        { u"destroy.ok"_s,
            u"463"_s,
            november22(21, 4, 13),
            {},
            u"alice"_s,
            u"A fresh status from the probe"_s },
        { u"favorites_create.ok"_s, u"450"_s, november22(18, 22, 55), u"449"_s, u"bob"_s, u"@alice Me!"_s },
        { u"favorites_destroy.ok"_s, u"450"_s, november22(18, 22, 55), u"449"_s, u"bob"_s, u"@alice Me!"_s },
    };
    for (const auto& expected : statuses) {
        SCOPED_TRACE(qPrintable(expected.name));
        const TwitterStatusPtr read = status(expected.name);
        expectComplete(read);
        EXPECT_EQ(read->statusID(), expected.statusID);
        EXPECT_EQ(read->date(), expected.date);
        EXPECT_EQ(read->inReplyToStatusID(), expected.inReplyToStatusID);
        EXPECT_EQ(read->inReplyToStatusID().isNull(), expected.inReplyToStatusID.isNull());
        EXPECT_EQ(read->fromUser()->username(), expected.author);
        EXPECT_EQ(read->text(), expected.text) << qPrintable(read->text());
    }
}

TEST(RealAnswers, ActiveSpans)
{
    const TwitterStatusPtr links = status(u"show.links"_s);
    EXPECT_EQ(spans(links, links->activeTextRanges().activeRanges()),
        (QStringList { u"http://example.com/"_s,
            u"https://example.org/path/to/page?x=1&y=2#frag"_s,
            u"http://en.example.org/wiki/Foo_(bar)"_s,
            u"http://example.net/end"_s,
            u"www.example.com"_s,
            u"ftp://ftp.example.com/x"_s,
            u"bob@example.org"_s }));
    const TwitterStatusPtr mentions = status(u"show.mentions"_s);
    EXPECT_EQ(spans(mentions, mentions->activeTextRanges().usernames()),
        (QStringList { u"@alice"_s,
            u"@bob"_s,
            u"@carol"_s,
            u"@Alice"_s,
            u"@nosuchuser"_s,
            u"@zofia"_s,
            u"@bob"_s }));
    EXPECT_EQ(spans(mentions, mentions->activeTextRanges().emailAddresses()),
        (QStringList { u"bob@example.org"_s, u"bob@remote.example.net"_s }));
    const TwitterStatusPtr symbols = status(u"show.symbols"_s);
    EXPECT_EQ(spans(symbols, symbols->activeTextRanges().stockSymbols()),
        (QStringList { u"$ACME"_s, u"$GOOG"_s, u"$a"_s }));
    EXPECT_EQ(spans(symbols, symbols->activeTextRanges().emailAddresses()),
        (QStringList { u"carol@example.org"_s, u"first.last+tag@sub.example.co.uk"_s }));
    // What a repeat repeats is a status inside of the status, and none of its data leaks into the outer one.
    const TwitterStatusPtr repeat = status(u"show.retweet"_s);
    EXPECT_EQ(repeat->statusID(), u"462"_s);
    EXPECT_EQ(repeat->fromUser()->username(), u"alice"_s);
    EXPECT_TRUE(repeat->text().startsWith(u"RT @bob Links: "_s));
    EXPECT_EQ(status(u"show.longtext"_s)->text().size(), 994);
}

TEST(RealAnswers, People)
{
    const TwitterUserPtr alice = only(TwitterUser::userWithXML(answer(u"verify_credentials.ok"_s)));
    expectComplete(alice);
    EXPECT_EQ(alice->userID(), u"2"_s);
    EXPECT_EQ(alice->username(), u"alice"_s);
    EXPECT_EQ(alice->fullName(), u"Alice Liddell"_s);
    EXPECT_EQ(alice->location(), u"Oxford, England"_s);
    EXPECT_EQ(alice->bio(), u"Curiouser & curiouser! <tea> \"parties\" only. #wonderland"_s);
    EXPECT_EQ(alice->profileImageURL().toEncoded(),
        "http://social.example.org/avatar/2-48-20261122210328.png");
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

    for (const QString& name : { u"friendships_create.screen_name"_s,
             u"friendships_destroy.user_id"_s,
             u"users_show.dave"_s,
             u"users_show.mallory"_s,
             u"users_show.screen_name"_s,
             u"users_show.user_id"_s })
        expectComplete(only(TwitterUser::userWithXML(answer(name))));
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

TEST(RealAnswers, APageWithAForbiddenCharacterReadsOnceThatIsReplaced)
{
    const QByteArray page = answer(u"home_timeline.with_invalid_xml_char"_s);
    const auto asItIs = TwitterStatus::statusesWithXML(page);
    ASSERT_TRUE(asItIs.isError());
    EXPECT_EQ(asItIs.error().domain, u"com.kestrin.xmlparser-error"_s);
    const auto statuses
        = only(TwitterStatus::statusesWithXML(KRXMLByReplacingForbiddenCharacters(page).value()));
    ASSERT_EQ(statuses.size(), 3);
    EXPECT_EQ(statuses[0]->text(), u"noncharacter [\uFFFD] inside"_s);
}

TEST(RealAnswers, ErrorDocumentsHoldNoRecords)
{
    const QStringList names = QDir(folder).entryList({ u"*.xml"_s });
    int count = 0;
    for (QString name : names) {
        const QByteArray body = answer(name.remove(u".body.xml"_s));
        if (!body.contains("<error>"))
            continue;
        ++count;
        EXPECT_TRUE(only(TwitterStatus::statusesWithXML(body)).isEmpty());
        EXPECT_TRUE(only(TwitterUser::usersWithXML(body)).isEmpty());
        EXPECT_TRUE(only(TwitterDirectMessage::messagesWithXML(body)).isEmpty());
        EXPECT_TRUE(only(TwitterStatus::statusWithXML(body))->statusID().isNull());
    }
    EXPECT_EQ(count, 18);
}

} // namespace
