#include "app/PelinorSeenPicture.h"
#include "app/lists/PelinorListFakes.h"
#include "app/lists/PelinorRepliesListViewController.h"
#include "app/window/PelinorGoToUserPanel.h"
#include "app/window/PelinorMainWindowController.h"
#include "app/window/PelinorProgressIndicator.h"
#include "app/window/PelinorStatusStrip.h"
#include "app/window/PelinorWindowStatus.h"
#include "core/Twitter.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"
#include "toolkit/transitions/KRMotion.h"
#include "transport/KRHTTPRequest.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class PelinorMainWindowControllerTest : public testing::Test, protected FakeSurroundings {
protected:
    PelinorMainWindowControllerTest()
    {
        KRMotion::setEnabledByProgram(false);
        for (const QString& name : { u"alice"_s, u"bob"_s })
            twitter->addAccount(TwitterAccount::accountWithUsername(name, u"x"_s, twitter->accountContext()));
    }
    ~PelinorMainWindowControllerTest() override { KRMotion::setEnabledByProgram(true); }

    std::unique_ptr<PelinorMainWindowController> makeWindow()
    {
        auto window = std::make_unique<PelinorMainWindowController>(environment, *twitter);
        window->window().menuBar()->addAction(u"Menu"_s);
        window->showWindow();
        firstContent = window->window().centralWidget()->geometry();
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->topViewController() != nullptr; }))
            << "screens follow the window's first painting";
        return window;
    }
    static QString autosaveName(const PelinorMainWindowController& window)
    {
        auto* const list = window.topList();
        return list ? list->autosaveName() : QString();
    }

    KRManualClock clock;
    // Where the content was when the window had not been painted yet.
    QRect firstContent;
    std::shared_ptr<Twitter> twitter
        = std::make_shared<Twitter>(TwitterEnvironment { &defaults, TwitterServiceHosts(), false });
};

TEST_F(PelinorMainWindowControllerTest, ShowsTheSelectedTabOfTheSelectedAccount)
{
    const auto window = makeWindow();
    EXPECT_EQ(window->window().windowTitle(), u"Pelinor"_s);
    EXPECT_EQ(autosaveName(*window), u"alice_____timeline"_s);
    EXPECT_EQ(window->window().focusWidget(), &window->topList()->tableView());
    const QRect whole = window->window().centralWidget()->rect();
    EXPECT_EQ(window->mainViewRect(), QRect(60, 0, whole.width() - 60, whole.height() - 22));
    EXPECT_EQ(window->switcher().currentViewController()->view()->geometry(), window->mainViewRect());
    EXPECT_EQ(window->statusStrip().geometry(), QRect(60, whole.height() - 22, whole.width() - 60, 22));
    window->window().setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(window->mainViewRect(), QRect(0, 0, whole.width() - 60, whole.height() - 22));
    window->window().setLayoutDirection(Qt::LeftToRight);

    window->selectReplies();
    EXPECT_EQ(autosaveName(*window), u"alice_____mentions"_s);
    window->selectNextAccount();
    EXPECT_EQ(autosaveName(*window), u"bob_____timeline"_s);
    window->selectPreviousAccount();
    EXPECT_EQ(autosaveName(*window), u"alice_____mentions"_s) << "each account has its own tab";
    window->selectDirectMessages();
    EXPECT_EQ(window->topViewController()->navigationItem()->title(), u"Direct Messages"_s);
    window->selectSearch();
    EXPECT_EQ(window->topViewController()->navigationItem()->title(), u"Searches"_s);
    EXPECT_EQ(window->topList(), nullptr);

    KRTestLog log;
    window->selectAccount(window->selectedTwitterAccount(), 7, false, 0, false);
    EXPECT_TRUE(log.contains(u"Warning: unknown tab selected 7"_s));
    window->selectAccount(window->selectedTwitterAccount(), 4, false, 0, false);
    EXPECT_EQ(screens.taken(), u"user alice "_s);

    // A rebuilt list starts with its first account's timeline.
    window->selectNextAccount();
    twitter->removeAccount(twitter->accounts().first());
    center.post(TwitterAccountsDidChangeNotification {});
    EXPECT_EQ(autosaveName(*window), u"bob_____timeline"_s);
    twitter->removeAccount(twitter->accounts().first());
    center.post(TwitterAccountsDidChangeNotification {});
    EXPECT_EQ(window->selectedTwitterAccount(), nullptr);
    EXPECT_EQ(window->topList(), nullptr);
    bool wantsAccount = false;
    window->setAddAccountHandler([&] { wantsAccount = true; });
    window->window().findChild<QPushButton*>(u"addAccountButton"_s)->click();
    EXPECT_TRUE(wantsAccount);
}

TEST_F(PelinorMainWindowControllerTest, ReturnGoesToTheUserOnce)
{
    PelinorGoToUserPanel panel(nullptr);
    QStringList chosen;
    QObject::connect(&panel, &PelinorGoToUserPanel::userChosen, [&](const QString& name) { chosen += name; });
    for (const QString& typed : { u"dora"_s, u"carol"_s }) {
        panel.goToUser({ u"carol"_s, u"caroline"_s });
        ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
        QLineEdit* const field = panel.comboBox().lineEdit();
        QTest::keyClicks(field, typed);
        QWidget* const proposals = panel.comboBox().completer()->popup();
        EXPECT_EQ(proposals->isVisible(), typed == u"carol");
        QTest::keyClick(proposals->isVisible() ? proposals : field, Qt::Key_Return);
        EXPECT_FALSE(panel.isVisible());
    }
    EXPECT_EQ(chosen, QStringList({ u"dora"_s, u"carol"_s }));
}

