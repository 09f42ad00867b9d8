#include "foundation/KRMainThreadObject.h"
#include "support/KRTest.h"

TEST(KRRunLoop, RunsCallsInOrderAndLeavesLaterOnesToTheNextPass)
{
    KRRunLoop loop;
    QList<int> ran;
    loop.post([&] {
        ran.append(1);
        loop.post([&] { ran.append(3); });
    });
    loop.post([&] { ran.append(2); });
    EXPECT_TRUE(loop.runPending());
    EXPECT_EQ(ran, (QList<int> { 1, 2 }));
    EXPECT_EQ(loop.timeUntilNextWork(), 0ms);
    EXPECT_TRUE(loop.runPending());
    EXPECT_EQ(ran, (QList<int> { 1, 2, 3 }));
    EXPECT_FALSE(loop.runPending());
    EXPECT_EQ(loop.timeUntilNextWork(), std::nullopt);
}

TEST(KRRunLoop, CallsThatATurnHasNoTimeForStayInOrder)
{
    KRRunLoop loop;
    int wakes = 0;
    loop.setWakeHook([&] { ++wakes; });
    QList<int> ran;
    for (const int number : { 1, 2, 3 })
        loop.post([&ran, &loop, number] {
            ran.append(number);
            if (number == 1)
                loop.post([&ran] { ran.append(4); });
        });
    for (const QList<int>& expected : { QList<int> { 1 }, { 1, 2 }, { 1, 2, 3 }, { 1, 2, 3, 4 } }) {
        wakes = 0;
        EXPECT_TRUE(loop.runPending(0ms));
        EXPECT_EQ(ran, expected);
        EXPECT_EQ(wakes > 0, expected.size() < 4) << "whoever drives the loop comes again";
    }
    EXPECT_FALSE(loop.runPending(0ms));
    loop.setWakeHook({});
}

TEST(KRRunLoop, FiresTimersAtTheirTimesByTheClock)
{
    KRManualClock clock;
    KRRunLoop loop;
    QStringList fired;
    const auto note = [&](const char* name) {
        const auto seconds
            = std::chrono::floor<std::chrono::seconds>(clock.monotonicNow()).time_since_epoch();
        fired.append(u"%1@%2"_s.arg(QLatin1String(name)).arg(seconds.count()));
    };
    loop.performAfterDelay(3s, [&] { note("late"); });
    loop.performAfterDelay(0s, [&] { note("now"); });
    loop.performAfterDelay(3s, [&] { note("later"); });
    KRTimer repeating = loop.scheduleTimer(2s, KRRunLoop::Repeats::Yes, [&] { note("beat"); });
    KRTimer cancelled = loop.scheduleTimer(1s, KRRunLoop::Repeats::Yes, [&] { note("never"); });
    cancelled.invalidate();
    clock.advance(5s, loop);
    EXPECT_EQ(fired.join(u' '), u"now@0 beat@2 late@3 later@3 beat@4"_s);
    repeating.invalidate();
    clock.advance(100s, loop);
    EXPECT_EQ(fired.size(), 5);
}

TEST(KRRunLoop, ATimerMayEndItselfOrAnotherThatIsDueInTheSamePass)
{
    KRManualClock clock;
    KRRunLoop loop;
    int fired = 0;
    KRTimer other;
    KRTimer own = loop.scheduleTimer(1s, KRRunLoop::Repeats::Yes, [&] {
        ++fired;
        own.invalidate();
        other.invalidate();
    });
    other = loop.scheduleTimer(1s, KRRunLoop::Repeats::No, [&] { fired += 100; });
    clock.advance(10s, loop);
    EXPECT_EQ(fired, 1);
}

TEST(KRRunLoop, WakesADriverThatWaits)
{
    KRRunLoop loop;
    std::atomic<int> ran = 0;
    KRBlockingRunLoopDriver driver(loop);
    std::thread poster([&] {
        for (int i = 0; i < 1000; ++i)
            loop.post([&] { ++ran; });
    });
    EXPECT_TRUE(driver.runUntil([&] { return ran == 1000; }, 20s));
    poster.join();
    EXPECT_FALSE(driver.runUntil([] { return false; }, 1ms));
}

TEST(KRMainThreadObject, IsDestroyedOnTheMainThread)
{
    struct Object {
        explicit Object(std::thread::id& thread)
            : destroyedOn(thread)
        {
        }
        ~Object() { destroyedOn = std::this_thread::get_id(); }
        std::thread::id& destroyedOn;
    };
    std::thread::id destroyedOn;
    std::shared_ptr<Object> object = KRMakeMainThreadObject<Object>(destroyedOn);
    std::thread([kept = std::move(object)]() mutable { kept.reset(); }).join();
    EXPECT_EQ(destroyedOn, std::thread::id());
    EXPECT_TRUE(KRWaitUntil([&] { return destroyedOn == std::this_thread::get_id(); }));
}
