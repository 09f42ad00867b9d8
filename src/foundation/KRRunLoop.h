#pragma once

#include "foundation/KRClock.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// A scheduled timer; it stops when this value is destroyed or invalidated. Any thread.
class [[nodiscard]] KRTimer {
public:
    struct State;

    KRTimer() = default;
    explicit KRTimer(std::shared_ptr<State> state);
    KRTimer(KRTimer&& other) noexcept = default;
    KRTimer& operator=(KRTimer&& other) noexcept;
    KRTimer(const KRTimer&) = delete;
    KRTimer& operator=(const KRTimer&) = delete;
    ~KRTimer();

    void invalidate();

private:
    std::shared_ptr<State> m_state;
};

/// A queue of calls and timers that one thread runs. Posting and scheduling work from any thread; running is
/// the owning thread's. The loop knows nothing of what its thread waits for: a driver (the window system's
/// event loop, the transfer engine, a condition variable, a test) waits until the wake hook is called or the
/// next timer is due, then calls runPending().
class KRRunLoop {
public:
    using Task = std::function<void()>;
    using Duration = KRClock::Duration;

    enum class Repeats { No, Yes };

    KRRunLoop();
    KRRunLoop(const KRRunLoop&) = delete;
    KRRunLoop& operator=(const KRRunLoop&) = delete;
    ~KRRunLoop();

    /// The main thread's loop. It lives until the process ends.
    static KRRunLoop& main();
    /// Whether the calling thread is the one that started the process.
    static bool isMainThread();

    /// Appends a call; calls run in the order they were posted.
    void post(Task task);
    /// Runs the call once, when the delay has passed (0: at the next pass).
    void performAfterDelay(Duration delay, Task task);
    /// Runs the call every interval, or once after it, for as long as the returned value lives. A repeating
    /// timer that was late fires once, not once for every interval missed.
    KRTimer scheduleTimer(Duration interval, Repeats repeats, Task task);

    /// Runs the calls that were waiting when it was called, then the timers that are due. Calls posted
    /// meanwhile wait for the next pass, so that a driver gets to its own events. Returns whether anything
    /// ran.
    /// A driver with other events to see to says how long a turn may be: when that has passed, the calls that
    /// are left wait for the next one, in their order.
    bool runPending(std::optional<Duration> turn = std::nullopt);
    /// How long the driver may wait: zero when a call is waiting, nothing when only a wake-up can bring work.
    [[nodiscard]] std::optional<Duration> timeUntilNextWork() const;

    /// Called, under the loop's lock and on the posting thread, whenever new work may end a wait earlier. It
    /// must only wake. An empty function removes the hook: when the call returns, the old one is no longer
    /// running.
    void setWakeHook(std::function<void()> hook);

    /// Drops every waiting call and timer; the objects they hold are released on this thread.
    void clear();

private:
    void _insertTimer(const std::shared_ptr<KRTimer::State>& timer);
    bool _runQueue(std::optional<Duration> turn);
    bool _runTimers();

    mutable std::mutex m_lock;
    std::vector<Task> m_queue;
    std::vector<std::shared_ptr<KRTimer::State>> m_timers;
    std::function<void()> m_wakeHook;
    quint64 m_nextSequence = 0;
};
