#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTest.h"

#include <QElapsedTimer>
#include <QTest>

#include <ctime>
#include <gmock/gmock.h>

namespace {

// Far beyond what any of this takes, for a test to fail on.
constexpr int Limit = 20000;

TEST(KRQtRunLoopDriverTests, CallsFromOtherThreadsArriveInOrder)
{
    KRRunLoop loop;
    constexpr int Count = 20000;
    std::vector<int> received { -1 };
    std::vector<std::thread::id> threads;
    {
        const KRQtRunLoopDriver former(loop);
    }
    loop.post([&received] { received.clear(); });
    QCoreApplication::processEvents();
    EXPECT_EQ(received.size(), 1U) << "nobody drives it any more";
    const KRQtRunLoopDriver driver(loop);
    std::thread poster([&] {
        for (int i = 0; i < Count; ++i) {
            loop.post([&received, &threads, i] {
                received.push_back(i);
                threads.push_back(std::this_thread::get_id());
            });
        }
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return received.size() == Count; }, Limit));
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasFired && calls > 10; }, Limit));
    loop.clear();
}

TEST(KRQtRunLoopDriverTests, TimersFireInTheirOrderAndStopWithTheirValue)
{
    KRRunLoop loop;
    const KRQtRunLoopDriver driver(loop);
    QStringList order;
    loop.performAfterDelay(60ms, [&] { order.append(u"late"_s); });
    loop.performAfterDelay(30ms, [&] { order.append(u"early"_s); });
    loop.performAfterDelay(0ms, [&] { order.append(u"now"_s); });
    KRTimer stopped = loop.scheduleTimer(10ms, KRRunLoop::Repeats::Yes, [&] { order.append(u"no"_s); });
    stopped.invalidate();
    int ticks = 0;
    KRTimer ticking = loop.scheduleTimer(5ms, KRRunLoop::Repeats::Yes, [&] { ++ticks; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return order.size() == 3 && ticks > 5; }, Limit));
    EXPECT_EQ(order, QStringList({ u"now"_s, u"early"_s, u"late"_s }));

    // From another thread, while the event loop sleeps until a later timer.
    ticking.invalidate();
    loop.performAfterDelay(1h, [] {});
    std::thread scheduler([&] { loop.performAfterDelay(5ms, [&] { order.append(u"other"_s); }); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return order.size() == 4; }, Limit));
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

} // namespace
