#pragma once

#include "foundation/KRRunLoop.h"

#include <QObject>
#include <QPointer>
#include <QWindow>

class QWidget;

/// Tells the tables of a window when the user starts and stops dragging its size. The window system sends
/// only a row of new sizes and never says that the last one has come, so a drag counts as over when no new
/// size has come for a moment. Owned by the window. Main thread.
class KRLiveResize : public QObject {
    Q_OBJECT

public:
    /// How long after the last new size a drag counts as over.
    static constexpr std::chrono::milliseconds EndDelay { 150 };

    explicit KRLiveResize(QWidget& window);
    ~KRLiveResize() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _watchNativeWindow();
    void _resizedByUser();
    void _end();

    QWidget& m_window;
    QPointer<QWindow> m_nativeWindow;
    bool m_inLiveResize = false;
    KRTimer m_endTimer;
};
