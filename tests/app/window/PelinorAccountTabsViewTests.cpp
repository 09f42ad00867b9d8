#include "app/PelinorSeenPicture.h"
#include "app/look/PelinorWindowColors.h"
#include "app/window/PelinorAccountTabsView.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "toolkit/transitions/KRMotion.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct PaintCounter final : QObject {
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

class PelinorAccountTabsViewTest : public testing::Test, protected PelinorAccountTabsViewDelegate {
protected:
    PelinorAccountTabsViewTest()
    {
        tabs.setDelegate(this);
        tabs.resize(60, 600);
        QList<TwitterAccountPtr> accounts;
        for (const QString& name : { u"alice"_s, u"bob"_s, u"carol"_s }) {
            accounts.append(TwitterAccount::accountWithUsername(name, u"x"_s, { tables, {} }));
        }
        tabs.setAccounts(accounts);
    }

    void accountTabsSelectAccount(PelinorAccountTabsView& view,
        const TwitterAccountPtr& account,
        int direction,
        bool speedy) override
    {
        told += u"%1 tab %2 direction %3%4|"_s.arg(account->username(),
            QString::number(view.selectedAccountTab()),
            QString::number(direction),
            speedy ? u" speedy"_s : QString());
    }
    void accountTabsSelectTab(PelinorAccountTabsView& /*view*/, int tag, int direction) override
    {
        told += u"tab %1 direction %2|"_s.arg(tag).arg(direction);
    }
    void accountTabsReSelectAccount(PelinorAccountTabsView& /*view*/,
        const TwitterAccountPtr& account) override
    {
        told += u"again %1|"_s.arg(account->username());
    }
    void accountTabsReSelectTab(PelinorAccountTabsView& /*view*/, int tag) override
    {
        told += u"again tab %1|"_s.arg(tag);
    }
    void accountTabsDoubleClickAccount(PelinorAccountTabsView& /*view*/,
        const TwitterAccountPtr& account) override
    {
        told += u"double %1|"_s.arg(account->username());
    }

    QString taken() { return std::exchange(told, {}); }
    void click(int y) { QTest::mouseClick(&tabs, Qt::LeftButton, {}, { 30, y }); }
    // The tops of what stands in the column, from its top: accounts by number, tabs by letter.
    QString column() const
    {
        QStringList places;
        for (const auto& place : tabs.places()) {
            places.append(place.account ? place.account->account()->username()
                                        : AccountTabLayer::title(place.tab->tag()).left(1));
            places.last() += QString::number(place.account ? place.account->y() : place.tab->y());
        }
        return places.join(u' ');
    }
    void bringPost(const TwitterAccountPtr& account)
    {
        TwitterStatusList posts;
        for (const int number : { 1, 2 }) {
            auto post = std::make_shared<TwitterStatus>();
            post->setStatusID(QString::number(number));
            post->setDate(KRNow().addSecs(number));
            posts.prepend(post);
            account->timelineStream()->setStatuses(posts);
            // The first one has been seen.
            if (number == 1)
                account->noteFreshTweets();
        }
    }

    KRManualClock clock;
    std::shared_ptr<TwitterUniquingTables> tables = std::make_shared<TwitterUniquingTables>();
    PelinorAccountTabsView tabs { KRNotificationCenter::defaultCenter() };
    QString told;
};

TEST_F(PelinorAccountTabsViewTest, TheTabsStandBelowTheSelectedAccount)
{
    EXPECT_EQ(column(), u"alice0 T66 M106 D146 S186 bob226 carol292"_s);
    EXPECT_EQ(tabs.contentHeight(), 358);
    EXPECT_EQ(tabs.selectionNipple().y(), 72);
    click(250);
    EXPECT_EQ(taken(), u"bob tab 0 direction 0|"_s);
    EXPECT_EQ(column(), u"alice0 bob66 T132 M172 D212 S252 carol292"_s);
    click(190);
    EXPECT_EQ(taken(), u"tab 1 direction 0|"_s);
    EXPECT_EQ(tabs.selectionNipple().y(), 178);
    click(10);
    EXPECT_EQ(taken(), u"alice tab 0 direction 1|"_s) << "every account has a tab of its own";
    tabs.selectNextAccount();
    EXPECT_EQ(taken(), u"bob tab 1 direction 0 speedy|"_s);
    tabs.selectAccountTab(0);
    EXPECT_EQ(taken(), u"tab 0 direction 1|"_s);
    tabs.selectAccountTab(0);
    tabs.selectAccountTab(7);
    EXPECT_EQ(taken(), QString());
    tabs.selectPreviousAccount();
    tabs.selectPreviousAccount();
    EXPECT_EQ(taken(), u"alice tab 0 direction 1 speedy|"_s) << "nothing stands above the first";
    tabs.restoreSelection(tabs.accounts().last(), 3);
    EXPECT_EQ(taken(), QString());
    EXPECT_EQ(tabs.selectedAccount(), tabs.accounts().last());
    EXPECT_EQ(tabs.selectedAccountTab(), 3);
    tabs.setAccounts(tabs.accounts());
    EXPECT_EQ(tabs.selectedAccount(), tabs.accounts().first());
    EXPECT_EQ(tabs.selectedAccountTab(), 0);
}

