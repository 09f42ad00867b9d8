#include "foundation/KRBlockingRunLoopDriver.h"

KRBlockingRunLoopDriver::KRBlockingRunLoopDriver(KRRunLoop& loop)
    : m_loop(loop)
{
    m_loop.setWakeHook([this] {
        std::scoped_lock guard(m_lock);
        m_awake = true;
        m_wakeUp.notify_one();
    });
}

KRBlockingRunLoopDriver::~KRBlockingRunLoopDriver()
{
    m_loop.setWakeHook({});
}

bool KRBlockingRunLoopDriver::runUntil(const std::function<bool()>& done,
    std::optional<KRRunLoop::Duration> limit)
{
    const KRClock::TimePoint end
        = limit ? KRClock::system().monotonicNow() + *limit : KRClock::TimePoint::max();
    while (!done()) {
        const KRClock::TimePoint now = KRClock::system().monotonicNow();
        if (now >= end)
            return false;
        const std::optional<KRRunLoop::Duration> wait = m_loop.timeUntilNextWork();
        std::unique_lock guard(m_lock);
        const auto isAwake = [this] { return m_awake; };
        if (wait)
            m_wakeUp.wait_until(guard, std::min(end, now + *wait), isAwake);
        else if (limit)
            m_wakeUp.wait_until(guard, end, isAwake);
        else
            m_wakeUp.wait(guard, isAwake);
        m_awake = false;
        guard.unlock();
        m_loop.runPending();
    }
    return true;
}
