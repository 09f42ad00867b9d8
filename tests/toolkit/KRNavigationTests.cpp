#include "KRTestScreen.h"
#include "support/KRTest.h"
#include "toolkit/KRActiveTextView.h"
#include "toolkit/KRApplication.h"
#include "toolkit/navigation/KRBarButton.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbView.h"
#include "toolkit/navigation/KRNavigationController.h"

#include <QAccessible>
#include <QLineEdit>
#include <QNativeGestureEvent>
#include <QTest>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using Crumb = KRNavigationBarBreadcrumbItemView;

// A navigation controller in a window, as a main window shows one.
class KRNavigationTests : public testing::Test {
protected:
    KRNavigationTests()
    {
        window.resize(1000, 700);
        switcher.setTargetView(&window);
        switcher.setTargetFrame({ 60, 0, 940, 678 });
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        switcher.switchToViewController(controller, 0);
        for (const char16_t name : { u'A', u'B', u'C', u'D' })
            screens.push_back(KRTestScreen::make(QString(QChar(name)), calls));
    }
    ~KRNavigationTests() override
    {
        EXPECT_FALSE(KRApplication::sharedApplication()->isIgnoringUserInteraction());
    }

    void pushAll()
    {
        for (const auto& screen : screens)
            controller->pushViewController(screen, KRAnimated::No);
        calls.clear();
    }
    QByteArray said() { return KRTestScreen::taken(calls); }
    void finish() { clock.advance(400ms); }
    KRNavigationBarBreadcrumbView& crumbs() { return *controller->navigationBar()->breadcrumbs(); }
    Crumb& crumb(size_t index) { return *crumbs().breadcrumbs().at(index); }
    size_t depth() const { return controller->viewControllers().size(); }

    KRManualClock clock;
    QByteArrayList calls;
    std::vector<std::shared_ptr<KRTestScreen>> screens;
    std::shared_ptr<KRNavigationController> controller = std::make_shared<KRNavigationController>();
    QWidget window;
    KRViewControllerSwitcher switcher;
};

TEST_F(KRNavigationTests, PushingAndPoppingCallTheHooksAndAskForTheAnimation)
{
    screens[0]->pushCode = KRTransitionSlideLeft;
    screens[1]->popCode = KRTransitionNone;
    controller->pushViewController(screens[0], KRAnimated::Yes);
    EXPECT_EQ(said(), "A will+, A did+");
    EXPECT_EQ(screens[0]->view()->geometry(), QRect(0, 26, 940, 652));
    EXPECT_EQ(screens[0]->navigationController(), controller.get());
    EXPECT_EQ(controller->navigationController(), nullptr);

    controller->pushViewController(screens[0], KRAnimated::Yes);
    EXPECT_TRUE(calls.isEmpty());
    controller->pushViewController(screens[1], KRAnimated::Yes);
    EXPECT_EQ(said(), "B will+ animated, A will- animated");
    EXPECT_EQ(depth(), 2U);
    finish();
    EXPECT_EQ(window.focusWidget(), screens[1]->view());
    controller->pushViewController(screens[2], KRAnimated::No);
    calls.clear();

    EXPECT_EQ(controller->popViewControllerAnimated(KRAnimated::Yes), screens[2]);
    // The screen that comes back wants none.
    EXPECT_EQ(said(), "B will+, C will-, B did+, C did-");
    EXPECT_THAT(controller->popToRootViewControllerAnimated(KRAnimated::No), ElementsAre(screens[1]));
    EXPECT_THAT(controller->popToRootViewControllerAnimated(KRAnimated::No), ElementsAre());
    EXPECT_EQ(controller->popViewControllerAnimated(KRAnimated::Yes), nullptr);
    EXPECT_THAT(controller->popToViewController(*screens[3], KRAnimated::No), ElementsAre());
    EXPECT_EQ(crumbs().breadcrumbs().size(), 1U);
}

TEST_F(KRNavigationTests, ClickingACrumbPopsWhatIsAboveIt)
{
    pushAll();
    QTest::mouseClick(&crumb(3), Qt::LeftButton);
    EXPECT_EQ(depth(), 4U);
    EXPECT_TRUE(calls.isEmpty());
    QTest::mousePress(&crumb(1), Qt::LeftButton);
    EXPECT_TRUE(crumb(1).isSelected());
    QTest::mouseRelease(&crumb(1), Qt::LeftButton, {}, { 5, 200 });
    EXPECT_EQ(depth(), 4U);
    EXPECT_FALSE(crumb(1).isSelected());

    QTest::mouseClick(&crumb(1), Qt::LeftButton);
    EXPECT_EQ(said(), "B will+ animated, D will- animated");
    EXPECT_EQ(depth(), 2U);
    EXPECT_EQ(crumbs().breadcrumbs().size(), 2U);
    EXPECT_EQ(controller->navigationBar()->navigationItems().size(), 2U);
    finish();
    EXPECT_TRUE(screens[1]->view()->isVisible());
}

