#pragma once

#include "toolkit/navigation/KRNavigationBar.h"
#include "toolkit/navigation/KRViewControllerSwitcher.h"

class KRNavigationControllerView;

/// Keeps a stack of screens and shows the top one below a navigation bar. The stack owns its screens from the
/// push until the pop, and is never shared between two controllers. Main thread.
///
/// A push or pop asked for by one of the hooks that a push or pop calls follows when that one is done; such a
/// pop answers nothing.
class KRNavigationController : public KRViewController, public KRNavigationBarDelegate {
    Q_OBJECT

public:
    KRNavigationController();
    explicit KRNavigationController(const KRViewControllerPtr& rootViewController);
    ~KRNavigationController() override;

    /// Nothing for the screen that is on top already. The screen that is covered chooses the animation.
    void pushViewController(const KRViewControllerPtr& controller, KRAnimated animated);
    /// The screen that was popped; null from a stack of one.
    KRViewControllerPtr popViewControllerAnimated(KRAnimated animated);
    /// Everything above the screen, which chooses the animation; nothing when it is the top or not here.
    KRPoppedViewControllers popToViewController(const KRViewController& controller,
        KRAnimated animated) override;
    KRPoppedViewControllers popToRootViewControllerAnimated(KRAnimated animated);

    /// Null for an empty stack.
    KRViewControllerPtr topViewController() const;
    /// The stack, bottom first.
    const std::vector<KRViewControllerPtr>& viewControllers() const { return m_viewControllers; }
    KRNavigationBar* navigationBar();
    KRViewControllerSwitcher& switcher() { return m_switcher; }

    void navigationBarDidClickBack(KRNavigationBar& bar) override;
    bool keyUp(const QKeyEvent& event) override;
    bool swipeWithEvent(double deltaX) override;

    void loadView() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;

    QObject* nextResponder() const override;
    /// The view around this controller's own, or null.
    QObject* originalNextResponder() const;

private:
    class Change;

    void _setTargetFrame();
    void _topDidChange();
    bool _postpone(std::function<void()> change);

    QPointer<KRNavigationControllerView> m_controllerView;
    QPointer<KRNavigationBar> m_navigationBar;
    std::vector<KRViewControllerPtr> m_viewControllers;
    KRViewControllerSwitcher m_switcher;
    bool m_isChanging = false;
    std::vector<std::function<void()>> m_waitingChanges;
};
