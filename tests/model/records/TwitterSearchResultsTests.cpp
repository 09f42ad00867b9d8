#include "model/records/TwitterStatus.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "text/KRArrayAdditions.h"

namespace {

const auto& answer = KRTestSite::realAnswer;

TwitterStatusList resultsOf(const QByteArray& body)
{
    auto results = TwitterStatus::statusesWithSearchJSON(body);
    EXPECT_FALSE(results.isError()) << body.constData();
    return results.isError() ? TwitterStatusList() : results.value();
}

// The one result made of these members beside an ID and an author.
TwitterStatusPtr resultWith(const QByteArray& members)
{
    const TwitterStatusList results
        = resultsOf(R"({"results":[{"id":"7","from_user":"Bob",)" + members + "}]}");
    EXPECT_EQ(results.size(), 1) << members.constData();
    return results.isEmpty() ? std::make_shared<TwitterStatus>() : results.first();
}

QString idsOf(const TwitterStatusList& statuses)
{
    return KRAdditions::mapFunction(statuses, [](const auto& status) {
        return status->statusID();
    }).join(u' ');
}

QDateTime november22(int hour, int minute, int second)
{
    return { QDate(2026, 11, 22), QTime(hour, minute, second), Qt::UTC };
}

TEST(SearchResults, BothFormsOfARealSiteGiveTheSameList)
{
    const TwitterStatusList classic = resultsOf(answer(u"search_classic.word.body.json"_s));
    const TwitterStatusList full = resultsOf(answer(u"search.word.body.json"_s));
    EXPECT_EQ(idsOf(classic), u"404 358 334 310 286 262 238 190 166 142 118 94"_s);
    ASSERT_EQ(idsOf(full), idsOf(classic));
    for (qsizetype i = 0; i < classic.size(); ++i) {
        EXPECT_FALSE(classic[i]->text().isEmpty());
        EXPECT_EQ(classic[i]->text(), full[i]->text());
        EXPECT_TRUE(classic[i]->date().isValid());
        EXPECT_EQ(classic[i]->date(), full[i]->date());
        EXPECT_EQ(classic[i]->fromUser()->username(), full[i]->fromUser()->username());
        EXPECT_EQ(classic[i]->fromUser()->profileImageURL(), full[i]->fromUser()->profileImageURL());
    }
    EXPECT_EQ(classic[0]->text(), u"Note 263 & dragons <ok> \"q\""_s);
    EXPECT_EQ(classic[0]->date(), november22(8, 24, 55));
    EXPECT_TRUE(resultsOf(answer(u"search.none.body.json"_s)).isEmpty());
    EXPECT_TRUE(resultsOf(answer(u"search_classic.none.body.json"_s)).isEmpty());

    const TwitterStatus& partial = *classic[0];
    EXPECT_TRUE(partial.isPartialStatus() && partial.fromUser()->isPartialUser());
    EXPECT_TRUE(partial.originalDateString().isNull() && partial.inReplyToStatusID().isNull());
    EXPECT_TRUE(partial.fromUser()->userID().isNull()) << "the ID in these answers is another service's";
    EXPECT_EQ(partial.fromUser()->username(), u"alice"_s);
    EXPECT_EQ(partial.fromUser()->fullName(), u"alice"_s);
}

TEST(SearchResults, TheFullFormKnowsWhatTheXMLInterfaceKnows)
{
    const TwitterStatusPtr found = resultsOf(answer(u"search.word.body.json"_s)).first();
    const auto timeline
        = TwitterStatus::statusesWithXML(answer(u"home_timeline.count_200.body.xml"_s)).value();
    const auto same = std::find_if(timeline.begin(), timeline.end(), [&](const auto& status) {
        return status->isEqual(*found);
    });
    ASSERT_NE(same, timeline.end());
    const auto knownOf = [](const TwitterStatus& status) {
        const TwitterUser& user = *status.fromUser();
        EXPECT_FALSE(status.isPartialStatus() || user.isPartialUser());
        const auto count = [](std::optional<qint32> number) { return QString::number(number.value_or(-1)); };
        QStringList known { status.text(), status.date().toString(Qt::ISODate), status.originalDateString() };
        known << user.userID() << user.fullName() << user.location() << user.bio() << user.url().toString();
        known << count(user.numberOfFollowers()) << count(user.numberOfFollowing());
        return known << count(user.numberOfStatuses()) << count(user.numberOfFavorites());
    };
    EXPECT_EQ(knownOf(*found), knownOf(**same));

    const TwitterStatusList reply = resultsOf(
        R"([{"id":9,"in_reply_to_status_id":18446744073709551617,"user":{"screen_name":"bob","id":3}}])");
    ASSERT_EQ(reply.size(), 1);
    EXPECT_EQ(reply[0]->inReplyToStatusID(), u"18446744073709551617"_s);
}

TEST(SearchResults, NullsAndWrongTypesLeaveTheFieldAsItWas)
{
    for (const QByteArray wrong : { "null", "true", "{\"id\":1,\"text\":\"t\"}", "[\"x\",{\"id\":2}]" }) {
        QByteArray members = R"("text":"t","created_at":"Sun, 22 Nov 2026 08:24:55 +0000")";
        for (const char* key : { "id", "text", "created_at", "from_user", "profile_image_url", "metadata" })
            members += ",\"" + QByteArray(key) + "\":" + wrong;
        const TwitterStatusPtr status = resultWith(members);
        EXPECT_EQ(status->statusID(), u"7"_s) << wrong.constData();
        EXPECT_EQ(status->text(), u"t"_s) << wrong.constData();
        EXPECT_EQ(status->date(), november22(8, 24, 55)) << wrong.constData();
        EXPECT_EQ(status->fromUser()->username(), u"Bob"_s) << wrong.constData();
        EXPECT_TRUE(status->fromUser()->profileImageURL().isEmpty());
    }
    EXPECT_EQ(resultWith(R"("created_at":"yesterday","text":"\udc00")")->text(), u""_s);
    EXPECT_FALSE(resultWith(R"("created_at":"yesterday")")->date().isValid());
    EXPECT_EQ(resultWith(R"("id":12345678901234,"text":"&amp;lt;b&gt; &quot;")")->statusID(),
        u"12345678901234"_s);
    EXPECT_EQ(resultWith(R"("text":"&amp;lt;b&gt; &quot;")")->text(), u"<b> \""_s);
    KRTestLog log;
    EXPECT_EQ(resultWith(R"("profile_image_url":"http://a b:c/")")->fromUser()->profileImageURL(), QUrl());
    EXPECT_TRUE(log.contains(u"problem http://a b:c/"_s));

    const QByteArrayList empty { R"({"results":null})",
        R"({"results":{"id":1}})",
        "5",
        "",
        "<html>",
        R"({"results":[1,"x",null,[]]})",
        R"({"error":"no","list":[{"id":"1","from_user":"bob"}]})" };
    for (const QByteArray& body : empty)
        EXPECT_TRUE(resultsOf(body).isEmpty()) << body.constData();
    const auto noText = TwitterStatus::statusesWithSearchJSON("{\"results\":[\"\xff\"]}");
    ASSERT_TRUE(noText.isError());
    EXPECT_EQ(noText.error().domain, u"com.kestrin.json-error"_s);
}

TEST(SearchResults, WithoutAnAuthorOrAnIDItIsAResultAllTheSame)
{
    for (const char* form : { R"({"results":%})", "%" }) {
        const QByteArray page
            = R"([{"id":1,"text":"a"},{"from_user":"bob","user":{"screen_name":"bob"},"text":"b"},)"
              R"({"id":3,"profile_image_url":"http://a/b","user":{"name":"x"},"text":"c"},{}])";
        const TwitterStatusList results = resultsOf(QByteArray(form).replace('%', page) + "\n ");
        QStringList lines;
        for (const TwitterStatusPtr& one : results)
            lines += one->statusID() + one->text() + (one->fromUser() ? one->fromUser()->username() : u"-"_s);
        EXPECT_EQ(lines.join(u' '), u"1a- bbob 3c- -"_s);
    }
    // Of the last one in an answer that is cut, the rest may be missing.
    EXPECT_EQ(idsOf(resultsOf(R"([{"id":1,"text":"a"},{"id":2,"text":"b","user":{"id":3},)")), u"1"_s);
}

TEST(SearchResults, WhatCameBeforeTheCutCanBeShown)
{
    for (const QString& name : { u"search.word.body.json"_s, u"search_classic.word.body.json"_s }) {
        // Three or more results of that site.
        const QByteArray body = answer(name).first(4000);
        const TwitterStatusList all = resultsOf(body);
        EXPECT_GE(all.size(), 3);
        qsizetype most = 0;
        for (qsizetype length = 0; length < body.size(); ++length) {
            const TwitterStatusList some = resultsOf(body.first(length));
            ASSERT_GE(some.size(), most) << length;
            most = some.size();
            ASSERT_TRUE(
                idsOf(all).startsWith(idsOf(some)) || idsOf(some).startsWith(idsOf(all.first(most - 1))));
            for (const TwitterStatusPtr& status : some)
                ASSERT_FALSE(status->fromUser()->username().isEmpty());
        }
        EXPECT_EQ(most, all.size());
    }
}

TEST(SearchResults, HostileAnswersAreReadAsFarAsTheyGo)
{
    const QByteArray good = R"({"id":"7","from_user":"bob","text":"t"})";
    const QByteArray digits(400, '9');
    const auto IDsIn = [](const QByteArray& body) { return idsOf(resultsOf(body)); };
    for (const QByteArray& deep :
        { QByteArray("["), QByteArray(R"({"results":)"), QByteArray(R"({"user":)") }) {
        const QByteArray nested = deep.repeated(100'000);
        EXPECT_EQ(IDsIn("[" + good + ",{\"id\":1,\"entities\":" + nested), u"7"_s);
        EXPECT_TRUE(IDsIn(nested).isEmpty());
    }
    EXPECT_EQ(IDsIn(R"([{"id":1,"id":2,"from_user":"a","from_user":"b"}])"), u"2"_s);
    EXPECT_EQ(IDsIn("[{\"id\":" + digits + ",\"from_user\":\"a\"}]"), QString::fromLatin1(digits));
    EXPECT_EQ(IDsIn("/* x */ [" + good + ", // y\n" + good + "]"), u"7 7"_s);
    EXPECT_EQ(IDsIn("[" + good + QByteArray(1, '\0') + "," + good + "]"), u"7"_s);
}

} // namespace
