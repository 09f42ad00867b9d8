#pragma once

#include "foundation/KRRunLoop.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <atomic>

/// Runs a run loop's calls and timers inside Qt's event loop, for as long as it lives. Waiting costs nothing:
/// other threads wake the event loop through a descriptor, and one timer is set for the next thing that is
/// due. Lives on the loop's own thread.
class KRQtRunLoopDriver : public QObject {
    Q_OBJECT

public:
    explicit KRQtRunLoopDriver(KRRunLoop& loop = KRRunLoop::main());
    ~KRQtRunLoopDriver() override;

private:
    class WakeDescriptor {
    public:
        WakeDescriptor();
        WakeDescriptor(const WakeDescriptor&) = delete;
        WakeDescriptor& operator=(const WakeDescriptor&) = delete;
        ~WakeDescriptor();

        int descriptor() const { return m_descriptor; }
        void wake();
        void clear();

    private:
        int m_descriptor = -1;
        std::atomic<bool> m_isAwake = false;
    };

    void _wokenUp();
    void _run();

    KRRunLoop& m_loop;
    WakeDescriptor m_wakeDescriptor;
    QSocketNotifier m_notifier;
    QTimer m_timer;
};
