#include "foundation/KRRunLoop.h"

#include <algorithm>
#include <atomic>

struct KRTimer::State {
    KRClock::TimePoint deadline;
    KRClock::Duration interval { 0 };
    quint64 sequence = 0;
    bool repeats = false;
    KRRunLoop::Task task;
    std::atomic<bool> valid = true;
};

namespace {

// Initialised before main() runs, hence on the thread that starts the process.
const std::thread::id s_mainThread = std::this_thread::get_id();

bool firesEarlier(const std::shared_ptr<KRTimer::State>& a, const std::shared_ptr<KRTimer::State>& b)
{
    return std::pair(a->deadline, a->sequence) < std::pair(b->deadline, b->sequence);
}

} // namespace

KRTimer::KRTimer(std::shared_ptr<State> state)
    : m_state(std::move(state))
{
}

KRTimer& KRTimer::operator=(KRTimer&& other) noexcept
{
    if (this != &other) {
        invalidate();
        m_state = std::move(other.m_state);
    }
    return *this;
}

KRTimer::~KRTimer()
{
    invalidate();
}

void KRTimer::invalidate()
{
    if (m_state)
        m_state->valid.store(false, std::memory_order_release);
    m_state.reset();
}

KRRunLoop::KRRunLoop() = default;
KRRunLoop::~KRRunLoop() = default;

KRRunLoop& KRRunLoop::main()
{
    // Never destroyed: the last objects of the program may still post while static objects are being
    // destroyed.
    static auto* loop = new KRRunLoop;
    return *loop;
}

bool KRRunLoop::isMainThread()
{
    return std::this_thread::get_id() == s_mainThread;
}

void KRRunLoop::post(Task task)
{
    std::scoped_lock guard(m_lock);
    m_queue.push_back(std::move(task));
    if (m_wakeHook)
        m_wakeHook();
}

void KRRunLoop::performAfterDelay(Duration delay, Task task)
{
    auto timer = std::make_shared<KRTimer::State>();
    timer->deadline = KRClock::shared().monotonicNow() + std::max(delay, Duration::zero());
    timer->task = std::move(task);
    _insertTimer(timer);
}

KRTimer KRRunLoop::scheduleTimer(Duration interval, Repeats repeats, Task task)
{
    auto timer = std::make_shared<KRTimer::State>();
    timer->interval = std::max(interval, Duration(1));
    timer->deadline = KRClock::shared().monotonicNow() + timer->interval;
    timer->repeats = repeats == Repeats::Yes;
    timer->task = std::move(task);
    _insertTimer(timer);
    return KRTimer(std::move(timer));
}

void KRRunLoop::_insertTimer(const std::shared_ptr<KRTimer::State>& timer)
{
    std::scoped_lock guard(m_lock);
    timer->sequence = m_nextSequence++;
    m_timers.insert(std::upper_bound(m_timers.begin(), m_timers.end(), timer, firesEarlier), timer);
    if (m_wakeHook)
        m_wakeHook();
}

bool KRRunLoop::runPending(std::optional<Duration> turn)
{
    const bool ranCalls = _runQueue(turn);
    const bool ranTimers = _runTimers();
    return ranCalls || ranTimers;
}

bool KRRunLoop::_runQueue(std::optional<Duration> turn)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    std::vector<Task> tasks;
    {
        std::scoped_lock guard(m_lock);
        tasks.swap(m_queue);
    }
    for (size_t at = 0; at < tasks.size(); ++at) {
        tasks[at]();
        // What the call holds is released before the next one runs, as the order of calls promises.
        tasks[at] = nullptr;
        if (turn && at + 1 < tasks.size() && Clock::now() - start >= *turn) {
            std::scoped_lock guard(m_lock);
            m_queue.insert(m_queue.begin(),
                std::make_move_iterator(tasks.begin() + qptrdiff(at) + 1),
                std::make_move_iterator(tasks.end()));
            if (m_wakeHook)
                m_wakeHook();
            break;
        }
    }
    return !tasks.empty();
}

bool KRRunLoop::_runTimers()
{
    const KRClock::TimePoint now = KRClock::shared().monotonicNow();
    std::vector<std::shared_ptr<KRTimer::State>> due;
    {
        std::scoped_lock guard(m_lock);
        const auto firstLater = std::find_if(m_timers.begin(), m_timers.end(), [now](const auto& timer) {
            return timer->deadline > now;
        });
        due.assign(m_timers.begin(), firstLater);
        m_timers.erase(m_timers.begin(), firstLater);
    }
    bool ran = false;
    for (const auto& timer : due) {
        if (!timer->valid.load(std::memory_order_acquire))
            continue;
        timer->task();
        ran = true;
        if (timer->repeats && timer->valid.load(std::memory_order_acquire)) {
            timer->deadline = std::max(timer->deadline + timer->interval, now + Duration(1));
            _insertTimer(timer);
        }
    }
    return ran;
}

std::optional<KRRunLoop::Duration> KRRunLoop::timeUntilNextWork() const
{
    std::scoped_lock guard(m_lock);
    if (!m_queue.empty())
        return Duration::zero();
    for (const auto& timer : m_timers) {
        if (!timer->valid.load(std::memory_order_acquire))
            continue;
        const auto wait = timer->deadline - KRClock::shared().monotonicNow();
        return std::max(Duration::zero(), std::chrono::ceil<Duration>(wait));
    }
    return std::nullopt;
}

void KRRunLoop::setWakeHook(std::function<void()> hook)
{
    std::scoped_lock guard(m_lock);
    m_wakeHook = std::move(hook);
}

void KRRunLoop::clear()
{
    std::vector<Task> tasks;
    std::vector<std::shared_ptr<KRTimer::State>> timers;
    std::scoped_lock guard(m_lock);
    tasks.swap(m_queue);
    timers.swap(m_timers);
}