TEST_F(PelinorAccountTabsViewTest, AClickCountsWhereItBeganAndEnded)
{
    QTest::mousePress(&tabs, Qt::LeftButton, {}, { 30, 250 });
    EXPECT_TRUE(tabs.accountLayers()[1]->mouseDown);
    QTest::mouseRelease(&tabs, Qt::LeftButton, {}, { 30, 320 });
    EXPECT_FALSE(tabs.accountLayers()[1]->mouseDown);
    QTest::mousePress(&tabs, Qt::LeftButton, {}, { 30, 150 });
    EXPECT_TRUE(tabs.accountTabLayers()[2]->mouseDown);
    QTest::mouseRelease(&tabs, Qt::LeftButton, {}, { 30, 320 });
    QTest::mouseClick(&tabs, Qt::RightButton, {}, { 30, 250 });
    click(500);
    EXPECT_EQ(taken(), QString());
    click(30);
    click(80);
    EXPECT_EQ(taken(), u"again alice|again tab 0|"_s);
    QTest::mouseDClick(&tabs, Qt::LeftButton, {}, { 30, 30 });
    QTest::mouseRelease(&tabs, Qt::LeftButton, {}, { 30, 30 });
    EXPECT_EQ(taken(), u"double alice|"_s);
}

TEST_F(PelinorAccountTabsViewTest, KeysWalkThroughTabsAndOn)
{
    for (const Qt::Key key :
        { Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Return })
        QTest::keyClick(&tabs, key);
    EXPECT_EQ(taken(),
        u"tab 1 direction 0|tab 2 direction 0|tab 3 direction 0|bob tab 0 direction 0 speedy|"
        "alice tab 3 direction 1 speedy|again tab 3|"_s);
}

TEST_F(PelinorAccountTabsViewTest, NewsAreDotsOnTabsAndTiles)
{
    bringPost(tabs.accounts().first());
    EXPECT_TRUE(tabs.accountTabLayers()[0]->badged);
    EXPECT_FALSE(tabs.accountTabLayers()[1]->badged);
    bringPost(tabs.accounts().at(1));
    EXPECT_EQ(tabs.accountLayers()[1]->accessibleName(), u"bob, something new"_s);
    EXPECT_EQ(tabs.accountLayers()[2]->accessibleName(), u"carol"_s);

    TwitterServiceHosts hosts;
    hosts.setValueForKey(u"other.example"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    tabs.setAccounts(
        { TwitterAccount::accountWithUsername(u"bob"_s, u"x"_s, { tables, hosts, std::nullopt, true }) });
    EXPECT_EQ(tabs.accountLayers()[0]->accessibleName(), u"bob@other.example"_s);
}

TEST_F(PelinorAccountTabsViewTest, DrawingAsksTheServiceForNothing)
{
    KRTestLog log;
    const auto failures = [&](const QString& name) {
        KRRunLoop::main().runPending();
        return log.lines().count(u"Error loading user for account "_s + name);
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return failures(u"carol"_s) == 1; }));
    tabs.grab();
    // Whoever asks is answered in turn.
    tabs.accounts().last()->user();
    ASSERT_TRUE(QTest::qWaitFor([&] { return failures(u"carol"_s) == 2; }));
    EXPECT_EQ(failures(u"alice"_s), 1);
}

TEST_F(PelinorAccountTabsViewTest, TilesGlideUnlessNothingMoves)
{
    tabs.show();
    const auto isDrawnAt = [&](qreal y) {
        // The tile's placeholder begins six points below the tile's top.
        return tabs.grab().toImage().pixelColor(30, qRound(y) + 30)
            == PelinorWindowColors::forPalette(tabs.palette()).columnPlaceholder;
    };
    click(250);
    EXPECT_FALSE(isDrawnAt(66)) << "still on its way";
    // What the account that was left tells then does not stop it half-way.
    bringPost(tabs.accounts().first());
    QCoreApplication::processEvents();
    PaintCounter frames;
    tabs.installEventFilter(&frames);
    clock.advance(std::chrono::milliseconds(100));
    QCoreApplication::processEvents();
    EXPECT_GT(frames.count, 0);
    tabs.removeEventFilter(&frames);
    // And one frame, the last.
    clock.advance(PelinorAccountTabsView::MovementDuration + std::chrono::milliseconds(20));
    EXPECT_TRUE(isDrawnAt(66));
    QCoreApplication::processEvents();
    PaintCounter paints;
    tabs.installEventFilter(&paints);
    clock.advance(std::chrono::seconds(1));
    QCoreApplication::processEvents();
    EXPECT_EQ(paints.count, 0) << "nothing is drawn when nothing moves";
    KRMotion::setReducedByDesktop(true);
    click(10);
    EXPECT_TRUE(isDrawnAt(0));
    KRMotion::setReducedByDesktop(false);
}

