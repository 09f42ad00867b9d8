#include "platform/event_loop/KRQtRunLoopDriver.h"

#include <algorithm>
#include <cerrno>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

// Longer waits are made in parts: Qt counts milliseconds in an int.
// What the user does meanwhile waits no longer than that and one call.
constexpr std::chrono::milliseconds LongestTurn(3);
constexpr std::chrono::milliseconds LongestTimer = std::chrono::hours(24);

} // namespace

KRQtRunLoopDriver::WakeDescriptor::WakeDescriptor()
    : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    Q_ASSERT(m_descriptor >= 0);
}

KRQtRunLoopDriver::WakeDescriptor::~WakeDescriptor()
{
    close(m_descriptor);
}

void KRQtRunLoopDriver::WakeDescriptor::wake()
{
    // One write is enough however many calls are posted before the loop gets to them.
    if (m_isAwake.exchange(true, std::memory_order_acq_rel))
        return;
    const quint64 one = 1;
    while (write(m_descriptor, &one, sizeof one) < 0 && errno == EINTR) { }
}

void KRQtRunLoopDriver::WakeDescriptor::clear()
{
    quint64 count = 0;
    while (read(m_descriptor, &count, sizeof count) < 0 && errno == EINTR) { }
    // After the read: a call posted between the two finds itself announced and is run by the pass that
    // follows; one posted later writes again.
    m_isAwake.store(false, std::memory_order_release);
}

KRQtRunLoopDriver::KRQtRunLoopDriver(KRRunLoop& loop)
    : m_loop(loop)
    , m_notifier(m_wakeDescriptor.descriptor(), QSocketNotifier::Read)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_notifier, &QSocketNotifier::activated, this, &KRQtRunLoopDriver::_wokenUp);
    connect(&m_timer, &QTimer::timeout, this, &KRQtRunLoopDriver::_run);
    m_loop.setWakeHook([this] { m_wakeDescriptor.wake(); });
    // For what was posted before there was a hook.
    m_wakeDescriptor.wake();
}

KRQtRunLoopDriver::~KRQtRunLoopDriver()
{
    m_loop.setWakeHook({});
}

void KRQtRunLoopDriver::_wokenUp()
{
    m_wakeDescriptor.clear();
    _run();
}

void KRQtRunLoopDriver::_run()
{
    m_loop.runPending(LongestTurn);
    // Calls posted meanwhile have woken the descriptor again, so Qt's own events get their turn before them.
    const std::optional<KRRunLoop::Duration> wait = m_loop.timeUntilNextWork();
    if (wait)
        m_timer.start(std::min<KRRunLoop::Duration>(*wait, LongestTimer));
    else
        m_timer.stop();
}
