#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTest.h"

#include <QElapsedTimer>
#include <QTest>

#include <ctime>
#include <gmock/gmock.h>

namespace {

// Far beyond what any of this takes, for a test to fail on.
constexpr int Limit = 20000;

template <class Condition>
bool waitFor(Condition condition)
{
    return QTest::qWaitFor(condition, Limit);
}

TEST(KRQtRunLoopDriverTests, RunsWhatWasPostedBeforeItWasMade)
{
    KRRunLoop loop;
    bool hasRun = false;
    loop.post([&] { hasRun = true; });
    const KRQtRunLoopDriver driver(loop);
    EXPECT_TRUE(waitFor([&] { return hasRun; }));
}

TEST(KRQtRunLoopDriverTests, CallsFromOtherThreadsArriveInOrder)
{
    KRRunLoop loop;
    const KRQtRunLoopDriver driver(loop);
    constexpr int Count = 20000;
    std::vector<int> received;
    std::vector<std::thread::id> threads;
    std::thread poster([&] {
        for (int i = 0; i < Count; ++i) {
            loop.post([&received, &threads, i] {
                received.push_back(i);
                threads.push_back(std::this_thread::get_id());
            });
        }
    });
    EXPECT_TRUE(waitFor([&] { return received.size() == Count; }));
    poster.join();
    EXPECT_TRUE(std::is_sorted(received.begin(), received.end()));
    EXPECT_THAT(threads, testing::Each(std::this_thread::get_id()));
}

TEST(KRQtRunLoopDriverTests, ACallThatPostsItselfLeavesRoomForEvents)
{
    KRRunLoop loop;
    const KRQtRunLoopDriver driver(loop);
    int calls = 0;
    std::function<void()> again = [&] {
        ++calls;
        loop.post(again);
    };
    loop.post(again);
    bool hasFired = false;
    QTimer::singleShot(20, [&] { hasFired = true; });
    EXPECT_TRUE(waitFor([&] { return hasFired && calls > 10; }));
    loop.clear();
}

TEST(KRQtRunLoopDriverTests, TimersFireInTheirOrderAndStopWithTheirValue)
{
    KRRunLoop loop;
    const KRQtRunLoopDriver driver(loop);
    QStringList order;
    loop.performAfterDelay(60ms, [&] { order.append(QStringLiteral("late")); });
    loop.performAfterDelay(30ms, [&] { order.append(QStringLiteral("early")); });
    loop.performAfterDelay(0ms, [&] { order.append(QStringLiteral("now")); });
    KRTimer stopped
        = loop.scheduleTimer(10ms, KRRunLoop::Repeats::Yes, [&] { order.append(QStringLiteral("no")); });
    stopped.invalidate();
    int ticks = 0;
    KRTimer ticking = loop.scheduleTimer(5ms, KRRunLoop::Repeats::Yes, [&] { ++ticks; });
    EXPECT_TRUE(waitFor([&] { return order.size() == 3 && ticks > 5; }));
    EXPECT_EQ(order, QStringList({ QStringLiteral("now"), QStringLiteral("early"), QStringLiteral("late") }));

    // From another thread, while the event loop sleeps until a later timer.
    ticking.invalidate();
    loop.performAfterDelay(1h, [] {});
    std::thread scheduler(
        [&] { loop.performAfterDelay(5ms, [&] { order.append(QStringLiteral("other")); }); });
    EXPECT_TRUE(waitFor([&] { return order.size() == 4; }));
    scheduler.join();
}

TEST(KRQtRunLoopDriverTests, WaitingUsesNoProcessor)
{
    KRRunLoop loop;
    const KRQtRunLoopDriver driver(loop);
    loop.performAfterDelay(1h, [] {});
    QEventLoop events;
    QTimer::singleShot(500, &events, &QEventLoop::quit);
    QCoreApplication::processEvents();
    const std::clock_t before = std::clock();
    events.exec();
    EXPECT_LT(double(std::clock() - before) / CLOCKS_PER_SEC, 0.1);
}

TEST(KRQtRunLoopDriverTests, TheLoopOutlivesItsDriver)
{
    KRRunLoop loop;
    int calls = 0;
    {
        const KRQtRunLoopDriver driver(loop);
    }
    loop.post([&] { ++calls; });
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 0);
    loop.runPending();
    EXPECT_EQ(calls, 1);
}

} // namespace
