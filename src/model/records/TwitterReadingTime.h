#pragma once

#include "foundation/KRClock.h"

#include <QDateTime>

#include <utility>

/// While one lives, the people that its thread reads are all dated alike: what one answer says is of one time,
/// and asking the clock for each of a page's people is felt. Belongs on the stack of whoever reads an answer.
class TwitterReadingTime {
public:
    TwitterReadingTime()
        : m_outer(std::exchange(s_current, this))
    {
    }
    TwitterReadingTime(const TwitterReadingTime&) = delete;
    TwitterReadingTime& operator=(const TwitterReadingTime&) = delete;
    ~TwitterReadingTime() { s_current = m_outer; }

    /// The time of the answer being read; without one, now.
    [[nodiscard]] static QDateTime now() { return s_current ? s_current->m_now : KRNow(); }

private:
    static inline thread_local TwitterReadingTime* s_current = nullptr;

    TwitterReadingTime* const m_outer;
    const QDateTime m_now = KRNow();
};
