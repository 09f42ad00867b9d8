#pragma once

#include "foundation/KRRunLoop.h"

#include <atomic>
#include <memory>
#include <vector>

/// A clock that stands still until a test moves it; it is the shared clock for as long as it lives. Advancing
/// runs the main loop's timers at their times, in order.
class KRManualClock {
public:
    using Duration = KRClock::Duration;
    using TimePoint = KRClock::TimePoint;

    KRManualClock() { KRClock::setShared(m_face.get()); }
    KRManualClock(const KRManualClock&) = delete;
    KRManualClock& operator=(const KRManualClock&) = delete;
    ~KRManualClock()
    {
        KRRunLoop::main().clear();
        KRClock::setShared(nullptr);
        // Another thread may be reading it at this moment, so it stays.
        static auto* formerFaces = new std::vector<std::unique_ptr<Face>>;
        formerFaces->push_back(std::move(m_face));
    }

    QDateTime now() const { return m_face->now(); }
    TimePoint monotonicNow() const { return m_face->monotonicNow(); }

    /// Runs what is due now, then lets the time pass.
    void advance(Duration duration, KRRunLoop& loop = KRRunLoop::main())
    {
        std::atomic<Duration>& elapsed = m_face->elapsed;
        const Duration end = elapsed.load() + duration;
        for (;;) {
            while (loop.runPending()) { }
            const std::optional<Duration> next = loop.timeUntilNextWork();
            if (!next || elapsed.load() + *next > end)
                break;
            elapsed = elapsed.load() + *next;
        }
        elapsed = end;
    }

private:
    struct Face final : KRClock {
        QDateTime now() const override { return start.addMSecs(elapsed.load().count()); }
        TimePoint monotonicNow() const override { return TimePoint(elapsed.load()); }

        QDateTime start { QDate(2026, 11, 22), QTime(12, 0), Qt::UTC };
        std::atomic<Duration> elapsed = Duration::zero();
    };

    std::unique_ptr<Face> m_face = std::make_unique<Face>();
};
