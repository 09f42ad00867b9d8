#include "KRTestAccount.h"

#include <cstdlib>
#include <random>

using AccountList = KRTestProgram;

TEST_F(AccountList, SurvivesBeingKilledAtAnyMoment)
{
    const QString path = m_directory.filePath(u"killed.ini"_s);
    std::minstd_rand random(7);
    // After so many savings and then some, which falls into the middle of one. By count and not by time, as a
    // busy machine starts a process as slowly as it likes.
    std::uniform_int_distribution savings(1, 10);
    std::uniform_int_distribution microseconds(1, 2'000);
    qsizetype longest = 0;
    for (int kill = 0; kill < 60; ++kill) {
        const QString program
            = u"exec " PELINOR_SAVE_ACCOUNTS_FOR_EVER " %1 %2 %3"_s.arg(path).arg(savings(random));
        ASSERT_EQ(std::system(qPrintable(program.arg(microseconds(random)))), SIGALRM);
        KRUserDefaults defaults(path);
        const Twitter twitter({ &defaults, TwitterServiceHosts(), false });
        ASSERT_FALSE(m_log.contains(u"cannot be read"_s)) << m_log.lines().join(u'\n').toStdString();
        longest = std::max(longest, twitter.accounts().size());
        for (qsizetype n = 0; n < twitter.accounts().size(); ++n)
            ASSERT_EQ(twitter.accounts().at(n)->username(), u"account%1"_s.arg(n));
    }
    EXPECT_GT(longest, 1) << "the kills came too early to prove anything";
}

TEST_F(AccountList, SetsUnreadableDataAsideAndStartsEmpty)
{
    const QByteArray garbage("bplist00 not ours \x00\x01", 20);
    m_defaults.setData("accounts", garbage);
    const auto twitter = makeTwitter();
    EXPECT_TRUE(twitter->accounts().isEmpty());
    add(*twitter, u"new"_s, u"pw"_s);
    EXPECT_EQ(m_defaults.dataForKey("accounts.unreadable"), garbage);
    EXPECT_EQ(makeTwitter()->accounts().size(), 1);
}

TEST_F(AccountList, WithoutASecretServicePasswordsLiveInMemory)
{
    // This program runs in a session bus without a Secret Service.
    const auto twitter = makeTwitter();
    for (const QString& name : { u"one"_s, u"two"_s })
        add(*twitter, name, u"pw"_s);
    EXPECT_EQ(twitter->accounts().first()->password(), u"pw"_s);
    EXPECT_TRUE(makeTwitter()->accounts().first()->password().isNull());
    EXPECT_FALSE(m_log.lines().join(u' ').contains(u"\"pw\""));
}
