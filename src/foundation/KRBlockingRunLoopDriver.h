#pragma once

#include "foundation/KRRunLoop.h"

#include <condition_variable>

/// Runs a loop on the calling thread by waiting on a condition variable: the command-line program's main
/// thread, and tests. One driver a loop at a time.
class KRBlockingRunLoopDriver {
public:
    explicit KRBlockingRunLoopDriver(KRRunLoop& loop = KRRunLoop::main());
    KRBlockingRunLoopDriver(const KRBlockingRunLoopDriver&) = delete;
    KRBlockingRunLoopDriver& operator=(const KRBlockingRunLoopDriver&) = delete;
    ~KRBlockingRunLoopDriver();

    /// Runs until done() answers true (asked after every pass, and first of all) or the limit has passed by
    /// the computer's own clock. Answers whether done() did.
    bool runUntil(const std::function<bool()>& done, std::optional<KRRunLoop::Duration> limit = std::nullopt);

private:
    KRRunLoop& m_loop;
    std::mutex m_lock;
    std::condition_variable m_wakeUp;
    bool m_awake = false;
};
