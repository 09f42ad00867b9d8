#pragma once

#include <QDateTime>

#include <chrono>

/// Where the program reads the time. The wall clock is for dates the user sees, the monotonic one for
/// waiting. Any thread.
class KRClock {
public:
    using Duration = std::chrono::milliseconds;
    using TimePoint = std::chrono::steady_clock::time_point;

    KRClock() = default;
    KRClock(const KRClock&) = delete;
    KRClock& operator=(const KRClock&) = delete;
    virtual ~KRClock() = default;

    [[nodiscard]] virtual QDateTime now() const = 0;
    [[nodiscard]] virtual TimePoint monotonicNow() const = 0;

    /// The computer's own clock.
    static const KRClock& system();
    /// The clock every part reads: the system's, unless a test has put its own in place.
    static const KRClock& shared();
    /// Null restores the system's clock. The clock is not owned and must outlive its use.
    static void setShared(const KRClock* clock);
};

/// The current time in UTC by the shared clock.
[[nodiscard]] QDateTime KRNow();
/// Later than every date a service sends; the row at the top of a list carries it.
[[nodiscard]] QDateTime KRDistantFuture();
/// Earlier than every date a service sends; the row at the bottom of a list carries it.
[[nodiscard]] QDateTime KRDistantPast();
