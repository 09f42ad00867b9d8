#include "toolkit/navigation/KRNavigationController.h"

#include "foundation/KRLog.h"
#include "toolkit/KRViewFrame.h"
#include "toolkit/navigation/KRNavigationAccessibility.h"
#include "toolkit/navigation/KRNavigationControllerView.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QAccessible>
#include <QKeyEvent>

#include <algorithm>

namespace {

// Only fixes the proportions until the view is placed.
constexpr QSize InitialSize(1000, 1000);

bool isAnimated(KRAnimated animated)
{
    return animated == KRAnimated::Yes;
}

} // namespace

// While it lives the stack and the bar may differ. What the hooks ask for meanwhile follows at its end.
class KRNavigationController::Change {
public:
    explicit Change(KRNavigationController& controller)
        : m_controller(&controller)
    {
        controller.m_isChanging = true;
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;
    ~Change()
    {
        if (!m_controller)
            return;
        m_controller->m_isChanging = false;
        m_controller->_topDidChange();
        while (m_controller && !m_controller->m_isChanging && !m_controller->m_waitingChanges.empty()) {
            const std::function<void()> change = std::move(m_controller->m_waitingChanges.front());
            m_controller->m_waitingChanges.erase(m_controller->m_waitingChanges.begin());
            change();
        }
    }

    /// Whether the controller is still there.
    explicit operator bool() const { return !m_controller.isNull(); }

private:
    QPointer<KRNavigationController> m_controller;
};

KRNavigationController::KRNavigationController()
{
    KRInstallNavigationAccessibility();
}

KRNavigationController::KRNavigationController(const KRViewControllerPtr& rootViewController)
    : KRNavigationController()
{
    pushViewController(rootViewController, KRAnimated::No);
}

KRNavigationController::~KRNavigationController()
{
    // The view goes after this.
    if (m_navigationBar)
        m_navigationBar->setDelegate(nullptr);
    if (m_controllerView)
        m_controllerView->setNavigationController(nullptr);
}

void KRNavigationController::loadView()
{
    auto view = std::make_unique<KRNavigationControllerView>(*this);
    m_controllerView = view.get();
    m_navigationBar = new KRNavigationBar(view.get());
    m_navigationBar->setDelegate(this);
    view->setNavigationBar(m_navigationBar);
    m_switcher.setTargetView(view.get());
    QWidget& placedView = *view;
    setView(std::move(view));
    KRSetViewFrame(placedView, QRect(QPoint(0, 0), InitialSize));
    // A stack whose former view went with its window.
    for (const KRViewControllerPtr& controller : m_viewControllers)
        m_navigationBar->pushNavigationItem(controller->navigationItem(), KRAnimated::No);
    if (const KRViewControllerPtr top = topViewController()) {
        _setTargetFrame();
        m_switcher.switchToViewController(top, KRTransitionNone);
    }
}

KRNavigationBar* KRNavigationController::navigationBar()
{
    view();
    return m_navigationBar;
}

void KRNavigationController::_setTargetFrame()
{
    const QSize size = view()->size();
    m_switcher.setTargetFrame(
        { 0, KRNavigationBar::Height, size.width(), std::max(0, size.height() - KRNavigationBar::Height) });
}

void KRNavigationController::_topDidChange()
{
    if (!m_controllerView)
        return;
    QAccessibleEvent nameChange(m_controllerView, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&nameChange);
}

bool KRNavigationController::_postpone(std::function<void()> change)
{
    if (m_isChanging)
        m_waitingChanges.push_back(std::move(change));
    return m_isChanging;
}

// The stack

KRViewControllerPtr KRNavigationController::topViewController() const
{
    return m_viewControllers.empty() ? nullptr : m_viewControllers.back();
}

void KRNavigationController::pushViewController(const KRViewControllerPtr& controller, KRAnimated animated)
{
    if (!controller || _postpone([this, controller, animated] { pushViewController(controller, animated); }))
        return;
    const KRViewControllerPtr top = topViewController();
    if (top == controller)
        return;
    const Change change(*this);
    controller->setParentViewController(this);
    _setTargetFrame();
    const int code = isAnimated(animated) && top ? top->pushAnimation() : KRTransitionNone;
    m_switcher.switchToViewController(controller, code);
    if (!change)
        return;
    m_navigationBar->pushNavigationItem(controller->navigationItem(), animated);
    m_viewControllers.push_back(controller);
}

KRPoppedViewControllers KRNavigationController::popToViewController(const KRViewController& controller,
    KRAnimated animated)
{
    const auto isController
        = [&controller](const KRViewControllerPtr& other) { return other.get() == &controller; };
    const auto found = std::find_if(m_viewControllers.begin(), m_viewControllers.end(), isController);
    if (found == m_viewControllers.end() || found + 1 == m_viewControllers.end())
        return {};
    const KRViewControllerPtr target = *found;
    if (_postpone([this, target, animated] { popToViewController(*target, animated); }))
        return {};
    const Change change(*this);
    KRPoppedViewControllers popped(found + 1, m_viewControllers.end());
    m_viewControllers.erase(found + 1, m_viewControllers.end());
    _setTargetFrame();
    const int code = isAnimated(animated) ? target->popAnimation() : KRTransitionNone;
    m_switcher.switchToViewController(target, code);
    if (change)
        m_navigationBar->popToNavigationItem(*target->navigationItem(), animated);
    return popped;
}

KRViewControllerPtr KRNavigationController::popViewControllerAnimated(KRAnimated animated)
{
    if (_postpone([this, animated] { popViewControllerAnimated(animated); }) || m_viewControllers.size() < 2)
        return nullptr;
    const KRPoppedViewControllers popped
        = popToViewController(*m_viewControllers[m_viewControllers.size() - 2], animated);
    if (popped.size() == 1)
        return popped.front();
    KRLog(QStringLiteral("Error: popped VC count should be 1"));
    return nullptr;
}

KRPoppedViewControllers KRNavigationController::popToRootViewControllerAnimated(KRAnimated animated)
{
    if (_postpone([this, animated] { popToRootViewControllerAnimated(animated); })
        || m_viewControllers.size() < 2)
        return {};
    return popToViewController(*m_viewControllers.front(), animated);
}

// Going back

void KRNavigationController::navigationBarDidClickBack(KRNavigationBar& /*bar*/)
{
    popViewControllerAnimated(KRAnimated::Yes);
}

bool KRNavigationController::keyUp(const QKeyEvent& event)
{
    if (event.key() != Qt::Key_Escape && event.key() != Qt::Key_Left)
        return false;
    popViewControllerAnimated(KRAnimated::Yes);
    return true;
}

bool KRNavigationController::swipeWithEvent(double deltaX)
{
    if (deltaX > 0)
        popViewControllerAnimated(KRAnimated::Yes);
    return true;
}

// Appearing

void KRNavigationController::viewWillAppear(bool animated)
{
    KRViewController::viewWillAppear(animated);
    if (const KRViewControllerPtr top = topViewController())
        top->viewWillAppear(animated);
}

void KRNavigationController::viewDidAppear(bool animated)
{
    KRViewController::viewDidAppear(animated);
    const KRViewControllerPtr top = topViewController();
    if (!top)
        return;
    top->viewDidAppear(animated);
    if (QWidget* const topView = top->view())
        topView->setFocus();
}

void KRNavigationController::viewWillDisappear(bool animated)
{
    KRViewController::viewWillDisappear(animated);
    if (const KRViewControllerPtr top = topViewController())
        top->viewWillDisappear(animated);
}

void KRNavigationController::viewDidDisappear(bool animated)
{
    KRViewController::viewDidDisappear(animated);
    if (const KRViewControllerPtr top = topViewController())
        top->viewDidDisappear(animated);
}

// Responders

QObject* KRNavigationController::nextResponder() const
{
    return topViewController().get();
}

QObject* KRNavigationController::originalNextResponder() const
{
    return m_controllerView ? m_controllerView->parentWidget() : nullptr;
}
