#include "toolkit/navigation/KRViewControllerSwitcher.h"

#include "foundation/KRLog.h"
#include "toolkit/KRApplication.h"
#include "toolkit/KRViewFrame.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/transitions/KRMotion.h"
#include "toolkit/transitions/KRScreenshot.h"
#include "toolkit/transitions/KRTransitionView.h"

#include <QEvent>

#include <utility>

KRViewControllerSwitcher::KRViewControllerSwitcher() = default;

KRViewControllerSwitcher::~KRViewControllerSwitcher()
{
    _removeTransitionView();
}

std::shared_ptr<KRNavigationController> KRViewControllerSwitcher::currentNavigationController() const
{
    return std::dynamic_pointer_cast<KRNavigationController>(m_currentViewController);
}

KRTransitionView* KRViewControllerSwitcher::transitionView() const
{
    return m_transitionView;
}

void KRViewControllerSwitcher::setTargetView(QWidget* targetView)
{
    if (m_targetView)
        m_targetView->removeEventFilter(this);
    m_targetView = targetView;
    if (m_targetView)
        m_targetView->installEventFilter(this);
}

// Switching

void KRViewControllerSwitcher::switchToViewController(const KRViewControllerPtr& controller, int code)
{
    if (!controller)
        return;
    m_waiting.push_back({ controller, code });
    if (!m_isSwitching)
        _answerWaiting();
}

void KRViewControllerSwitcher::_answerWaiting()
{
    // The hooks may ask for more, and may even end the life of all this.
    const QPointer<KRViewControllerSwitcher> self(this);
    while (self && !m_waiting.empty()) {
        m_isSwitching = true;
        const Request request = m_waiting.front();
        m_waiting.erase(m_waiting.begin());
        if (m_transition)
            m_transition->animationDidStop();
        if (self)
            _switch(request);
        if (self)
            m_isSwitching = false;
    }
}

void KRViewControllerSwitcher::_switch(const Request& request)
{
    QWidget* const view = request.controller->view();
    if (request.controller == m_currentViewController) {
        if (view && m_targetView && !m_transition) {
            _placeView(*view);
            view->show();
        }
        return;
    }
    const int code = m_currentViewController ? request.code : KRTransitionNone;
    m_animated = code != KRTransitionNone;
    m_oldViewController = m_currentViewController;
    m_newViewController = request.controller;
    m_currentViewController = request.controller;
    if (view && m_targetView)
        _placeView(*view);

    const QPointer<KRViewControllerSwitcher> self(this);
    _pre_swap();
    if (!self)
        return;
    // A view that went with its window is not made again only to be taken away.
    const bool hasOldView = m_oldViewController && m_oldViewController->isViewLoaded();
    transition(code, hasOldView ? m_oldViewController->view() : nullptr, m_newViewController->view());
}

void KRViewControllerSwitcher::_placeView(QWidget& view)
{
    if (view.parentWidget() != m_targetView) {
        // It waits in the target view, so that it is measured and photographed with the fonts, the colours
        // and the scale of the window it will be seen in.
        view.hide();
        view.setParent(m_targetView);
    }
    m_placedFrame = m_targetFrame;
    m_placedTargetSize = m_targetView->size();
    KRSetViewFrame(view, m_placedFrame);
}

void KRViewControllerSwitcher::_pre_swap()
{
    const KRViewControllerPtr newViewController = m_newViewController;
    const KRViewControllerPtr oldViewController = m_oldViewController;
    const bool animated = m_animated;
    if (_isTargetInWindow())
        newViewController->viewWillAppear(animated);
    if (oldViewController)
        oldViewController->viewWillDisappear(animated);
}

void KRViewControllerSwitcher::_post_swap()
{
    const KRViewControllerPtr newViewController = std::move(m_newViewController);
    const KRViewControllerPtr oldViewController = std::move(m_oldViewController);
    const bool animated = m_animated;
    const QPointer<KRViewControllerSwitcher> self(this);
    if (_isTargetInWindow())
        newViewController->viewDidAppear(animated);
    if (oldViewController)
        oldViewController->viewDidDisappear(animated);
    if (self)
        _releaseSoon(oldViewController);
}

void KRViewControllerSwitcher::transition(int code, QWidget* oldView, QWidget* newView)
{
    m_ignoredUserInteraction = std::make_unique<KRIgnoredUserInteraction>();
    const bool moves = code != KRTransitionNone && KRMotion::isEnabled() && oldView && newView && m_targetView
        && m_targetView->isVisible();
    if (!moves || !_transitionInMotion(code, *oldView, *newView))
        _swapInstantly(oldView, newView);
}

bool KRViewControllerSwitcher::_transitionInMotion(int code, QWidget& oldView, QWidget& newView)
{
    const QPixmap oldImage = CreateCGImageScreenshot(oldView);
    const QPixmap newImage = CreateCGImageScreenshot(newView);
    if (oldImage.isNull() || newImage.isNull())
        return false;
    const auto fromLayer = std::make_shared<KRTransitionLayer>(oldImage, oldView.size());
    const auto toLayer = std::make_shared<KRTransitionLayer>(newImage, oldView.size());
    if (!beginTransition(code, fromLayer, toLayer))
        return false;
    m_transitionView = new KRTransitionView(m_targetView);
    m_transitionView->setGeometry(oldView.geometry());
    m_transitionView->addLayer(toLayer);
    m_transitionView->addLayer(fromLayer);
    connect(m_transitionView,
        &KRTransitionView::wentAway,
        this,
        &KRViewControllerSwitcher::_transitionViewWentAway);
    m_transitionView->show();
    const QPointer<KRViewControllerSwitcher> self(this);
    const QPointer<QWidget> leavingView(&oldView);
    m_transitionView->setFocus();
    if (self && leavingView)
        _removeView(*leavingView);
    return true;
}

