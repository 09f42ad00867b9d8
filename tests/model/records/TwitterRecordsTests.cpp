#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "text/KRArrayAdditions.h"

#include <gtest/gtest.h>

using namespace KRAdditions;
using namespace Qt::StringLiterals;

namespace {

TwitterStatusPtr statusFrom(const QByteArray& xml)
{
    return TwitterStatus::statusWithXML(xml).value();
}

TwitterUserPtr userFrom(const QByteArray& xml)
{
    return TwitterUser::userWithXML("<user>" + xml + "</user>").value();
}

TEST(Status, EmptyAndMissingElementsChangeNothing)
{
    const TwitterStatusPtr status
        = statusFrom("<status><id> 7 </id><text/><created_at>soon</created_at><in_reply_to_status_id>  "
                     "</in_reply_to_status_id></status>");
    EXPECT_EQ(status->statusID(), u"7"_s);
    EXPECT_EQ(status->text(), u""_s);
    EXPECT_FALSE(status->text().isNull());
    EXPECT_TRUE(status->inReplyToStatusID().isNull());
    EXPECT_EQ(status->originalDateString(), u"soon"_s);
    EXPECT_FALSE(status->date().isValid());
    EXPECT_FALSE(status->fromUser());
    EXPECT_TRUE(status->isNotADummyStatus());
}

TEST(Status, UnknownElementsAreSkippedWithTheirContentAndIgnoredOnesAreNot)
{
    const TwitterStatusPtr status = statusFrom(
        "<status><geo><id>1</id></geo><id>2</id><ns:any><user><id>3</id></user></ns:any><user><id>4</id>"
        "<status><id>5</id></status></user><source><text>inside</text></source></status>");
    EXPECT_EQ(status->statusID(), u"2"_s);
    EXPECT_EQ(status->fromUser()->userID(), u"4"_s);
    EXPECT_EQ(status->text(), u"inside"_s);
}

TEST(Status, EntitiesAreUndoneTwice)
{
    const TwitterStatusPtr status
        = statusFrom("<status><text>#a &amp;lt;b&amp;gt; &amp;amp; &lt;c&gt;</text></status>");
    EXPECT_EQ(status->text(), u"#a <b> & <c>"_s);
    EXPECT_EQ(status->activeTextRanges().hashtags(), (KRRangeList { { 0, 2 } }));
    status->setText(u"now @bob"_s);
    EXPECT_EQ(status->activeTextRanges().activeRanges(), (KRRangeList { { 4, 4 } }));
}

TEST(Status, ABrokenPageGivesNoPartOfItself)
{
    KRTestLog log;
    EXPECT_TRUE(TwitterStatus::statusesWithXML("<statuses><status><id>1</id></status><status>").isError());
    EXPECT_TRUE(TwitterStatus::statusWithXML(QByteArray("")).isError());
    EXPECT_TRUE(TwitterUser::usersWithXML("<users><user></users>").isError());
    EXPECT_TRUE(TwitterDirectMessage::messageWithXML("no xml").isError());
}

TEST(Status, OrderAndEquality)
{
    const auto status = [](const QString& statusID, const char16_t* date) {
        auto made = std::make_shared<TwitterStatus>();
        made->setStatusID(statusID);
        made->setDate(QDateTime::fromString(QString::fromUtf16(date), Qt::ISODate));
        return made;
    };
    const TwitterStatusList statuses { status(u"1"_s, u"2026-01-01T00:00:00Z"),
        status(u"none"_s, u""),
        status(u"3"_s, u"2026-01-03T00:00:00Z"),
        status(u"2"_s, u"2026-01-01T00:00:00Z"),
        status(u"1"_s, u"") };
    const auto IDs = [](const TwitterStatusList& list) {
        return QStringList(mapFunction(list, &TwitterStatus::statusID));
    };
    EXPECT_EQ(IDs(sortedArray(statuses)), (QStringList { u"3"_s, u"1"_s, u"2"_s, u"none"_s, u"1"_s }));
    EXPECT_EQ(IDs(arrayWithoutDuplicates(statuses)), (QStringList { u"1"_s, u"none"_s, u"3"_s, u"2"_s }));
    // Without an ID only the same object is equal.
    const auto nameless = std::make_shared<TwitterStatus>();
    EXPECT_TRUE(nameless->isEqual(*nameless));
    EXPECT_FALSE(nameless->isEqual(TwitterStatus()));
}

TEST(Status, ArchivesItsIDAlone)
{
    TwitterStatus status;
    KRKeyedArchiver empty;
    status.encodeWithCoder(empty);
    EXPECT_FALSE(KRKeyedUnarchiver::unarchiverWithData(empty.archivedData()).value().contains("statusID"_L1));

    status.setStatusID(u"123"_s);
    status.setText(u"not kept"_s);
    KRKeyedArchiver coder;
    status.encodeWithCoder(coder);
    const TwitterStatusPtr restored
        = TwitterStatus::statusWithCoder(KRKeyedUnarchiver::unarchiverWithData(coder.archivedData()).value());
    EXPECT_EQ(restored->statusID(), u"123"_s);
    EXPECT_EQ(restored->text(), u""_s);
}

TEST(Status, PageOnTheWebSite)
{
    TwitterStatus status;
    status.setStatusID(u"42"_s);
    EXPECT_TRUE(status.twitterURL(u"example.org"_s).isEmpty());
    status.setFromUser(std::make_shared<TwitterUser>());
    status.fromUser()->setUsername(u"bob"_s);
    EXPECT_EQ(status.twitterURL(u"example.org"_s).toEncoded(), "https://example.org/bob/status/42");
    EXPECT_EQ(status.twitterURL(u"example.org/social"_s).toEncoded(),
        "https://example.org/social/bob/status/42");
    EXPECT_TRUE(status.twitterURL({}).isEmpty());
}

TEST(User, Fields)
{
    const TwitterUserPtr user = userFrom(
        "<id>9</id><screen_name>Bob</screen_name><name/><followers_count>12 people</followers_count>"
        "<friends_count>-3</friends_count><statuses_count>99999999999</statuses_count>"
        "<favourites_count>many</favourites_count><protected>true</protected>"
        "<profile_image_url>http://example.org/ü b%20c_normal.png?x=_normal.&amp;y</profile_image_url>");
    EXPECT_EQ(user->fullName(), u"Bob"_s);
    EXPECT_EQ(user->lowercaseUsername(), u"bob"_s);
    EXPECT_EQ(user->numberOfFollowers(), 12);
    EXPECT_EQ(user->numberOfFollowing(), -3);
    EXPECT_EQ(user->numberOfStatuses(), std::numeric_limits<qint32>::max());
    EXPECT_EQ(user->numberOfFavorites(), 0);
    EXPECT_FALSE(user->isProtected());
    EXPECT_FALSE(userFrom("<id>9</id>")->numberOfFollowers());
    EXPECT_EQ(user->profileImageURL().toEncoded(),
        "http://example.org/%C3%BC%20b%20c_normal.png?x=_normal.&y");
    EXPECT_EQ(user->largeProfileImageURL().toEncoded(), "http://example.org/%C3%BC%20b%20c.png?x=.&y");
    EXPECT_TRUE(TwitterUser().largeProfileImageURL().isEmpty());

    KRTestLog log;
    EXPECT_TRUE(userFrom("<url>http://[broken</url>")->url().isEmpty());
    EXPECT_EQ(log.lines(), QStringList(u"problem http://[broken"_s));
}

TEST(User, OrderAndEquality)
{
    const auto user = [](const QString& userID, const QString& username) {
        auto made = std::make_shared<TwitterUser>();
        made->setUserID(userID);
        made->setUsername(username);
        return made;
    };
    EXPECT_TRUE(user(u"1"_s, u"a"_s)->isEqual(*user(u"1"_s, u"b"_s)));
    EXPECT_TRUE(user(u"1"_s, u"a"_s)->isEqual(*user(u"2"_s, u"a"_s)));
    EXPECT_FALSE(user(u"1"_s, u"a"_s)->isEqual(*user(u"2"_s, u"A"_s)));
    EXPECT_FALSE(TwitterUser().isEqual(TwitterUser()));
    EXPECT_TRUE(user({}, u"Bob"_s)->compare(*user({}, u"alice"_s)) > 0);
    EXPECT_EQ(arrayWithoutDuplicates(
                  TwitterUserList { user(u"1"_s, u"a"_s), user(u"2"_s, u"a"_s), user(u"3"_s, u"b"_s) })
                  .size(),
        2);
}

class MergingUsers : public testing::Test {
protected:
    TwitterUserPtr user(const QString& userID, const QString& username, qint64 age)
    {
        auto made = std::make_shared<TwitterUser>();
        made->setUserID(userID);
        made->setUsername(username);
        made->setLastUpdated(m_clock.now().addSecs(-age));
        return made;
    }

