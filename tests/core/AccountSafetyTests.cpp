#include "core/KRKeychain.h"
#include "core/Twitter.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTestLog.h"
#include "support/KRTestWait.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kills = 300;

TwitterEnvironment environmentWith(KRUserDefaults& defaults)
{
    return { &defaults, TwitterServiceHosts(), false };
}

/// The process that saves.
pid_t startSaving(const QString& path)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl(PELINOR_SAVE_ACCOUNTS_FOR_EVER, "save-accounts-for-ever", path.toUtf8().constData(), nullptr);
        ::_exit(127);
    }
    return child;
}

/// Microseconds from the start of such a process until it has saved something, which a slow machine or a
/// sanitizer make many; nothing if it never did.
std::optional<useconds_t> timeToFirstSaving(const QString& path)
{
    constexpr useconds_t step = 1'000;
    constexpr useconds_t limit = 20'000'000;
    const pid_t child = startSaving(path);
    useconds_t waited = 0;
    while (waited < limit && QFileInfo(path).size() == 0) {
        ::usleep(step);
        waited += step;
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    return waited < limit ? std::optional(waited) : std::nullopt;
}

} // namespace

TEST(AccountList, SurvivesBeingKilledAtAnyMoment)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"pelinor.ini"_s);
    std::minstd_rand random(7);
    const std::optional<useconds_t> start = timeToFirstSaving(path);
    ASSERT_TRUE(start);
    std::uniform_int_distribution<useconds_t> moment(*start / 2, *start + 40'000);
    qsizetype longest = 0;
    for (int i = 0; i < kills; ++i) {
        const pid_t child = startSaving(path);
        ASSERT_GE(child, 0);
        ::usleep(moment(random));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

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

TEST(AccountList, WithoutASecretServicePasswordsLiveInMemoryAndTheUserIsToldOnce)
{
    // This program runs in a session bus without a Secret Service.
    const QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(u"pelinor.ini"_s));
    int told = 0;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<KRKeychainUnavailableNotification>(
            [&](const auto&) { ++told; });
    KRTestLog log;
    Twitter twitter(environmentWith(defaults));
    for (const QString& name : { u"one"_s, u"two"_s })
        twitter.addAccount(TwitterAccount::accountWithUsername(name, u"pw"_s, twitter.accountContext()));
    EXPECT_EQ(twitter.accounts().first()->password(), u"pw"_s);
    const Twitter restored(environmentWith(defaults));
    EXPECT_TRUE(restored.accounts().first()->password().isNull());
    // Earlier tests of this process may have been the ones to hear it.
    EXPECT_TRUE(KRWaitUntil([] { return KRRunLoop::main().timeUntilNextWork() == std::nullopt; }));
    EXPECT_LE(told, 1);
    EXPECT_FALSE(log.lines().join(u' ').contains(u"\"pw\""));
}