bool KRViewControllerSwitcher::beginTransition(int code,
    const std::shared_ptr<KRTransitionLayer>& fromLayer,
    const std::shared_ptr<KRTransitionLayer>& toLayer)
{
    m_transition = std::make_unique<KRViewControllerSwitcherTransition>();
    m_transition->setFromLayer(fromLayer);
    m_transition->setToLayer(toLayer);
    m_transition->setDelegate(this);
    if (m_transition->start(code))
        return true;
    KRLog(QStringLiteral("Warning: unknown transition %1").arg(code));
    m_transition.reset();
    return false;
}

void KRViewControllerSwitcher::_swapInstantly(QWidget* oldView, QWidget* newView)
{
    const QPointer<KRViewControllerSwitcher> self(this);
    const QPointer<QWidget> leavingView(oldView != newView ? oldView : nullptr);
    // The focus moves first: a view that is taken away with it would hand it to whatever comes next. Whoever
    // hears of it may destroy any of these.
    _showNewView(newView);
    if (!self)
        return;
    if (leavingView)
        _removeView(*leavingView);
    m_ignoredUserInteraction.reset();
    _post_swap();
}

void KRViewControllerSwitcher::_removeView(QWidget& view)
{
    // It may have been placed elsewhere meanwhile.
    if (view.parentWidget() != m_targetView)
        return;
    view.hide();
    view.setParent(nullptr);
}

void KRViewControllerSwitcher::_showNewView(QWidget* newView)
{
    if (!newView || !m_targetView)
        return;
    if (newView->parentWidget() != m_targetView)
        _placeView(*newView);
    const QPointer<QWidget> shownView(newView);
    newView->show();
    if (shownView)
        shownView->setFocus();
}

// The end of a transition

void KRViewControllerSwitcher::finishTransition()
{
    if (m_transition)
        m_transition->animationDidStop();
}

void KRViewControllerSwitcher::transitionDidAdvance(KRViewControllerSwitcherTransition& /*transition*/)
{
    if (m_transitionView)
        m_transitionView->update();
}

void KRViewControllerSwitcher::transitionDidFinish(KRViewControllerSwitcherTransition& /*transition*/)
{
    m_finishTimer.invalidate();
    m_transition.reset();
    const QPointer<KRViewControllerSwitcher> self(this);
    _showNewView(m_targetView ? m_newViewController->view() : nullptr);
    if (!self)
        return;
    _removeTransitionView();
    m_ignoredUserInteraction.reset();

    const bool wasSwitching = std::exchange(m_isSwitching, true);
    _post_swap();
    if (!self)
        return;
    m_isSwitching = wasSwitching;
    if (!m_isSwitching)
        _answerWaiting();
}

void KRViewControllerSwitcher::_removeTransitionView()
{
    if (!m_transitionView)
        return;
    m_transitionView->disconnect(this);
    m_transitionView->hide();
    m_transitionView->deleteLater();
    m_transitionView.clear();
}

void KRViewControllerSwitcher::_transitionViewWentAway()
{
    // The user is heard again at once. The rest waits until the window has done what it is about to do with
    // its views.
    m_ignoredUserInteraction.reset();
    m_finishTimer = KRRunLoop::main().scheduleTimer(KRRunLoop::Duration::zero(),
        KRRunLoop::Repeats::No,
        [this] { finishTransition(); });
}

void KRViewControllerSwitcher::_releaseSoon(KRViewControllerPtr controller)
{
    if (!controller)
        return;
    m_released.push_back(std::move(controller));
    m_releaseTimer
        = KRRunLoop::main().scheduleTimer(KRRunLoop::Duration::zero(), KRRunLoop::Repeats::No, [this] {
              const std::vector<KRViewControllerPtr> released = std::move(m_released);
              m_released.clear();
          });
}

// The target view

bool KRViewControllerSwitcher::_isTargetInWindow() const
{
    if (!m_targetView)
        return false;
    // A widget without a parent is a window only once it has been shown.
    return m_targetView->window() != m_targetView || m_targetView->testAttribute(Qt::WA_WState_Created);
}

bool KRViewControllerSwitcher::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_targetView && event->type() == QEvent::Resize)
        _followTargetView();
    return QObject::eventFilter(watched, event);
}

void KRViewControllerSwitcher::_followTargetView()
{
    if (!m_currentViewController)
        return;
    const QSize growth = m_targetView->size() - m_placedTargetSize;
    const QRect frame = m_placedFrame.adjusted(0, 0, growth.width(), growth.height());
    if (m_currentViewController->isViewLoaded()
        && m_currentViewController->view()->parentWidget() == m_targetView)
        KRSetViewFrame(*m_currentViewController->view(), frame);
    if (m_transitionView)
        m_transitionView->setGeometry({ frame.topLeft(), frame.size().expandedTo(QSize(0, 0)) });
}
