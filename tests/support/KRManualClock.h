#pragma once

#include "foundation/KRRunLoop.h"

#include <atomic>

/// A clock that stands still until a test moves it; it is the shared clock for as long as it lives. Advancing
/// runs the main loop's timers at their times, in order.
class KRManualClock final : public KRClock {
public:
    KRManualClock() { setShared(this); }
    ~KRManualClock() override
    {
        KRRunLoop::main().clear();
        setShared(nullptr);
    }

    QDateTime now() const override { return m_start.addMSecs(m_elapsed.load().count()); }
    TimePoint monotonicNow() const override { return TimePoint(m_elapsed.load()); }

    /// Runs what is due now, then lets the time pass.
    void advance(Duration duration, KRRunLoop& loop = KRRunLoop::main())
    {
        const Duration end = m_elapsed.load() + duration;
        for (;;) {
            while (loop.runPending()) { }
            const std::optional<Duration> next = loop.timeUntilNextWork();
            if (!next || m_elapsed.load() + *next > end)
                break;
            m_elapsed = m_elapsed.load() + *next;
        }
        m_elapsed = end;
    }

    void setNow(const QDateTime& date) { m_start = date.addMSecs(-m_elapsed.load().count()); }

private:
    QDateTime m_start { QDate(2026, 11, 22), QTime(12, 0), Qt::UTC };
    std::atomic<Duration> m_elapsed = Duration::zero();
};