    int notifications = 0;

private:
    KRManualClock m_clock;
    KRObservation m_observation
        = KRNotificationCenter::defaultCenter().observe<TwitterUserDidUpdateNotification>(
            [this](const TwitterUserDidUpdateNotification&) { ++notifications; });
};

TEST_F(MergingUsers, NewerDataOfTheSamePersonIsTakenOver)
{
    const TwitterUserPtr cached = user(u"1"_s, u"bob"_s, 10);
    cached->setBio(u"old"_s);
    cached->setNumberOfFollowers(3);
    const TwitterUserPtr fresh = user(u"1"_s, u"Robert"_s, 5);
    fresh->setLocation(u"here"_s);
    cached->assimilateUser(*fresh);
    EXPECT_EQ(cached->username(), u"Robert"_s);
    EXPECT_EQ(cached->fullName(), u"Robert"_s);
    EXPECT_EQ(cached->location(), u"here"_s);
    EXPECT_TRUE(cached->bio().isNull());
    EXPECT_FALSE(cached->numberOfFollowers());
    EXPECT_EQ(cached->lastUpdated(), fresh->lastUpdated());
    EXPECT_EQ(notifications, 1);
}

TEST_F(MergingUsers, OlderPartialAndForeignDataIsNot)
{
    const TwitterUserPtr cached = user(u"1"_s, u"bob"_s, 10);
    cached->assimilateUser(*cached);
    cached->assimilateUser(*user(u"1"_s, u"older"_s, 11));
    cached->assimilateUser(*user(u"1"_s, u"same"_s, 10));
    const TwitterUserPtr partial = user({}, u"BOB"_s, 0);
    partial->setIsPartialUser(true);
    cached->assimilateUser(*partial);
    EXPECT_EQ(cached->username(), u"bob"_s);
    EXPECT_EQ(notifications, 0);

    KRTestLog log;
    cached->assimilateUser(*user(u"2"_s, u"carol"_s, 0));
    user({}, {}, 10)->assimilateUser(*user({}, {}, 0));
    EXPECT_EQ(log.lines()
                  .filter(u"Warning: trying to assimilate users with different IDs or usernames, this "
                          "should never happen\n["_s)
                  .size(),
        2);
    EXPECT_EQ(notifications, 0);
}

} // namespace