TEST_F(KRNavigationTests, KeysButtonsAndSwipesGoBack)
{
    pushAll();
    const auto back = [this](auto action) {
        const size_t before = depth();
        action();
        finish();
        return before - depth();
    };
    QWidget& top = *screens[3]->view();
    EXPECT_EQ(back([&] { QTest::keyClick(&top, Qt::Key_X); }), 0U);
    EXPECT_EQ(calls.count(QByteArray("D keyUp")), 1);
    // The Escape that closes a menu is let go of above the window.
    EXPECT_EQ(back([&] { QTest::keyRelease(&top, Qt::Key_Escape); }), 0U);
    EXPECT_EQ(back([&] { QTest::keyClick(&top, Qt::Key_Escape); }), 1U);
    EXPECT_EQ(back([&] { QTest::mouseClick(screens[2]->view(), Qt::BackButton); }), 1U);
    EXPECT_EQ(back([&] { QTest::keyClick(window.focusWidget(), Qt::Key_Left); }), 1U);
    EXPECT_EQ(back([&] { QTest::keyClick(window.focusWidget(), Qt::Key_Escape); }), 0U);

    // Left moves through the text of a field, and through one that is there to be read.
    pushAll();
    QLineEdit field(screens[3]->view());
    KRActiveTextView text(screens[3]->view());
    for (QWidget* const view : { static_cast<QWidget*>(&field), static_cast<QWidget*>(&text) }) {
        view->show();
        EXPECT_EQ(back([&] { QTest::keyClick(view, Qt::Key_Left); }), 0U);
    }

    const auto gesture = [&](Qt::NativeGestureType type, double value, QPointF delta) {
        QNativeGestureEvent
            event(type, QPointingDevice::primaryPointingDevice(), 3, {}, {}, {}, value, delta);
        QCoreApplication::sendEvent(controller->view(), &event);
    };
    EXPECT_EQ(back([&] { gesture(Qt::SwipeNativeGesture, 0, {}); }), 0U);
    EXPECT_EQ(back([&] { gesture(Qt::SwipeNativeGesture, 180, {}); }), 1U);
    const auto pan = [&](QPointF delta) {
        gesture(Qt::BeginNativeGesture, 0, {});
        gesture(Qt::PanNativeGesture, 0, delta);
        gesture(Qt::EndNativeGesture, 0, {});
    };
    EXPECT_EQ(back([&] { pan({ -80, 5 }); }), 0U);
    EXPECT_EQ(back([&] { pan({ 60, 70 }); }), 0U);
    EXPECT_EQ(back([&] { pan({ 60, 5 }); }), 1U);
    EXPECT_EQ(back([&] { controller->navigationBarDidClickBack(*controller->navigationBar()); }), 1U);
}

TEST_F(KRNavigationTests, CrumbsAreReachedAndUsedByKeys)
{
    pushAll();
    crumb(1).setFocus(Qt::TabFocusReason);
    const QImage focused = crumb(1).grab().toImage();
    QTest::keyClick(&crumb(1), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window.focusWidget(), &crumb(0));
    EXPECT_NE(crumb(1).grab().toImage(), focused);
    QTest::keyClick(&crumb(0), Qt::Key_Return);
    finish();
    EXPECT_EQ(depth(), 1U);
    EXPECT_EQ(window.focusWidget(), screens[0]->view());
}

TEST_F(KRNavigationTests, ChangesAskedForByHooksFollow)
{
    screens[0]->onDidAppear = [this] { controller->pushViewController(screens[1], KRAnimated::No); };
    controller->pushViewController(screens[0], KRAnimated::No);
    EXPECT_THAT(controller->viewControllers(), ElementsAre(screens[0], screens[1]));
    EXPECT_EQ(crumb(0).text() + crumb(1).text(), u"AB"_s);
    screens[0]->onDidAppear = {};
    screens[2]->onWillAppear = [this] { controller->popToRootViewControllerAnimated(KRAnimated::No); };
    controller->pushViewController(screens[2], KRAnimated::Yes);
    EXPECT_THAT(controller->viewControllers(), ElementsAre(screens[0]));
    EXPECT_EQ(crumbs().breadcrumbs().size(), 1U);
    finish();
    EXPECT_TRUE(screens[0]->view()->isVisible());
}

