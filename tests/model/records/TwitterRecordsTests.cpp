#include "foundation/KRKeyedArchiver.h"
#include "model/records/KRTestRecords.h"
#include "support/KRTest.h"
#include "text/KRArrayAdditions.h"

#include <random>

using namespace KRAdditions;

namespace {

TwitterStatusPtr statusFrom(const QByteArray& xml)
{
    return TwitterStatus::statusWithXML(xml).value();
}

TwitterUserPtr userFrom(const QByteArray& xml)
{
    return TwitterUser::userWithXML("<user>" + xml + "</user>").value();
}

TEST(Status, ElementsAreReadIgnoredOrSkipped)
{
    const TwitterStatusPtr bare
        = statusFrom("<status><id> 7 </id><text/><created_at>soon</created_at><in_reply_to_status_id>  "
                     "</in_reply_to_status_id></status>");
    EXPECT_EQ(bare->statusID(), u"7"_s);
    EXPECT_EQ(bare->text(), u""_s);
    EXPECT_FALSE(bare->text().isNull());
    EXPECT_TRUE(bare->inReplyToStatusID().isNull());
    EXPECT_EQ(bare->originalDateString(), u"soon"_s);
    EXPECT_FALSE(bare->date().isValid());
    EXPECT_FALSE(bare->fromUser());

    const TwitterStatusPtr nested = statusFrom(
        "<status><geo><id>1</id></geo><id>2</id><ns:any><user><id>3</id></user></ns:any><user><id>4</id>"
        "<status><id>5</id></status></user><source><text>inside</text></source></status>");
    EXPECT_EQ(nested->statusID(), u"2"_s) << "an unknown element is skipped with its content";
    EXPECT_EQ(nested->fromUser()->userID(), u"4"_s);
    EXPECT_EQ(nested->text(), u"inside"_s) << "an ignored one is not";
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

template <class Make>
void expectOrderAndEquality(Make make)
{
    using Record = typename decltype(make(QString(), QDateTime()))::element_type;
    const auto on = [&](const char16_t* id, int day) {
        return make(QString::fromUtf16(id), QDate(2026, 1, day).startOfDay());
    };
    // The later date first, of one date the higher ID, as a number of any length.
    const QList<std::shared_ptr<Record>> sorted { on(u"3", 3),
        on(u"123456789012345678901234567890", 1),
        on(u"123456789012345678901234567889", 1),
        on(u"10", 1),
        on(u"009", 1),
        on(u"2", 1),
        on(u"99", 0),
        on(u"7", 0) };
    QList<std::shared_ptr<Record>> shuffled = sorted;
    for (int i = 0; i < 20; ++i) {
        std::shuffle(shuffled.begin(), shuffled.end(), std::minstd_rand(static_cast<unsigned>(i)));
        EXPECT_EQ(sortedArray(shuffled), sorted);
    }
    EXPECT_TRUE(on(u"", 1)->compare(*on(u"1", 1)) > 0) << "without an ID last";
    EXPECT_EQ(arrayWithoutDuplicates(sorted + QList { on(u"10", 5), on(u"11", 1) }).size(), 9);
    // Without an ID only the same object is equal.
    const auto nameless = on(nullptr, 1);
    EXPECT_TRUE(nameless->isEqual(*nameless));
    EXPECT_FALSE(nameless->isEqual(*on(nullptr, 1)) || nameless->isEqual(*on(u"1", 1)));
    EXPECT_EQ(arrayWithoutDuplicates(QList { nameless, nameless, on(nullptr, 1) }).size(), 2);
}

TEST(Records, OrderAndEquality)
{
    expectOrderAndEquality(
        [](const QString& id, const QDateTime& date) { return KRTestStatus(id, {}, date); });
    expectOrderAndEquality(
        [](const QString& id, const QDateTime& date) { return KRTestMessage(id, {}, {}, date); });
    TwitterDirectMessage message;
    message.setText(u"now @bob"_s);
    EXPECT_EQ(message.activeTextRanges().activeRanges(), (KRRangeList { { 4, 4 } }));
}

TEST(Status, ArchivesItsIDAlone)
{
    TwitterStatus status;
    status.setText(u"not kept"_s);
    for (const QString& statusID : { QString(), u"123"_s }) {
        status.setStatusID(statusID);
        KRKeyedArchiver archiver;
        status.encodeWithCoder(archiver);
        const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
        EXPECT_EQ(coder.value().contains("statusID"_L1), !statusID.isNull());
        const TwitterStatusPtr restored = TwitterStatus::statusWithCoder(coder.value());
        EXPECT_EQ(restored->statusID(), statusID);
        EXPECT_EQ(restored->text(), u""_s);
    }
}

TEST(Status, PageOnTheWebSite)
{
    TwitterStatus status;
    status.setStatusID(u"42"_s);
    const QString root = u"https://example.org/social/"_s;
    EXPECT_TRUE(status.twitterURL(root).isEmpty());
    status.setFromUser(KRTestUser({}, u"b%2/ö"_s));
    EXPECT_EQ(status.twitterURL(root).toEncoded(), "https://example.org/social/b%252%2F%C3%B6/status/42");
    EXPECT_TRUE(status.twitterURL({}).isEmpty());
    status.setStatusID({});
    EXPECT_TRUE(status.twitterURL(root).isEmpty());
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
    const auto& user = KRTestUser;
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

TEST(User, TakesOverNewerDataOfTheSamePersonAlone)
{
    KRManualClock clock;
    KRTestCounter<TwitterUserDidUpdateNotification> notifications;
    const auto user = [&](const QString& userID, const QString& username, qint64 age) {
        const TwitterUserPtr made = KRTestUser(userID, username);
        made->setLastUpdated(clock.now().addSecs(-age));
        return made;
    };
    const TwitterUserPtr cached = user(u"1"_s, u"bob"_s, 10);
    cached->setBio(u"old"_s);
    cached->setNumberOfFollowers(3);
    cached->assimilateUser(*cached);
    cached->assimilateUser(*user(u"1"_s, u"older"_s, 11));
    cached->assimilateUser(*user(u"1"_s, u"same"_s, 10));
    const TwitterUserPtr partial = user({}, u"BOB"_s, 0);
    partial->setIsPartialUser(true);
    cached->assimilateUser(*partial);
    KRTestLog log;
    cached->assimilateUser(*user(u"2"_s, u"carol"_s, 0));
    user({}, {}, 10)->assimilateUser(*user({}, {}, 0));
    EXPECT_EQ(cached->username(), u"bob"_s);
    EXPECT_EQ(notifications.count, 0);
    const QString warning
        = u"Warning: trying to assimilate users with different IDs or usernames, this should "
          "never happen\n["_s;
    EXPECT_EQ(log.lines().filter(warning).size(), 2);

    const TwitterUserPtr ahead = user(u"1"_s, u"bob"_s, -3600);
    ahead->assimilateUser(*user(u"1"_s, u"robert"_s, 10));
    EXPECT_EQ(ahead->username(), u"robert"_s) << "made under a clock that has been put right since";
    EXPECT_EQ(notifications.count.exchange(0), 1);

    // Everything is taken over, also that something is no longer there.
    const auto fieldsOf = [](const TwitterUser& one) {
        const auto count = [](std::optional<qint32> number) { return QString::number(number.value_or(-1)); };
        QStringList fields { one.userID(), one.username(), one.fullName(), one.location(), one.bio() };
        fields << one.url().toString() << one.profileImageURL().toString() << one.lastUpdated().toString();
        fields << count(one.isPartialUser()) << count(one.isProtected()) << count(one.numberOfFollowers());
        fields << count(one.numberOfFollowing()) << count(one.numberOfStatuses());
        return (fields << count(one.numberOfFavorites())).join(u'|');
    };
    const TwitterUserPtr fresh = user(u"1"_s, u"Robert"_s, 5);
    fresh->setFullName(u"Robert R."_s);
    fresh->setLocation(u"here"_s);
    fresh->setUrl(QUrl(u"http://r"_s));
    fresh->setProfileImageURL(QUrl(u"http://r/p"_s));
    fresh->setIsProtected(true);
    fresh->setNumberOfFollowing(4);
    fresh->setNumberOfStatuses(5);
    fresh->setNumberOfFavorites(6);
    cached->assimilateUser(*fresh);
    EXPECT_EQ(fieldsOf(*cached), fieldsOf(*fresh));
    EXPECT_EQ(notifications.count, 1);
}

} // namespace
