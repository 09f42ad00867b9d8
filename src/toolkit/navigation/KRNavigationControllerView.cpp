#include "toolkit/navigation/KRNavigationControllerView.h"

#include "toolkit/KRViewFrame.h"
#include "toolkit/navigation/KRNavigationController.h"

#include <QKeyEvent>
#include <QNativeGestureEvent>

#include <cmath>

KRNavigationControllerView::KRNavigationControllerView(KRNavigationController& controller)
    : m_navigationController(&controller)
{
}

KRNavigationControllerView::~KRNavigationControllerView() = default;

void KRNavigationControllerView::setNavigationController(KRNavigationController* controller)
{
    m_navigationController = controller;
}

// Along the responders, from the controller until the way comes back to the views: from there the event goes
// on by itself, to the view around this one.
template <class Offer>
bool KRNavigationControllerView::_offerToControllers(Offer offer)
{
    QPointer<QObject> responder = m_navigationController.data();
    while (auto* const controller = qobject_cast<KRViewController*>(responder.data())) {
        if (offer(*controller))
            return true;
        if (responder)
            responder = controller->nextResponder();
    }
    return false;
}

void KRNavigationControllerView::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(
        _offerToControllers([event](KRViewController& controller) { return controller.keyDown(*event); }));
}

void KRNavigationControllerView::keyReleaseEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat() || !m_pressedKeys.remove(event->key())) {
        event->ignore();
        return;
    }
    event->setAccepted(
        _offerToControllers([event](KRViewController& controller) { return controller.keyUp(*event); }));
}

bool KRNavigationControllerView::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Comes before every press, also of those that a view keeps to itself without a use for them.
        m_pressedKeys.insert(static_cast<QKeyEvent*>(event)->key());
        break;
    case QEvent::WindowDeactivate:
        // They are let go of over another window.
        m_pressedKeys.clear();
        break;
    case QEvent::NativeGesture:
        if (_gestureEvent(*static_cast<QNativeGestureEvent*>(event)))
            return true;
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

// Some window systems announce a whole swipe, others the movement of the fingers.
bool KRNavigationControllerView::_gestureEvent(const QNativeGestureEvent& event)
{
    double deltaX = 0;
    switch (event.gestureType()) {
    case Qt::SwipeNativeGesture:
        deltaX = event.value() == 180 ? 1 : event.value() == 0 ? -1 : 0;
        break;
    case Qt::BeginNativeGesture:
        m_panDelta = {};
        return false;
    case Qt::PanNativeGesture:
        m_panDelta += event.delta();
        return false;
    case Qt::EndNativeGesture:
        deltaX = std::abs(m_panDelta.x()) > std::abs(m_panDelta.y()) ? m_panDelta.x() : 0;
        m_panDelta = {};
        break;
    default:
        return false;
    }
    return deltaX != 0 && _offerToControllers([deltaX](KRViewController& controller) {
        return controller.swipeWithEvent(deltaX);
    });
}

void KRNavigationControllerView::mousePressEvent(QMouseEvent* event)
{
    m_backButtonIsDown = event->button() == Qt::BackButton;
    event->setAccepted(m_backButtonIsDown);
}

void KRNavigationControllerView::mouseReleaseEvent(QMouseEvent* event)
{
    const bool wasClicked = m_backButtonIsDown && event->button() == Qt::BackButton
        && rect().contains(event->position().toPoint());
    event->setAccepted(wasClicked);
    if (event->button() == Qt::BackButton)
        m_backButtonIsDown = false;
    if (wasClicked && m_navigationController)
        m_navigationController->popViewControllerAnimated(KRAnimated::Yes);
}

void KRNavigationControllerView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (m_navigationBar)
        KRSetViewFrame(*m_navigationBar, { 0, 0, width(), KRNavigationBar::Height });
}