TEST_F(PelinorAccountTabsViewTest, TheColumnScrollsAsFarAsItGoes)
{
    tabs.resize(60, 200);
    const auto wheel = [&](int delta) {
        QWheelEvent event({ 30, 30 },
            tabs.mapToGlobal(QPointF(30, 30)),
            { 0, delta },
            {},
            {},
            {},
            Qt::NoScrollPhase,
            false);
        QCoreApplication::sendEvent(&tabs, &event);
        return tabs.scrollPosition();
    };
    EXPECT_EQ(wheel(50), 0);
    EXPECT_EQ(wheel(-100), 100);
    EXPECT_EQ(wheel(-1000), 158);
    click(300 - 158);
    EXPECT_EQ(taken(), u"carol tab 0 direction 0|"_s);
    EXPECT_EQ(tabs.rectOf(*tabs.accountTabLayers()[0]).top(), 66) << "the selected tab is in sight";
    tabs.selectPreviousAccount();
    tabs.selectPreviousAccount();
    EXPECT_EQ(tabs.rectOf(*tabs.accountTabLayers()[0]).top(), 66);
    wheel(-1000);
    tabs.resize(60, 600);
    // Which a hidden widget hears of when it is drawn.
    tabs.grab();
    EXPECT_EQ(tabs.scrollPosition(), 0) << "all of it finds room";
}

TEST_F(PelinorAccountTabsViewTest, AssistiveTechnologySeesTabs)
{
    QAccessibleInterface* const column = QAccessible::queryAccessibleInterface(&tabs);
    ASSERT_NE(column, nullptr);
    EXPECT_EQ(column->role(), QAccessible::PageTabList);
    ASSERT_EQ(column->childCount(), 7);
    QStringList names;
    for (int index = 0; index < column->childCount(); ++index) {
        names.append(column->child(index)->text(QAccessible::Name));
        EXPECT_EQ(column->child(index)->role(), QAccessible::PageTab);
        EXPECT_EQ(column->indexOfChild(column->child(index)), index);
        EXPECT_EQ(bool(column->child(index)->state().selected), index <= 1) << index;
        EXPECT_TRUE(column->child(index)->state().focusable);
    }
    EXPECT_TRUE(!column->child(-1) && !column->child(7));
    EXPECT_EQ(names, u"alice|Timeline|Mentions|Direct Messages|Searches|bob|carol"_s.split(u'|'));
    const QPoint third = tabs.mapToGlobal(QPoint(30, 120));
    EXPECT_EQ(column->childAt(third.x(), third.y()), column->child(2));
    column->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(taken(), u"tab 1 direction 0|"_s);
    tabs.setAccounts({});
    EXPECT_EQ(column->childCount(), 0);
    EXPECT_EQ(tabs.selectedAccount(), nullptr);
}

// At rest, from right to left with a tile pressed, and with the keyboard in the column and without it again.
TEST_F(PelinorAccountTabsViewTest, IsDrawnAsItWasSeen)
{
    bringPost(tabs.accounts().first());
    bringPost(tabs.accounts().at(2));
    QImage drawn(4 * tabs.width(), tabs.height(), QImage::Format_RGB32);
    QPainter painter(&drawn);
    const auto keep = [&] {
        painter.drawImage(0, 0, tabs.grab().toImage());
        painter.translate(tabs.width(), 0);
    };
    keep();
    tabs.setLayoutDirection(Qt::RightToLeft);
    QTest::mousePress(&tabs, Qt::LeftButton, {}, { 30, 250 });
    keep();
    QTest::mouseRelease(&tabs, Qt::LeftButton, {}, { 30, 500 });
    tabs.setLayoutDirection(Qt::LeftToRight);
    tabs.restoreSelection(tabs.accounts().at(1), 3);
    QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(&tabs, &in);
    keep();
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(&tabs, &out);
    keep();
    painter.end();
    expectAsSeen(drawn, u"column"_s);
}

} // namespace
