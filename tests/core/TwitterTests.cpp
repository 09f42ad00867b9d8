#include "core/Twitter.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "transport/KRBackgroundThread.h"

#include <QTemporaryDir>

#include <future>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class TwitterTest : public testing::Test {
protected:
    std::shared_ptr<Twitter> makeTwitter(bool runsHeartbeat = false)
    {
        return std::make_shared<Twitter>(
            TwitterEnvironment { &m_defaults, TwitterServiceHosts(), runsHeartbeat });
    }
    static void addAccounts(Twitter& twitter, const QStringList& names)
    {
        for (const QString& name : names)
            twitter.addAccount(TwitterAccount::accountWithUsername(name, u"pw"_s, twitter.accountContext()));
    }
    static QString namesOf(const Twitter& twitter)
    {
        QStringList names;
        for (const TwitterAccountPtr& account : twitter.accounts())
            names.append(account->username());
        return names.join(u' ');
    }

    KRTestLog m_log;
    QTemporaryDir m_directory;
    KRUserDefaults m_defaults { m_directory.filePath(u"pelinor.ini"_s) };
};

} // namespace

TEST_F(TwitterTest, BeatsAfterThreeSecondsAndThenEverySixMinutes)
{
    KRManualClock clock;
    QList<qint64> beats;
    const auto start = clock.monotonicNow();
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterHeartbeatNotification>(
            [&](const auto&) { beats.append((clock.monotonicNow() - start) / 1s); });
    const auto twitter = makeTwitter(true);
    clock.advance(1000s);
    EXPECT_EQ(beats, (QList<qint64> { 3, 360, 720 }));
    EXPECT_FALSE(twitter->hasFreshAnythingApplicableToDockBadge());
    EXPECT_FALSE(twitter->hasFreshAnythingApplicableToStatusItem());
}

TEST_F(TwitterTest, RefreshesAccountsTwoSecondsApart)
{
    KRManualClock clock;
    const auto twitter = makeTwitter();
    addAccounts(*twitter, { u"a"_s, u"b"_s, u"c"_s });
    // Loads without a host fail at once on the background thread, and say so; those that adding began are
    // over.
    std::promise<void> areOver;
    performOnSharedBackgroundThread([&] { areOver.set_value(); });
    areOver.get_future().wait();
    QMap<const void*, QString> owners;
    for (const TwitterAccountPtr& account : twitter->accounts())
        owners[account->timelineStream().get()] = account->username();
    std::mutex lock;
    QString refreshed;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>([&](const auto& one) {
              std::scoped_lock guard(lock);
              refreshed += owners.value(one.object);
          });
    const auto seen = [&] {
        std::scoped_lock guard(lock);
        return refreshed;
    };
    // The answers may pass through the background thread, which the manual clock does not hold back.
    const auto settle = [&](const QString& expected) {
        for (int i = 0; i < 2000 && seen() != expected; ++i)
            std::this_thread::sleep_for(1ms);
        return seen();
    };
    twitter->refresh();
    clock.advance(0s);
    EXPECT_EQ(settle(u"a"_s), u"a"_s);
    clock.advance(1999ms);
    EXPECT_EQ(seen(), u"a"_s);
    clock.advance(1ms);
    EXPECT_EQ(settle(u"ab"_s), u"ab"_s);
    clock.advance(2s);
    EXPECT_EQ(settle(u"abc"_s), u"abc"_s);
}

TEST_F(TwitterTest, KeepsTheAccountListInItsOrder)
{
    int changes = 0;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountsDidChangeNotification>(
            [&](const auto&) { ++changes; });
    const QString unchanged = u"a b c"_s;
    struct Move {
        qsizetype from, to;
        const char16_t* result = u"a b c";
    };
    const Move none[] = { { 0, 1 }, { 1, 1 }, { -1, 2 }, { 3, 0 }, { 0, 4 }, { 1, -1 } };
    QList<Move> moves { { 0, 2, u"b a c" }, { 2, 0, u"c a b" }, { 0, 3, u"b c a" } };
    std::copy(std::begin(none), std::end(none), std::back_inserter(moves));
    for (const Move& move : moves) {
        const QString result = QString::fromUtf16(move.result);
        const auto twitter = makeTwitter();
        while (!twitter->accounts().isEmpty())
            twitter->removeAccount(twitter->accounts().first());
        addAccounts(*twitter, { u"a"_s, u"b"_s, u"c"_s });
        changes = 0;
        twitter->reorderAccountFromIndex(move.from, move.to);
        EXPECT_EQ(namesOf(*twitter), result);
        EXPECT_EQ(changes, result == unchanged ? 0 : 1);
        EXPECT_EQ(namesOf(*makeTwitter()), result) << "what is shown is saved";
        EXPECT_TRUE(twitter->containsAccount(
            TwitterAccount::accountWithUsername(u"B"_s, u""_s, twitter->accountContext())));
    }
}

TEST_F(TwitterTest, AnnouncesANewAccountBeforeItIsRefreshed)
{
    const auto twitter = makeTwitter();
    const TwitterAccountPtr account
        = TwitterAccount::accountWithUsername(u"a"_s, u"pw"_s, twitter->accountContext());
    bool wasLoading = true;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountsDidChangeNotification>(
            [&](const auto&) { wasLoading = account->timelineStream()->isLoadingNewer(); });
    twitter->addAccount(account);
    EXPECT_FALSE(wasLoading);
}
