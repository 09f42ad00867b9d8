#include "foundation/KRClock.h"

#include <atomic>

namespace {

class SystemClock final : public KRClock {
public:
    QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }
    TimePoint monotonicNow() const override { return std::chrono::steady_clock::now(); }
};

std::atomic<const KRClock*> s_sharedClock = nullptr;

} // namespace

const KRClock& KRClock::system()
{
    // Never destroyed: other threads may still read the time while static objects are being destroyed.
    static const auto* clock = new SystemClock;
    return *clock;
}

const KRClock& KRClock::shared()
{
    const KRClock* clock = s_sharedClock.load(std::memory_order_acquire);
    return clock ? *clock : system();
}

void KRClock::setShared(const KRClock* clock)
{
    s_sharedClock.store(clock, std::memory_order_release);
}

QDateTime KRNow()
{
    return KRClock::shared().now();
}

QDateTime KRDistantFuture()
{
    return { QDate(4001, 1, 1), QTime(0, 0), Qt::UTC };
}

QDateTime KRDistantPast()
{
    return { QDate(1, 1, 1), QTime(0, 0), Qt::UTC };
}
