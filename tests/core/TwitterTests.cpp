#include "core/Twitter.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class TwitterTest : public testing::Test {
protected:
    std::unique_ptr<Twitter> makeTwitter(bool runsHeartbeat = false)
    {
        return std::make_unique<Twitter>(
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
    // Loads without a host fail at once, and say so; each refresh makes two of them.
    QMap<const void*, QString> owners;
    for (const TwitterAccountPtr& account : twitter->accounts())
        owners[account->timelineStream().get()] = account->username();
    std::mutex lock;
    QStringList refreshed;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>(
            [&](const TwitterStreamErrorNotification& notification) {
                std::scoped_lock guard(lock);
                if (owners.contains(notification.object))
                    refreshed.append(owners.value(notification.object));
            });
    const auto seen = [&] {
        std::scoped_lock guard(lock);
        return refreshed.join(u' ');
    };
    // The answers may pass through the background thread, which the manual clock does not hold back.
    const auto settle = [&](const QString& expected) {
        for (int i = 0; i < 2000 && seen() != expected; ++i)
            std::this_thread::sleep_for(1ms);
        return seen();
    };
    settle(u"a b c"_s);
    {
        std::scoped_lock guard(lock);
        refreshed.clear();
    }
    twitter->refresh();
    clock.advance(0s);
    EXPECT_EQ(settle(u"a"_s), u"a"_s);
    clock.advance(1999ms);
    EXPECT_EQ(seen(), u"a"_s);
    clock.advance(1ms);
    EXPECT_EQ(settle(u"a b"_s), u"a b"_s);
    clock.advance(2s);
    EXPECT_EQ(settle(u"a b c"_s), u"a b c"_s);
}

TEST_F(TwitterTest, KeepsTheAccountListInItsOrder)
{
    int changes = 0;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountsDidChangeNotification>(
            [&](const auto&) { ++changes; });
    struct Move {
        qsizetype from;
        qsizetype to;
        QString result;
    };
    const QString unchanged = u"a b c"_s;
    for (const Move& move : QList<Move> { { 0, 1, unchanged },
             { 1, 1, unchanged },
             { -1, 2, unchanged },
             { 3, 0, unchanged },
             { 0, 4, unchanged },
             { 1, -1, unchanged },
             { 0, 2, u"b a c"_s },
             { 2, 0, u"c a b"_s },
             { 0, 3, u"b c a"_s } }) {
        const auto twitter = makeTwitter();
        while (!twitter->accounts().isEmpty())
            twitter->removeAccount(twitter->accounts().first());
        addAccounts(*twitter, { u"a"_s, u"b"_s, u"c"_s });
        changes = 0;
        twitter->reorderAccountFromIndex(move.from, move.to);
        EXPECT_EQ(namesOf(*twitter), move.result);
        EXPECT_EQ(changes, move.result == unchanged ? 0 : 1);
        EXPECT_EQ(namesOf(*makeTwitter()), move.result) << "what is shown is saved";
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
