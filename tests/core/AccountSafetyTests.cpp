#include "core/Twitter.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTestLog.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kills = 60;

TwitterEnvironment environmentWith(KRUserDefaults& defaults)
{
    return { &defaults, TwitterServiceHosts(), false };
}

/// A process that saves accounts until it is killed, which the end of this value does.
class Saving {
public:
    explicit Saving(const QString& path)
    {
        int ends[2];
        if (::pipe(ends) != 0)
            return;
        m_progress = ends[0];
        m_process = ::fork();
        if (m_process == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::execl(PELINOR_SAVE_ACCOUNTS_FOR_EVER,
                "save-accounts-for-ever",
                path.toUtf8().constData(),
                nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
    }
    Saving(const Saving&) = delete;
    Saving& operator=(const Saving&) = delete;
    ~Saving()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
        ::close(m_progress);
    }

    /// Waits until so many lists have been saved; false when the process ended before.
    [[nodiscard]] bool waitFor(int savings) const
    {
        char byte = 0;
        while (savings > 0 && ::read(m_progress, &byte, 1) == 1)
            --savings;
        return savings == 0;
    }

private:
    int m_progress = -1;
    pid_t m_process = -1;
};

} // namespace

TEST(AccountList, SurvivesBeingKilledAtAnyMoment)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"pelinor.ini"_s);
    std::minstd_rand random(7);
    // After so many savings and then some, which falls into the middle of one. By count and not by time, as a
    // busy machine starts a process as slowly as it likes.
    std::uniform_int_distribution savings(0, 9);
    std::uniform_int_distribution<useconds_t> moment(0, 2'000);
    qsizetype longest = 0;
    for (int i = 0; i < kills; ++i) {
        {
            const Saving child(path);
            ASSERT_TRUE(child.waitFor(savings(random)));
            ::usleep(moment(random));
        }
        KRTestLog log;
        KRUserDefaults defaults(path);
        const Twitter twitter(environmentWith(defaults));
        ASSERT_FALSE(log.contains(u"cannot be read"_s)) << log.lines().join(u'\n').toStdString();
        longest = std::max(longest, twitter.accounts().size());
        for (qsizetype n = 0; n < twitter.accounts().size(); ++n)
            ASSERT_EQ(twitter.accounts().at(n)->username(), u"account%1"_s.arg(n));
    }
    EXPECT_GT(longest, 1) << "the kills came too early to prove anything";
}

TEST(AccountList, SetsUnreadableDataAsideAndStartsEmpty)
{
    const QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(u"pelinor.ini"_s));
    const QByteArray garbage("bplist00 not ours \x00\x01", 20);
    defaults.setData("accounts", garbage);
    KRTestLog log;
    Twitter twitter(environmentWith(defaults));
    EXPECT_TRUE(twitter.accounts().isEmpty());
    twitter.addAccount(TwitterAccount::accountWithUsername(u"new"_s, u"pw"_s, twitter.accountContext()));
    EXPECT_EQ(defaults.dataForKey("accounts.unreadable"), garbage);
    EXPECT_EQ(Twitter(environmentWith(defaults)).accounts().size(), 1);
}

TEST(AccountList, WithoutASecretServicePasswordsLiveInMemory)
{
    // This program runs in a session bus without a Secret Service.
    const QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(u"pelinor.ini"_s));
    KRTestLog log;
    Twitter twitter(environmentWith(defaults));
    for (const QString& name : { u"one"_s, u"two"_s })
        twitter.addAccount(TwitterAccount::accountWithUsername(name, u"pw"_s, twitter.accountContext()));
    EXPECT_EQ(twitter.accounts().first()->password(), u"pw"_s);
    const Twitter restored(environmentWith(defaults));
    EXPECT_TRUE(restored.accounts().first()->password().isNull());
    EXPECT_FALSE(log.lines().join(u' ').contains(u"\"pw\""));
}
