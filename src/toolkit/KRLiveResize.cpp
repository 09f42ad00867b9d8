#include "toolkit/KRLiveResize.h"

#include "toolkit/KRTableView.h"

#include <QResizeEvent>
#include <QWidget>

KRLiveResize::KRLiveResize(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
    window.installEventFilter(this);
}

KRLiveResize::~KRLiveResize() = default;

bool KRLiveResize::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_window) {
        // The native window is made when the window is first shown, and may be made again.
        if (event->type() == QEvent::Show || event->type() == QEvent::WinIdChange)
            _watchNativeWindow();
        else if (event->type() == QEvent::WindowStateChange && m_inLiveResize)
            _end();
    } else if (watched == m_nativeWindow && event->type() == QEvent::Resize) {
        // The native window hears of a size before the layout of the window does, whose event filters would
        // come too late. The program's own resizing is known to the window already, and the sizes a window
        // manager gives a window before it is on screen are no drag.
        if (static_cast<QResizeEvent*>(event)->size() != m_window.size() && m_nativeWindow->isExposed())
            _resizedByUser();
    }
    return QObject::eventFilter(watched, event);
}

void KRLiveResize::_watchNativeWindow()
{
    if (m_nativeWindow == m_window.windowHandle())
        return;
    if (m_nativeWindow)
        m_nativeWindow->removeEventFilter(this);
    m_nativeWindow = m_window.windowHandle();
    if (m_nativeWindow)
        m_nativeWindow->installEventFilter(this);
}

void KRLiveResize::_resizedByUser()
{
    if (!m_inLiveResize) {
        m_inLiveResize = true;
        for (KRTableView* table : m_window.findChildren<KRTableView*>())
            table->viewWillStartLiveResize();
    }
    m_endTimer = KRRunLoop::main().scheduleTimer(EndDelay, KRRunLoop::Repeats::No, [this] { _end(); });
}

void KRLiveResize::_end()
{
    m_inLiveResize = false;
    m_endTimer.invalidate();
    for (KRTableView* table : m_window.findChildren<KRTableView*>())
        table->viewDidEndLiveResize();
}