TEST_F(PelinorMainWindowControllerTest, GoesToPeopleAndBackToTheRoot)
{
    // Whom another site knows is nobody here.
    for (const QString& name : { u"carol"_s, u"stranger"_s }) {
        TwitterSite site;
        site.hosts.setValueForKey(name + u".example"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
        twitter->accountContextForSite(site).tables->definitiveUser(makeUser(name));
    }
    const auto window = makeWindow();
    for (const QString& typed : { u"nobody"_s, QString(), u"@carol "_s }) {
        window->goToUser();
        auto* const panel = window->window().findChild<PelinorGoToUserPanel*>();
        ASSERT_NE(panel, nullptr);
        EXPECT_EQ(panel->comboBox().currentText(), QString());
        EXPECT_EQ(panel->focusWidget(), &panel->comboBox());
        panel->findChild<QPushButton*>()->setFocus();
        EXPECT_EQ(panel->comboBox().count(), 1);
        panel->comboBox().setEditText(typed);
        if (typed == u"nobody")
            panel->goToUserCancel();
        else
            panel->goToUserAction();
        EXPECT_FALSE(panel->isVisible());
    }
    EXPECT_EQ(screens.taken(), u"user carol "_s);
    window->myProfile();
    EXPECT_EQ(screens.taken(), u"user alice "_s);
    const auto navigation = window->switcher().currentNavigationController();
    EXPECT_EQ(navigation->viewControllers().size(), 3U);
    // The selected tab once more.
    window->sideTabs().click(window->sideTabs().selectedPlace());
    EXPECT_EQ(navigation->viewControllers().size(), 1U);
}

TEST_F(PelinorMainWindowControllerTest, RemembersWhereItWas)
{
    auto window = makeWindow();
    window->window().resize(10, 10);
    EXPECT_GE(window->window().width(), 400);
    window->window().resize(555, 666);
    window->selectNextAccount();
    window->selectReplies();
    bool mayClose = false;
    window->setShouldClose([&] { return mayClose; });
    EXPECT_FALSE(window->window().close());
    mayClose = true;
    EXPECT_TRUE(window->window().close());
    window = makeWindow();
    EXPECT_EQ(window->window().size(), QSize(555, 666));
    EXPECT_EQ(window->window().centralWidget()->geometry(), firstContent) << "the menus had their room";
    EXPECT_EQ(firstContent, QRect(0, firstContent.y(), 555, 666 - firstContent.y()));
    EXPECT_GT(firstContent.y(), 0);
    EXPECT_EQ(autosaveName(*window), u"bob_____mentions"_s);

    window.reset();
    defaults.setData("MainWindowGeometry", "not a geometry");
    defaults.setString("MainWindowSelectedAccount", u"somebody who has gone"_s);
    defaults.setInteger("MainWindowSelectedTab", 99);
    window = makeWindow();
    EXPECT_EQ(autosaveName(*window), u"alice_____timeline"_s);
    EXPECT_EQ(window->window().size(), QSize(480, 760));
}

TEST_F(PelinorMainWindowControllerTest, ErrorsStayForFourSecondsAndNoticesUntilTheyAreRead)
{
    const auto window = makeWindow();
    clock.advance(std::chrono::seconds(5));
    PelinorStatusStrip& strip = window->statusStrip();
    const auto* const button = strip.findChild<QToolButton*>(u"errorButton"_s);
    ASSERT_EQ(strip.error(), QString());
    const auto fail = [&](const QString& description) {
        std::thread([&] {
            center.post(TwitterStreamErrorNotification { nullptr, { u"test"_s, 503, description } });
        }).join();
        clock.advance(std::chrono::seconds(0));
    };
    fail(u"<b>Over\ncapacity</b>"_s);
    EXPECT_EQ(strip.error(), u"<b>Over capacity</b>"_s);
    EXPECT_EQ(strip.findChild<QLabel*>(u"errorField"_s)->textFormat(), Qt::PlainText);
    EXPECT_TRUE(button->isVisible());
    center.post(TwitterStreamDidUpdateNotification {});
    clock.advance(std::chrono::milliseconds(3999));
    EXPECT_TRUE(button->isVisible()) << "nothing but time clears it";
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_FALSE(button->isVisible());
    EXPECT_EQ(strip.error(), QString());
    fail(u"word "_s.repeated(5000));
    EXPECT_EQ(strip.error().size(), 300);
    fail(QString());
    EXPECT_EQ(strip.error(), QString()) << "there is nothing to read";

    auto* const notice = strip.findChild<QToolButton*>(u"noticeButton"_s);
    EXPECT_FALSE(notice->isVisible() || notice->icon().isNull() || button->icon().isNull());
    strip.setNotice(u"Short"_s, u"The whole of it"_s);
    clock.advance(std::chrono::seconds(60));
    ASSERT_TRUE(notice->isVisible());
    notice->click();
    EXPECT_FALSE(notice->isVisible());
    const auto* const box = window->window().findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->informativeText(), u"The whole of it"_s);

    EXPECT_FALSE(strip.progressIndicator().isAnimating());
    center.post(KRBeginNetworkActivityNotification {});
    clock.advance(std::chrono::seconds(0));
    EXPECT_TRUE(strip.progressIndicator().isVisible() && strip.progressIndicator().isAnimating());
    EXPECT_EQ(strip.progressIndicator().width(), strip.progressIndicator().height());
    center.post(KREndNetworkActivityNotification {});
    clock.advance(std::chrono::seconds(0));
    EXPECT_FALSE(strip.progressIndicator().isVisible());
    KRHTTPRequest::beginNetworkActivity();
    EXPECT_TRUE(makeWindow()->statusStrip().progressIndicator().isAnimating()) << "requests were first";
    KRHTTPRequest::endNetworkActivity();
    expectAsSeen(strip.progressIndicator().grab().toImage(), u"progress"_s);
}

} // namespace
