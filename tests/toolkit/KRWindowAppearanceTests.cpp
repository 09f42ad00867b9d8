#include "support/KRTest.h"
#include "toolkit/transitions/KRMotion.h"
#include "toolkit/transitions/KRWindowAppearance.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

TEST(KRWindowAppearance, ComesFromThePointToTheMiddleAndIsOpaqueThen)
{
    KRManualClock clock;
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    const auto middleOf = [](const QWidget& window) { return window.pos() + window.rect().center(); };
    QWidget window;
    window.resize(200, 100);
    KRWindowAppearance::showWindow(window, { 300, 10 }, 10);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.windowOpacity(), 0);
    EXPECT_EQ(middleOf(window), QPoint(300, 10));
    int lastY = window.y();
    for (int step = 1; step <= 10; ++step) {
        clock.advance(KRWindowAppearance::StepInterval);
        EXPECT_NEAR(window.windowOpacity(), step / 10.0, 0.01);
        EXPECT_GE(window.y(), lastY);
        lastY = window.y();
    }
    EXPECT_EQ(middleOf(window), room.center());
    window.move(0, 0);
    KRWindowAppearance::showWindow(*std::make_unique<QWidget>(), { 0, 0 }, 10);
    clock.advance(1s);
    EXPECT_EQ(window.pos(), QPoint()) << "it is the user's then";

    KRMotion::setReducedByDesktop(true);
    QWidget still;
    KRWindowAppearance::showWindow(still, { 0, 0 }, 10);
    KRMotion::setReducedByDesktop(false);
    EXPECT_EQ(still.windowOpacity(), 1);
    EXPECT_EQ(middleOf(still), room.center());
}
