#pragma once

#include "foundation/KRRunLoop.h"

#include <atomic>
#include <memory>
#include <thread>

class KRTransferEngine;

/// The one long-lived background thread, "SharedBackgroundThread". Its run loop carries every network
/// connection, and on it requests complete, answers are parsed and results are handed over. It never blocks
/// on anything else.
class KRBackgroundThread {
public:
    KRBackgroundThread(const KRBackgroundThread&) = delete;
    KRBackgroundThread& operator=(const KRBackgroundThread&) = delete;
    // Never destroyed: objects that outlive the thread may still post to it.
    ~KRBackgroundThread() = delete;

    /// Makes and starts the thread on first use; threads that ask at once get the same one.
    static KRBackgroundThread& shared();
    /// Ends the thread, if it was ever started, before the process ends: connections are dropped, their
    /// callbacks are not invoked. Work posted later is kept and never run. Main thread.
    static void stopShared();
    static bool isCurrentThread();

    KRRunLoop& runLoop() { return m_runLoop; }
    /// The transfers of this thread; used on this thread only.
    KRTransferEngine& transfers() { return *m_transfers; }

private:
    KRBackgroundThread();
    void _run();

    KRRunLoop m_runLoop;
    KRTransferEngine* m_transfers = nullptr;
    // The same for other threads, once it is made.
    std::atomic<KRTransferEngine*> m_wakeable = nullptr;
    bool m_stopping = false;
    std::thread m_thread;
    // The thread's own, which forgets it when it is joined.
    std::thread::id m_threadID;
};

/// Schedules the call on the shared background thread, after those scheduled before; does not wait.
void performOnSharedBackgroundThread(KRRunLoop::Task task);