TEST_F(KRNavigationTests, AStackHearsOfItsWindowOnceAndKeepsTheFocusOnTop)
{
    const auto other = std::make_shared<KRNavigationController>(screens[0]);
    EXPECT_TRUE(calls.isEmpty());
    switcher.switchToViewController(other, KRTransitionSlideUp);
    EXPECT_EQ(switcher.currentNavigationController(), other);
    EXPECT_EQ(said(), "A will+ animated");
    // Laid out for its place while it still waits to be seen.
    EXPECT_EQ(screens[0]->view()->geometry(), QRect(0, 26, 940, 652));
    finish();
    EXPECT_EQ(said(), "A did+ animated");
    EXPECT_EQ(window.focusWidget(), screens[0]->view());
    EXPECT_EQ(screens[0]->nextResponder(), &window);

    // A stack that was taken away works on without appearing.
    switcher.switchToViewController(controller, 0);
    EXPECT_EQ(said(), "A will-, A did-");
    other->pushViewController(screens[1], KRAnimated::Yes);
    EXPECT_EQ(said(), "A will- animated, A did- animated");
}

TEST_F(KRNavigationTests, AStackOutlivesItsWindow)
{
    auto shortLived = std::make_unique<QWidget>();
    auto* const content = new QWidget(shortLived.get());
    content->resize(300, 200);
    KRViewControllerSwitcher other;
    other.setTargetView(content);
    const auto stack = std::make_shared<KRNavigationController>(screens[0]);
    stack->pushViewController(screens[1], KRAnimated::No);
    other.switchToViewController(stack, 0);
    shortLived.reset();

    switcher.switchToViewController(stack, 0);
    EXPECT_TRUE(screens[1]->view()->isVisible());
    EXPECT_EQ(screens[1]->view()->size(), QSize(940, 652));
    EXPECT_EQ(stack->navigationBar()->breadcrumbs()->breadcrumbs().size(), 2U);
    EXPECT_EQ(stack->popViewControllerAnimated(KRAnimated::No), screens[1]);
    EXPECT_TRUE(screens[0]->view()->isVisible());
}

TEST_F(KRNavigationTests, TheBarDividesItsWidthInWholePoints)
{
    pushAll();
    KRNavigationBar& bar = *controller->navigationBar();
    EXPECT_EQ(bar.geometry(), QRect(0, 0, 940, 26));
    EXPECT_EQ(bar.breadcrumbRectForFrame({ 0, 0, 1000, 26 }), QRect(0, 0, 890, 26));
    EXPECT_EQ(bar.customRectForFrame({ 0, 0, 1000, 26 }), QRect(900, 0, 100, 26));
    EXPECT_EQ(bar.breadcrumbRectForFrame({ 0, 0, 57, 26 }), QRect(0, 0, 41, 26));

    const auto search = KRTestScreen::make(u"E"_s, calls);
    search->navigationItem()->setRightBarButtonItem(
        std::make_unique<KRBarButtonItem>(std::make_unique<QLineEdit>()));
    controller->pushViewController(search, KRAnimated::No);
    EXPECT_EQ(crumbs().geometry(), QRect(0, 0, 554, 26));
    EXPECT_EQ(bar.currentRightView()->geometry(), QRect(564, 0, 376, 26));
    EXPECT_TRUE(bar.currentRightView()->isVisible());
    window.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(bar.currentRightView()->geometry(), QRect(0, 0, 376, 26));
    EXPECT_EQ(crumbs().geometry(), QRect(386, 0, 554, 26));
    window.setLayoutDirection(Qt::LeftToRight);
    controller->popViewControllerAnimated(KRAnimated::No);
    EXPECT_EQ(bar.currentRightView(), nullptr);
    EXPECT_FALSE(search->navigationItem()->rightBarButtonItem()->view()->isVisible());
    EXPECT_EQ(crumbs().width(), 836);

    for (const QSize size : { QSize(0, 0), QSize(1, 1), QSize(16777215, 30) })
        switcher.currentViewController()->view()->resize(size);
}

TEST_F(KRNavigationTests, AButtonInTheBarIsPressedAnywhereAndLightsUpBehindItsWord)
{
    KRBarButton button(QStringLiteral("Save"), &window);
    button.setGeometry(0, 0, 376, 26);
    button.show();
    int clicks = 0;
    QObject::connect(&button, &QAbstractButton::clicked, [&] { ++clicks; });
    EXPECT_LT(button.fieldRect().width(), 100);
    const QPoint edge(3, 13);
    const QPoint inField = button.fieldRect().topLeft() + QPoint(8, 2);
    const auto look = [&button](QPoint point) { return button.grab().toImage().pixel(point); };
    const QRgb plain = look(inField);
    const QRgb plainEdge = look(edge);
    QTest::mousePress(&button, Qt::LeftButton, {}, edge);
    EXPECT_NE(look(inField), plain);
    EXPECT_EQ(look(edge), plainEdge);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, edge);
    EXPECT_EQ(clicks, 1);
    button.resize(30, 26);
    EXPECT_LE(button.fieldRect().width(), 30);
}

