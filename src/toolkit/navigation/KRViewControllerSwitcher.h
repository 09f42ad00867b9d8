#pragma once

#include "foundation/KRRunLoop.h"
#include "toolkit/navigation/KRViewController.h"
#include "toolkit/transitions/KRViewControllerSwitcherTransition.h"

#include <QRect>

#include <optional>
#include <vector>

class KRIgnoredUserInteraction;
class KRTransitionView;

/// Shows one view controller's view inside a target view and replaces it by another's, at once or in a
/// transition. A transition moves photographs of the two, and the user is ignored until it is over.
///
/// A transition is over early, with everything in its place, when another switch is asked for or when nobody
/// can see it any longer. A switch asked for by one of the hooks it calls follows when the present one has
/// begun. Main thread.
class KRViewControllerSwitcher : public QObject, private KRViewControllerSwitcherTransitionDelegate {
    Q_OBJECT

public:
    KRViewControllerSwitcher();
    /// Without further calls to the controllers.
    ~KRViewControllerSwitcher() override;

    /// The code is one of KRTransitionCode, or one of them with KRTransitionShort. The first view appears
    /// without one. Switching to the controller that is shown only places its view anew.
    void switchToViewController(const KRViewControllerPtr& controller, int code);

    const KRViewControllerPtr& currentViewController() const { return m_currentViewController; }
    /// The current controller where it is one, else null.
    std::shared_ptr<KRNavigationController> currentNavigationController() const;

    QWidget* targetView() const { return m_targetView; }
    /// Not owned. It should have a window around it, or be shown, by the time controllers are to be told
    /// that they appear.
    void setTargetView(QWidget* targetView);
    /// Where the next view is placed, in points of the target view as it is then. When the target view
    /// changes its size, the shown one follows.
    QRect targetFrame() const { return m_targetFrame; }
    void setTargetFrame(const QRect& frame) { m_targetFrame = frame; }

    /// Null except during a transition.
    KRTransitionView* transitionView() const;
    /// Puts an end to the transition that is under way.
    void finishTransition();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Request {
        KRViewControllerPtr controller;
        int code = 0;
    };

    void _switch(const Request& request);
    void _answerWaiting();
    void _placeView(QWidget& view);
    void _followTargetView();
    void _pre_swap();
    void _post_swap();
    void _swapInstantly(QWidget* oldView, QWidget* newView);
    void transition(int code, QWidget* oldView, QWidget* newView);
    bool _transitionInMotion(int code, QWidget& oldView, QWidget& newView);
    bool beginTransition(int code,
        const std::shared_ptr<KRTransitionLayer>& fromLayer,
        const std::shared_ptr<KRTransitionLayer>& toLayer);
    void _removeView(QWidget& view);
    void _showNewView(QWidget* newView);
    void _removeTransitionView();
    void _transitionViewWentAway();
    bool _isTargetInWindow() const;
    void _releaseSoon(KRViewControllerPtr controller);

    void transitionDidAdvance(KRViewControllerSwitcherTransition& transition) override;
    void transitionDidFinish(KRViewControllerSwitcherTransition& transition) override;

    QPointer<QWidget> m_targetView;
    QRect m_targetFrame;
    // Where the shown view was placed, and how large the target view was then.
    QRect m_placedFrame;
    QSize m_placedTargetSize;

    KRViewControllerPtr m_currentViewController;
    // The two sides of the switch in progress.
    KRViewControllerPtr m_newViewController;
    KRViewControllerPtr m_oldViewController;
    bool m_animated = false;

    QPointer<KRTransitionView> m_transitionView;
    std::unique_ptr<KRViewControllerSwitcherTransition> m_transition;
    std::unique_ptr<KRIgnoredUserInteraction> m_ignoredUserInteraction;
    KRTimer m_finishTimer;

    bool m_isSwitching = false;
    std::vector<Request> m_waiting;
    // A controller may be let go of by one of its own methods, or by an event of its view.
    std::vector<KRViewControllerPtr> m_released;
    KRTimer m_releaseTimer;
};
