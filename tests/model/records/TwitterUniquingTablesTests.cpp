#include "model/records/KRTestRecords.h"
#include "model/records/TwitterUniquingTables.h"
#include "support/KRTest.h"
#include "text/KRArrayAdditions.h"

namespace {

class UniquingTables : public testing::Test {
protected:
    // Each person made is newer than those before.
    TwitterUserPtr user(const QString& userID, const QString& username)
    {
        m_clock.advance(1s);
        auto made = KRTestUser(userID, username);
        made->setIsPartialUser(userID.isNull());
        return made;
    }

    KRManualClock m_clock;
    KRTestLog m_log;
    TwitterUniquingTables m_tables;
};

struct DummyStatus : TwitterStatus {
    bool isNotADummyStatus() const override { return false; }
};

TEST_F(UniquingTables, APersonIsOneRecord)
{
    const TwitterUserPtr bob = m_tables.definitiveUser(user(u"1"_s, u"Bob"_s));
    EXPECT_EQ(m_tables.definitiveUser(bob), bob);
    EXPECT_EQ(m_tables.definitiveUser(user(u"1"_s, u"Bob"_s)), bob);
    EXPECT_EQ(m_tables.definitiveUser(user({}, u"bOB"_s)), bob);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"BOB"_s), bob);
    EXPECT_FALSE(m_tables.cachedUserWithID({}) || m_tables.cachedUserWithUsername({}));

    // Known from a search first, in full later.
    const TwitterUserPtr carol = m_tables.definitiveUser(user({}, u"carol"_s));
    EXPECT_FALSE(m_tables.cachedUserWithID(u"2"_s));
    EXPECT_EQ(m_tables.definitiveUser(user(u"2"_s, u"Carol"_s)), carol);
    EXPECT_FALSE(carol->isPartialUser());
    EXPECT_EQ(m_tables.cachedUserWithID(u"2"_s), carol);
    EXPECT_TRUE(m_log.lines().isEmpty());
}

TEST_F(UniquingTables, ARenamedPersonIsFoundUnderBothNames)
{
    const TwitterUserPtr bob = m_tables.definitiveUser(user(u"1"_s, u"bob"_s));
    EXPECT_EQ(m_tables.definitiveUser(user(u"1"_s, u"Robert"_s)), bob);
    EXPECT_EQ(bob->username(), u"Robert"_s);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"bob"_s), bob);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"robert"_s), bob);
    // A search index that still knows the former name.
    EXPECT_EQ(m_tables.definitiveUser(user({}, u"bob"_s)), bob);
    EXPECT_EQ(bob->username(), u"Robert"_s);
    EXPECT_EQ(m_tables.cachedUsers(), TwitterUserList { bob });
    EXPECT_EQ(m_tables.usersStartingWith({}), TwitterUserList { bob });
    EXPECT_TRUE(m_tables.usersStartingWith(u"bo"_s).isEmpty());

    // Somebody else takes the former name.
    const TwitterUserPtr other = user(u"2"_s, u"bob"_s);
    EXPECT_EQ(m_tables.definitiveUser(other), other);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"bob"_s), other);
    EXPECT_EQ(m_tables.cachedUserWithID(u"1"_s), bob);
    EXPECT_TRUE(m_log.lines().isEmpty()) << qPrintable(m_log.lines().join(u'\n'));
}

TEST_F(UniquingTables, TwoRecordsThatTurnOutToBeOnePersonBecomeOne)
{
    const TwitterUserPtr bob = m_tables.definitiveUser(user(u"1"_s, u"bob"_s));
    const TwitterUserPtr found = m_tables.definitiveUser(user({}, u"robert"_s));
    const TwitterStatusPtr post = m_tables.definitiveStatus(KRTestStatus(u"10"_s, found));
    const TwitterDirectMessagePtr note = m_tables.definitiveMessage(KRTestMessage(u"20"_s, found, bob));
    EXPECT_EQ(m_tables.definitiveUser(user(u"1"_s, u"robert"_s)), bob);
    EXPECT_EQ(post->fromUser(), bob);
    EXPECT_EQ(note->sender(), bob);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"robert"_s), bob);
    EXPECT_EQ(found->userID(), u"1"_s);

    // With an ID of its own the other record is another person, whose name has been taken.
    const TwitterUserPtr dave = m_tables.definitiveUser(user(u"3"_s, u"dave"_s));
    EXPECT_EQ(m_tables.definitiveUser(user(u"1"_s, u"dave"_s)), bob);
    EXPECT_EQ(m_tables.cachedUserWithUsername(u"dave"_s), bob);
    EXPECT_EQ(m_tables.cachedUserWithID(u"3"_s), dave);
    EXPECT_EQ(dave->userID(), u"3"_s);
}

