#include "transport/KRBackgroundThread.h"

#include "transport/KRTransferEngine.h"

#include <pthread.h>
#include <signal.h>

namespace {

std::mutex s_creationLock;
std::atomic<KRBackgroundThread*> s_sharedThread = nullptr;

} // namespace

KRBackgroundThread::KRBackgroundThread()
{
    // The thread itself looks for new work before each wait, so it need not be woken by its own; nor while it
    // still makes its transfers, for it has not waited yet.
    m_runLoop.setWakeHook([this] {
        KRTransferEngine* const transfers = m_wakeable.load();
        if (transfers && !isCurrentThread())
            transfers->wakeUp();
    });
    m_thread = std::thread([this] { _run(); });
    m_threadID = m_thread.get_id();
}

KRBackgroundThread& KRBackgroundThread::shared()
{
    if (KRBackgroundThread* thread = s_sharedThread.load(std::memory_order_acquire))
        return *thread;
    std::scoped_lock guard(s_creationLock);
    if (!s_sharedThread.load(std::memory_order_relaxed)) {
        s_sharedThread.store(new KRBackgroundThread, std::memory_order_release);
    }
    return *s_sharedThread.load(std::memory_order_relaxed);
}

void KRBackgroundThread::stopShared()
{
    std::scoped_lock guard(s_creationLock);
    KRBackgroundThread* thread = s_sharedThread.load(std::memory_order_relaxed);
    if (!thread || !thread->m_thread.joinable())
        return;
    thread->m_runLoop.post([thread] { thread->m_stopping = true; });
    thread->m_thread.join();
}

bool KRBackgroundThread::isCurrentThread()
{
    const KRBackgroundThread* thread = s_sharedThread.load(std::memory_order_acquire);
    return thread && thread->m_threadID == std::this_thread::get_id();
}

void KRBackgroundThread::_run()
{
    // The system's names hold fifteen characters.
    pthread_setname_np(pthread_self(), "SharedBackgroun");
    // Writing to a TLS connection that the other side has closed raises SIGPIPE, whose default ends the
    // process; blocked here, the write fails and the request with it.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // Made here and not where the thread is first asked for, which is the start of the program: this opens
    // libcurl.
    m_transfers = new KRTransferEngine;
    m_wakeable = m_transfers;
    for (;;) {
        m_runLoop.runPending();
        // What asked for the end has used up its wake-up: waiting once more would wait for the next event.
        if (m_stopping)
            break;
        // How long to wait is asked after moving on, which may have brought work of its own.
        m_transfers->moveOn();
        m_transfers->wait(m_runLoop.timeUntilNextWork());
    }
    m_transfers->dropAll();
}

void performOnSharedBackgroundThread(KRRunLoop::Task task)
{
    KRBackgroundThread::shared().runLoop().post(std::move(task));
}
