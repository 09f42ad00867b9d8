#pragma once

#include "foundation/KRBlockingRunLoopDriver.h"

/// Runs the main loop until the condition holds; false when it still does not after the limit (for a test to
/// fail on).
template <class Condition>
[[nodiscard]] bool KRWaitUntil(Condition condition, KRRunLoop::Duration limit = std::chrono::seconds(20))
{
    // The condition may change without a wake-up of the main loop, so it is looked at every few milliseconds.
    KRBlockingRunLoopDriver driver;
    const auto end = KRClock::system().monotonicNow() + limit;
    while (!driver.runUntil(condition, std::chrono::milliseconds(5))) {
        if (KRClock::system().monotonicNow() >= end)
            return false;
    }
    return true;
}
