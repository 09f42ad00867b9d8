#include "app/PelinorApplicationDelegate.h"
#include "app/look/PelinorProfileImage.h"
#include "app/window/PelinorErrorStrip.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTestLocalService.h"
#include "transport/KRHTTPConnection.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// The whole road: a real service over TLS, the engine, and the window that people see.

namespace {

constexpr int patience = 20'000;

class LiveWindow : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_service.isRunning());
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = m_service.authorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        const auto hosts = TwitterServiceHosts::hostsWithDefaults(m_defaults, m_service.servicesFile());
        ASSERT_FALSE(hosts.isError());
        m_twitter = std::make_shared<Twitter>(TwitterEnvironment { &m_defaults, hosts.value(), false });
        m_alice
            = TwitterAccount::accountWithUsername(u"alice"_s, u"wonderland"_s, m_twitter->accountContext());
        m_bob = TwitterAccount::accountWithUsername(u"bob"_s, u"builder"_s, m_twitter->accountContext());
        m_listAccount = std::make_unique<PelinorTwitterAccount>(m_alice);
        TwitterUser::setProfileImageMaker(&CreateRoundedProfileImage);
        m_window = std::make_unique<PelinorMainWindow>(PelinorListEnvironment { m_defaults,
                                                           KRNotificationCenter::defaultCenter(),
                                                           m_displayPreferences,
                                                           m_heights },
            *m_listAccount);
        m_window->show();
    }

    [[nodiscard]] qsizetype postCount() const { return m_alice->timelineStream()->storedStatuses().size(); }
    /// The row below the header.
    [[nodiscard]] TwitterStatusPtr topPost() { return m_window->list().statusForRow(1); }

    QTemporaryDir m_directory;
    KRQtRunLoopDriver m_driver;
    KRTestLocalService m_service;
    KRUserDefaults m_defaults { m_directory.filePath(u"pelinor.ini"_s) };
    PelinorDisplayPreferences m_displayPreferences;
    KRTextHeightCache m_heights;
    std::shared_ptr<Twitter> m_twitter;
    TwitterAccountPtr m_alice;
    TwitterAccountPtr m_bob;
    std::unique_ptr<PelinorTwitterAccount> m_listAccount;
    std::unique_ptr<PelinorMainWindow> m_window;
};

} // namespace

TEST_F(LiveWindow, ShowsTheTimelineAndWhatIsPostedAndWhatGoesWrong)
{
    m_alice->refresh();
    ASSERT_TRUE(QTest::qWaitFor([this] { return postCount() >= 100; }, patience));
    EXPECT_GT(m_window->list().tableView().visibleRange().length, 2);
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return topPost() && topPost()->fromUser()->profileImage() != nullptr; },
            patience))
        << "avatars come through the network cache";

    m_bob->update(u"written while the window is open \U0001f3d7"_s, {}, {});
    // Asking again is what the heartbeat does; the post may not be there the first time.
    ASSERT_TRUE(QTest::qWaitFor(
        [this] {
            m_alice->refresh();
            return topPost() && topPost()->text() == u"written while the window is open \U0001f3d7";
        },
        patience));
    EXPECT_TRUE(m_window->errorStrip().text().isEmpty());

    m_service.stop();
    // What was under way when the service went may still have arrived, and cleared an error.
    ASSERT_TRUE(QTest::qWaitFor(
        [this] {
            m_alice->refresh();
            return !m_window->errorStrip().text().isEmpty();
        },
        patience));
    EXPECT_TRUE(m_window->errorStrip().text().contains(u"127.0.0.1"));
    EXPECT_TRUE(m_window->errorStrip().isVisible());
    EXPECT_GE(postCount(), 100) << "a failed load loses nothing";
}