TEST_F(UniquingTables, AStatusKeepsTheDataItArrivedWith)
{
    const auto first = KRTestStatus(u"10"_s, user(u"1"_s, u"bob"_s), {}, u"first"_s);
    EXPECT_EQ(m_tables.definitiveStatus(first), first);
    const TwitterUserPtr secondAuthor = user(u"1"_s, u"bob"_s);
    const auto second = KRTestStatus(u"10"_s, secondAuthor, {}, u"second"_s);
    EXPECT_EQ(m_tables.definitiveStatus(second), first);
    EXPECT_EQ(first->text(), u"first"_s);
    EXPECT_EQ(second->fromUser(), secondAuthor);
    // Another status of the same person shares the record.
    const TwitterStatusPtr third = m_tables.definitiveStatus(KRTestStatus(u"11"_s, user(u"1"_s, u"bob"_s)));
    EXPECT_EQ(third->fromUser(), first->fromUser());

    const auto dummy = std::make_shared<DummyStatus>();
    dummy->setStatusID(u"12"_s);
    EXPECT_EQ(m_tables.definitiveStatus(dummy), dummy);
    EXPECT_FALSE(m_tables.cachedStatusWithID(u"12"_s));
    EXPECT_TRUE(m_log.lines().isEmpty());
    // Two statuses without an ID stay two.
    const TwitterStatusPtr nameless = KRTestStatus({}, user(u"1"_s, u"bob"_s));
    EXPECT_EQ(m_tables.definitiveStatus(nameless), nameless);
    EXPECT_NE(m_tables.definitiveStatus(KRTestStatus({}, user(u"1"_s, u"bob"_s))), nameless);
}

TEST_F(UniquingTables, MessagesShareTheirPeople)
{
    const TwitterDirectMessagePtr first = KRTestMessage(u"1"_s, user(u"1"_s, u"a"_s), user(u"2"_s, u"b"_s));
    const TwitterDirectMessagePtr answer = KRTestMessage(u"2"_s, user(u"2"_s, u"b"_s), user(u"1"_s, u"a"_s));
    EXPECT_EQ(m_tables.definitiveDirectMessages({ first, answer, KRTestMessage(u"1"_s, nullptr, nullptr) }),
        (TwitterDirectMessageList { first, answer, first }));
    EXPECT_EQ(first->sender(), answer->recipient());
    EXPECT_EQ(first->recipient(), answer->sender());
}

TEST_F(UniquingTables, NothingGivesNothingAndALineInTheLog)
{
    EXPECT_FALSE(m_tables.definitiveUser(nullptr) || m_tables.definitiveStatus(nullptr));
    EXPECT_FALSE(m_tables.definitiveMessage(nullptr));
    EXPECT_FALSE(m_tables.definitiveMessage(KRTestMessage({}, user(u"1"_s, u"a"_s), user(u"2"_s, u"b"_s))));
    EXPECT_EQ(m_log.lines(),
        (QStringList { u"nil user"_s, u"nil status"_s, u"nil message"_s, u"nil message"_s }));
    EXPECT_TRUE(m_tables.definitiveUsers({ nullptr }).isEmpty());
}

TEST_F(UniquingTables, CompletionListsPeopleByName)
{
    m_tables.definitiveUsers(
        { user(u"1"_s, u"bob"_s), user(u"2"_s, u"alice"_s), user({}, u"Alan"_s), user(u"3"_s, u"aLbert"_s) });
    const auto names = [&](const QString& prefix) {
        return QStringList(
            KRAdditions::mapFunction(m_tables.usersStartingWith(prefix), &TwitterUser::username));
    };
    EXPECT_EQ(names(u"AL"_s), (QStringList { u"Alan"_s, u"aLbert"_s, u"alice"_s }));
    EXPECT_EQ(names(u""_s).size(), 4);
    EXPECT_EQ(m_tables.cachedUsers().size(), 3);
}

} // namespace
