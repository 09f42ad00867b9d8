#include "KRTestScreen.h"
#include "support/KRTest.h"
#include "toolkit/KRApplication.h"
#include "toolkit/navigation/KRViewControllerSwitcher.h"
#include "toolkit/transitions/KRMotion.h"
#include "toolkit/transitions/KRTransitionView.h"

#include <QTest>

#include <gmock/gmock.h>

namespace {

bool isUserIgnored()
{
    return KRApplication::sharedApplication()->isIgnoringUserInteraction();
}

class KRViewControllerSwitcherTests : public testing::Test {
protected:
    KRViewControllerSwitcherTests()
    {
        window->resize(300, 200);
        content = new QWidget(window.get());
        content->setGeometry(0, 0, 300, 200);
        switcher->setTargetView(content);
        switcher->setTargetFrame({ 60, 0, 240, 178 });
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }
    ~KRViewControllerSwitcherTests() override
    {
        KRMotion::setEnabledByProgram(true);
        KRMotion::setReducedByDesktop(false);
        switcher.reset();
        EXPECT_FALSE(isUserIgnored());
    }

    QByteArray said() { return KRTestScreen::taken(calls); }
    // With the first screen shown and nothing written down yet.
    void showFirst()
    {
        switcher->switchToViewController(a, 0);
        calls.clear();
    }