TEST_F(KRNavigationTests, CrumbsThatFindNoRoomSlideOutPastTheStart)
{
    pushAll();
    for (int count = 0; count < 9; ++count) {
        controller->pushViewController(KRTestScreen::make(u"Screen number %1"_s.arg(count), calls),
            KRAnimated::No);
    }
    const int width = crumbs().width();
    EXPECT_GT(crumbs().totalWidth(), width);
    const auto checkNeighbours = [this](bool rightToLeft) {
        for (size_t index = 1; index < crumbs().breadcrumbs().size(); ++index) {
            const QRect before = crumb(index - 1).geometry();
            const QRect after = crumb(index).geometry();
            EXPECT_EQ(rightToLeft ? before.left() : after.left(),
                rightToLeft ? after.right() + 1 : before.right() + 1);
            EXPECT_EQ(after.top(), -1);
            EXPECT_EQ(after.height(), 26);
        }
    };
    EXPECT_EQ(crumb(12).geometry().right() + 1, width);
    EXPECT_LT(crumb(0).x(), 0);
    checkNeighbours(false);
    window.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(crumb(12).geometry().left(), 0);
    checkNeighbours(true);
    controller->popToRootViewControllerAnimated(KRAnimated::No);
    EXPECT_EQ(crumb(0).geometry().right() + 1, width);
}

TEST(KRNavigationCrumbTests, TitlesAreCutBetweenWholeCharacters)
{
    const QString wave = u"🌊"_s;
    const QString accented = u"e\u0301"_s;
    const std::pair<QString, QString> cases[] = {
        { {}, {} },
        { u"exactly fifteen"_s, u"exactly fifteen"_s },
        { u"exactly fifteen!"_s, u"exactly fifteen"_s },
        { u"fourteen units"_s + wave, u"fourteen units"_s },
        { u"thirteen unit"_s + wave, u"thirteen unit"_s + wave },
        { u"fourteen units"_s + accented, u"fourteen units"_s },
        { u"fourteen units👩\u200D👧"_s, u"fourteen units"_s },
        { QString(40, QChar(0x0301)), {} },
        { QString(30, QChar(0xD800)), QString(15, QChar(0xD800)) },
    };
    for (const auto& [title, shown] : cases) {
        EXPECT_EQ(Crumb::shownTitle(title), shown) << title.toStdString();
        EXPECT_EQ(Crumb::widthForTitle(title), Crumb::widthForTitle(shown));
    }
    EXPECT_EQ(Crumb::widthForTitle({}), 30);
    // As wide as they are, up to 100 points.
    const QFontMetricsF metrics(Crumb::attributesEmbossed(Crumb::Embossed::No, false).font);
    const double natural = metrics.horizontalAdvance(u"Direct Messages"_s);
    EXPECT_EQ(Crumb::widthForTitle(u"Direct Messages"_s), int(std::min(natural, 100.0)) + 30);
    EXPECT_EQ(Crumb::widthForTitle(QString(100000, u'W')), 130);
}

TEST_F(KRNavigationTests, AssistiveTechnologySeesThePath)
{
    pushAll();
    QAccessibleInterface* const pane = QAccessible::queryAccessibleInterface(controller->view());
    ASSERT_NE(pane, nullptr);
    EXPECT_EQ(pane->role(), QAccessible::Pane);
    EXPECT_EQ(pane->text(QAccessible::Name), u"D"_s);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(controller->navigationBar())->role(),
        QAccessible::ToolBar);
    QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&crumbs());
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->text(QAccessible::Name), u"Path"_s);
    ASSERT_EQ(list->childCount(), 4);
    for (int index = 0; index < 4; ++index) {
        QAccessibleInterface* const link = list->child(index);
        EXPECT_EQ(link->role(), QAccessible::Link);
        EXPECT_EQ(link->text(QAccessible::Name), QString(QChar(u'A' + index)));
        EXPECT_TRUE(link->state().focusable);
        EXPECT_EQ(bool(link->state().selected), index == 3);
        EXPECT_FALSE(link->state().invisible);
    }
    crumb(2).setFocus();
    EXPECT_TRUE(list->child(2)->state().focused);
    QAccessibleActionInterface* const action = list->child(1)->actionInterface();
    ASSERT_TRUE(action->actionNames().contains(QAccessibleActionInterface::pressAction()));
    action->doAction(QAccessibleActionInterface::pressAction());
    finish();
    EXPECT_EQ(depth(), 2U);
    EXPECT_EQ(list->childCount(), 2);
}

} // namespace
