#include "toolkit/KRApplication.h"

#include "foundation/KRLog.h"

#include <QAction>
#include <QEvent>

namespace {

bool isDrag(const QEvent& event)
{
    return event.type() == QEvent::DragEnter || event.type() == QEvent::DragMove
        || event.type() == QEvent::Drop;
}

bool isUserInput(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
        return true;
    default:
        return isDrag(event);
    }
}

} // namespace

KRApplication::KRApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
}

KRApplication::~KRApplication() = default;

KRApplication* KRApplication::sharedApplication()
{
    return qobject_cast<KRApplication*>(QCoreApplication::instance());
}

void KRApplication::beginIgnoringUserInteraction()
{
    ++m_userInteractionDisable;
}

void KRApplication::endIgnoringUserInteraction()
{
    if (--m_userInteractionDisable >= 0)
        return;
    m_userInteractionDisable = 0;
    KRLog(QStringLiteral("WARNING: -endIgnoringUserInteraction called too many times"));
}

bool KRApplication::sendAction(QAction& action)
{
    if (isIgnoringUserInteraction())
        return false;
    action.trigger();
    return true;
}

bool KRApplication::notify(QObject* receiver, QEvent* event)
{
    if (!isIgnoringUserInteraction() || !isUserInput(*event))
        return QApplication::notify(receiver, event);
    // The window behind the widgets keeps count of the buttons that are down; a release it never saw would
    // leave the mouse caught by the widget that was pressed. What it passes on to its widgets ends here.
    if (receiver->inherits("QWidgetWindow"))
        return QApplication::notify(receiver, event);
    // What is dragged over a window was not taken: whoever moves something must not think it has arrived.
    event->setAccepted(!isDrag(*event));
    return true;
}

KRIgnoredUserInteraction::KRIgnoredUserInteraction()
    : m_application(KRApplication::sharedApplication())
{
    if (m_application)
        m_application->beginIgnoringUserInteraction();
}

KRIgnoredUserInteraction::~KRIgnoredUserInteraction()
{
    if (m_application)
        m_application->endIgnoringUserInteraction();
}