    KRManualClock clock;
    QByteArrayList calls;
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    QPointer<QWidget> content;
    std::unique_ptr<KRViewControllerSwitcher> switcher = std::make_unique<KRViewControllerSwitcher>();
    std::shared_ptr<KRTestScreen> a = KRTestScreen::make(u"a"_s, calls, Qt::red);
    std::shared_ptr<KRTestScreen> b = KRTestScreen::make(u"b"_s, calls, Qt::blue);
    std::shared_ptr<KRTestScreen> c = KRTestScreen::make(u"c"_s, calls, Qt::green);
};

TEST_F(KRViewControllerSwitcherTests, TheFirstScreenAppearsAtOnce)
{
    switcher->switchToViewController(a, KRTransitionSlideUp);
    EXPECT_EQ(said(), "a will+, a did+");
    EXPECT_EQ(a->view()->geometry(), QRect(60, 0, 240, 178));
    EXPECT_TRUE(a->view()->isVisible());
    EXPECT_EQ(window->focusWidget(), a->view());
    EXPECT_EQ(switcher->transitionView(), nullptr);
    EXPECT_EQ(switcher->currentNavigationController(), nullptr);
}

TEST_F(KRViewControllerSwitcherTests, ATransitionTakesItsTimeAndIgnoresTheUser)
{
    const std::pair<int, std::chrono::milliseconds> cases[]
        = { { KRTransitionSlideUp, 350ms }, { KRTransitionSlideUp | KRTransitionShort, 180ms } };
    for (const auto& [code, duration] : cases) {
        showFirst();
        switcher->switchToViewController(b, code);
        EXPECT_EQ(said(), "b will+ animated, a will- animated") << code;
        EXPECT_TRUE(isUserIgnored());
        ASSERT_NE(switcher->transitionView(), nullptr);
        EXPECT_EQ(switcher->transitionView()->geometry(), QRect(60, 0, 240, 178));
        EXPECT_FALSE(a->view()->isVisible() || b->view()->isVisible());
        clock.advance(duration - 5ms);
        EXPECT_NE(switcher->transitionView(), nullptr) << code;

        clock.advance(5ms + KRViewControllerSwitcherTransition::FrameInterval);
        EXPECT_EQ(said(), "b did+ animated, a did- animated") << code;
        EXPECT_FALSE(isUserIgnored());
        EXPECT_EQ(switcher->transitionView(), nullptr);
        EXPECT_TRUE(b->view()->isVisible());
        EXPECT_EQ(window->focusWidget(), b->view());
        EXPECT_EQ(a->view()->parentWidget(), nullptr);
    }
}

TEST_F(KRViewControllerSwitcherTests, WithoutMotionOnlyTheMovementIsMissing)
{
    for (const bool byDesktop : { true, false }) {
        showFirst();
        KRMotion::setReducedByDesktop(byDesktop);
        KRMotion::setEnabledByProgram(byDesktop);
        switcher->switchToViewController(b, KRTransitionFlyIn);
        EXPECT_EQ(said(), "b will+ animated, a will- animated, b did+ animated, a did- animated");
        EXPECT_TRUE(b->view()->isVisible());
        EXPECT_FALSE(isUserIgnored());
    }
}

TEST_F(KRViewControllerSwitcherTests, CodesOfNoTransitionSwitchAtOnce)
{
    for (const int code : { 9, 0xFF, int(KRTransitionShort), 0x109 }) {
        showFirst();
        KRTestLog log;
        switcher->switchToViewController(b, code);
        EXPECT_TRUE(log.contains(u"Warning: unknown transition"_s)) << code;
        EXPECT_EQ(calls.size(), 4) << code;
        EXPECT_TRUE(b->view()->isVisible());
        EXPECT_FALSE(isUserIgnored());
    }
}

TEST_F(KRViewControllerSwitcherTests, ASecondSwitchEndsTheFirst)
{
    showFirst();
    switcher->switchToViewController(b, KRTransitionFancy);
    clock.advance(100ms);
    calls.clear();
    switcher->switchToViewController(c, KRTransitionSlideLeft);
    EXPECT_EQ(said(), "b did+ animated, a did- animated, c will+ animated, b will- animated");
    EXPECT_TRUE(isUserIgnored());
    clock.advance(400ms);
    EXPECT_FALSE(isUserIgnored());
    EXPECT_TRUE(c->view()->isVisible());
    EXPECT_EQ(content->findChildren<KRTransitionView*>(QString(), Qt::FindDirectChildrenOnly).size(), 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(content->findChildren<KRTransitionView*>().isEmpty());
}

TEST_F(KRViewControllerSwitcherTests, ASwitchAskedForByAHookFollows)
{
    showFirst();
    b->onWillAppear = [this] { switcher->switchToViewController(c, 0); };
    switcher->switchToViewController(b, KRTransitionFade);
    EXPECT_EQ(said(),
        "b will+ animated, a will- animated, b did+ animated, a did- animated, c will+, b will-, c did+, b "
        "did-");
    b->onWillAppear = {};
    b->onDidAppear = [this] { switcher->switchToViewController(a, 0); };
    switcher->switchToViewController(b, KRTransitionFade);
    clock.advance(400ms);
    EXPECT_TRUE(a->view()->isVisible());
    EXPECT_EQ(calls.last(), QByteArray("b did-"));
}

TEST_F(KRViewControllerSwitcherTests, NothingLeavesTheUserIgnored)
{
    const std::pair<const char*, std::function<void()>> cases[] = {
        { "window hidden", [this] { window->hide(); } },
        { "window closed", [this] { window->close(); } },
        { "window destroyed", [this] { window.reset(); } },
        { "target destroyed", [this] { delete content.data(); } },
        { "transition view destroyed", [this] { delete switcher->transitionView(); } },
        { "switcher destroyed", [this] { switcher.reset(); } },
    };
    for (const auto& [name, happening] : cases) {
        SCOPED_TRACE(name);
        window = std::make_unique<QWidget>();
        content = new QWidget(window.get());
        switcher = std::make_unique<KRViewControllerSwitcher>();
        switcher->setTargetView(content);
        switcher->setTargetFrame({ 60, 0, 240, 178 });
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        switcher->switchToViewController(a, 0);
        switcher->switchToViewController(b, KRTransitionFlyOut);
        calls.clear();
        clock.advance(50ms);
        ASSERT_TRUE(isUserIgnored());
        happening();
        EXPECT_FALSE(isUserIgnored());
        clock.advance(1ms);
        if (switcher) {
            EXPECT_EQ(switcher->transitionView(), nullptr);
            EXPECT_EQ(calls.last(), QByteArray("a did- animated"));
        }
        clock.advance(1000ms);
        EXPECT_FALSE(isUserIgnored());
    }
}

TEST_F(KRViewControllerSwitcherTests, ViewsThatVanishMidwayAreMadeAgain)
{
    showFirst();
    switcher->switchToViewController(b, KRTransitionFlyIn);
    delete b->view();
    clock.advance(400ms);
    EXPECT_TRUE(b->view()->isVisible());
    EXPECT_EQ(b->view()->geometry(), QRect(60, 0, 240, 178));

    switcher->switchToViewController(c, KRTransitionFlyIn);
    delete b->view();
    b.reset();
    clock.advance(400ms);
    EXPECT_TRUE(c->view()->isVisible());
}

TEST_F(KRViewControllerSwitcherTests, WhoeverHearsOfTheFocusMayDestroyWhatItLeaves)
{
    QApplication::setActiveWindow(window.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const std::function<void()> destructions[]
        = { [this] { delete a->view(); }, [this] { switcher.reset(); } };
    for (const auto& destroy : destructions) {
        for (const int code : { 0, int(KRTransitionFade) }) {
            showFirst();
            bool isDone = false;
            QObject context;
            QObject::connect(qApp, &QApplication::focusChanged, &context, [&] {
                if (!std::exchange(isDone, true))
                    destroy();
            });
            switcher->switchToViewController(b, code);
            clock.advance(400ms);
            EXPECT_TRUE(isDone);
            EXPECT_FALSE(isUserIgnored());
            if (!switcher) {
                switcher = std::make_unique<KRViewControllerSwitcher>();
                switcher->setTargetView(content);
            }
        }
    }
}

TEST_F(KRViewControllerSwitcherTests, TheShownViewFollowsItsTarget)
{
    showFirst();
    content->resize(400, 100);
    EXPECT_EQ(a->view()->geometry(), QRect(60, 0, 340, 78));
    content->resize(0, 0);
    content->resize(300, 200);
    EXPECT_EQ(a->view()->geometry(), QRect(60, 0, 240, 178));
    // Frames of any size work.
    for (const QRect& frame : { QRect(0, 0, 0, 0), QRect(10, 10, -50, 20), QRect(0, 0, 1 << 20, 1 << 20) }) {
        switcher->setTargetFrame(frame);
        switcher->switchToViewController(b, KRTransitionFancy);
        clock.advance(200ms);
        switcher->switchToViewController(a, 0);
    }
    switcher->setTargetFrame({ 0, 0, 20, 20 });
    calls.clear();
    switcher->switchToViewController(a, KRTransitionFade);
    EXPECT_EQ(a->view()->geometry(), QRect(0, 0, 20, 20));
    EXPECT_TRUE(calls.isEmpty());
}

TEST_F(KRViewControllerSwitcherTests, OutsideAnyWindowNobodyAppears)
{
    QWidget orphan;
    switcher->setTargetView(&orphan);
    switcher->switchToViewController(a, 0);
    switcher->switchToViewController(b, KRTransitionFade);
    EXPECT_EQ(said(), "a will- animated, a did- animated");
}

TEST_F(KRViewControllerSwitcherTests, AnOldScreenIsLetGoOfSoonAfter)
{
    showFirst();
    const std::weak_ptr<KRTestScreen> old = a;
    a.reset();
    switcher->switchToViewController(b, 0);
    EXPECT_FALSE(old.expired());
    clock.advance(1ms);
    EXPECT_TRUE(old.expired());
}

// The movements

TEST(KRViewControllerSwitcherTransitionTests, LayersMoveFromTheirStartToTheirEnd)
{
    const struct {
        int code;
        KRTransitionPose fromEnd;
        KRTransitionPose toStart;
        int fromZ;
        int toZ;
    } movements[] = {
        { KRTransitionFade, {}, { .opacity = 0 }, 0, 1 },
        { KRTransitionFlyIn, { .opacity = 0, .scale = 1.2 }, { .opacity = 0, .scale = 0.9 }, 0, 0 },
        { KRTransitionFlyOut, { .opacity = 0, .scale = 0.9 }, { .opacity = 0, .scale = 1.2 }, 0, 0 },
        { KRTransitionSlideDown, { .translation = { 0, 100 } }, { .translation = { 0, -100 } }, 0, 0 },
        { KRTransitionSlideUp, { .translation = { 0, -100 } }, { .translation = { 0, 100 } }, 0, 0 },
        { KRTransitionSlideLeft, { .translation = { 200, 0 } }, { .translation = { -200, 0 } }, 0, 0 },
        { KRTransitionSlideRight, { .translation = { -200, 0 } }, { .translation = { 200, 0 } }, 0, 0 },
        { KRTransitionFancy, { .angle = M_PI / 4, .perspective = 0.002 }, { .scale = 0.94 }, 0, -1 },
    };
    for (const auto& movement : movements) {
        SCOPED_TRACE(movement.code);
        KRManualClock clock;
        const auto from = std::make_shared<KRTransitionLayer>(QPixmap(), QSize(200, 100));
        const auto to = std::make_shared<KRTransitionLayer>(QPixmap(), QSize(200, 100));
        KRViewControllerSwitcherTransition transition;
        transition.setFromLayer(from);
        transition.setToLayer(to);
        ASSERT_TRUE(transition.start(movement.code));
        EXPECT_EQ(from->presentation(), KRTransitionPose());
        EXPECT_EQ(to->presentation(), movement.toStart);
        EXPECT_EQ(from->pose(), movement.fromEnd);
        EXPECT_EQ(to->pose(), KRTransitionPose());
        EXPECT_EQ(from->zPosition(), movement.fromZ);
        EXPECT_EQ(to->zPosition(), movement.toZ);
        // Slow at both ends, halfway in the middle (175 ms lie 1 ms before a frame).
        clock.advance(48ms);
        const double early = to->presentation().opacity + from->presentation().translation.x();
        clock.advance(128ms);
        EXPECT_NEAR(from->presentation().translation.x(), movement.fromEnd.translation.x() / 2, 1.5);
        EXPECT_NEAR(from->presentation().translation.y(), movement.fromEnd.translation.y() / 2, 1);
        EXPECT_NEAR(to->presentation().opacity, (movement.toStart.opacity + 1) / 2, 0.01);
        EXPECT_NEAR(from->presentation().scale, (movement.fromEnd.scale + 1) / 2, 0.01);
        EXPECT_NEAR(from->presentation().angle, movement.fromEnd.angle / 2, 0.01);
        if (movement.code == KRTransitionFade) {
            EXPECT_LT(early, 0.06);
        }
        clock.advance(400ms);
        EXPECT_EQ(from->presentation(), movement.fromEnd);
        EXPECT_EQ(to->presentation(), KRTransitionPose());
    }
}

TEST(KRViewControllerSwitcherTransitionTests, TheFancyOneNeverTurnsIntoTheViewer)
{
    for (const int width : { 800, 1400, 1415, 5000 }) {
        const auto from = std::make_shared<KRTransitionLayer>(QPixmap(), QSize(width, 100));
        KRViewControllerSwitcherTransition transition;
        transition.setFromLayer(from);
        transition.setToLayer(std::make_shared<KRTransitionLayer>(QPixmap(), QSize(width, 100)));
        transition.fancy();
        from->setProgress(1);
        const QTransform transform = from->transform();
        // The left edge comes closer, the right one goes away, neither past the viewer.
        EXPECT_LT(transform.map(QPointF(0, 0)).y(), 0) << width;
        EXPECT_GT(transform.map(QPointF(width, 0)).y(), 0) << width;
        EXPECT_GT(transform.m33(), 0) << width;
    }
}

} // namespace
