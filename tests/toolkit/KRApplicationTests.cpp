#include "support/KRTest.h"
#include "toolkit/KRApplication.h"

#include <QAction>
#include <QDropEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

TEST(KRApplicationTests, WhileTheUserIsIgnoredInputIsDroppedAndNotKept)
{
    KRApplication& application = *KRApplication::sharedApplication();
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const button = new QPushButton(&window);
    auto* const field = new QLineEdit(&window);
    layout->addWidget(button);
    layout->addWidget(field);
    QAction action(&window);
    action.setShortcut(QKeySequence(u"Ctrl+K"_s));
    window.addAction(&action);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    int clicks = 0;
    int triggers = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });
    QObject::connect(&action, &QAction::triggered, [&] { ++triggers; });
    const auto tryEverything = [&] {
        QTest::mouseClick(button, Qt::LeftButton);
        // Through the window, as the window system's events come.
        QTest::mouseClick(window.windowHandle(),
            Qt::LeftButton,
            {},
            button->mapTo(&window, button->rect().center()));
        QTest::keyClicks(field, u"a"_s);
        QTest::keyClick(window.windowHandle(), Qt::Key_K, Qt::ControlModifier);
        return application.sendAction(action);
    };

    application.beginIgnoringUserInteraction();
    application.beginIgnoringUserInteraction();
    EXPECT_FALSE(tryEverything());
    QDropEvent drop({ 5, 5 }, Qt::MoveAction, nullptr, Qt::LeftButton, {});
    QCoreApplication::sendEvent(field, &drop);
    EXPECT_FALSE(drop.isAccepted()) << "who moves something here keeps it";
    application.endIgnoringUserInteraction();
    EXPECT_FALSE(tryEverything());
    EXPECT_EQ(clicks + triggers, 0);
    application.endIgnoringUserInteraction();
    EXPECT_EQ(field->text(), QString());

    EXPECT_TRUE(tryEverything());
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(triggers, 2);
    EXPECT_EQ(field->text(), u"a"_s);
}

TEST(KRApplicationTests, AnEndTooManyIsRepaired)
{
    KRApplication& application = *KRApplication::sharedApplication();
    KRTestLog log;
    application.endIgnoringUserInteraction();
    EXPECT_TRUE(log.contains(u"WARNING: -endIgnoringUserInteraction called too many times"_s));
    EXPECT_FALSE(application.isIgnoringUserInteraction());
    application.beginIgnoringUserInteraction();
    EXPECT_TRUE(application.isIgnoringUserInteraction());
    application.endIgnoringUserInteraction();
}

TEST(KRApplicationTests, AButtonHeldWhenTheUserIsIgnoredDoesNotCatchTheMouse)
{
    QWidget window;
    window.resize(200, 100);
    auto* const left = new QPushButton(&window);
    auto* const right = new QPushButton(&window);
    left->setGeometry(0, 0, 100, 100);
    right->setGeometry(100, 0, 100, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    int clicks = 0;
    QObject::connect(right, &QPushButton::clicked, [&] { ++clicks; });
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
    {
        const KRIgnoredUserInteraction ignored;
        QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
    }
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, QPoint(150, 50));
    EXPECT_EQ(clicks, 1);
}
