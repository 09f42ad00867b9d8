#pragma once

#include "foundation/KRRunLoop.h"
#include "toolkit/transitions/KRTransitionLayer.h"

#include <memory>

/// How one screen replaces another: a kind, and KRTransitionShort added to it for a quick one. Slides are
/// named after what a reader sees of them in a column of screens, see the methods of the transition.
enum KRTransitionCode : int {
    KRTransitionNone = 0,
    KRTransitionFade = 1,
    KRTransitionFlyIn = 2,
    KRTransitionFlyOut = 3,
    KRTransitionSlideDown = 4,
    KRTransitionSlideUp = 5,
    KRTransitionSlideLeft = 6,
    KRTransitionSlideRight = 7,
    KRTransitionFancy = 8,
    KRTransitionKindMask = 0xFF,
    KRTransitionShort = 0x200,
};

class KRViewControllerSwitcherTransition;

/// Hears how a transition goes.
class KRViewControllerSwitcherTransitionDelegate {
public:
    KRViewControllerSwitcherTransitionDelegate() = default;
    KRViewControllerSwitcherTransitionDelegate(const KRViewControllerSwitcherTransitionDelegate&) = delete;
    KRViewControllerSwitcherTransitionDelegate& operator=(const KRViewControllerSwitcherTransitionDelegate&)
        = delete;
    virtual ~KRViewControllerSwitcherTransitionDelegate() = default;

    /// The layers have moved.
    virtual void transitionDidAdvance(KRViewControllerSwitcherTransition& /*transition*/) { }
    /// The last call of a transition, which may be destroyed by it.
    virtual void transitionDidFinish(KRViewControllerSwitcherTransition& transition) = 0;
};

/// Moves the layers of two screens, once, slowly at both ends. It runs by the shared clock on the main loop
/// for as long as it lives. Main thread.
class KRViewControllerSwitcherTransition {
public:
    using Duration = KRRunLoop::Duration;
    static constexpr Duration DefaultDuration { 350 };
    static constexpr Duration ShortDuration { 180 };
    static constexpr Duration FrameInterval { 16 };

    using LayerPtr = std::shared_ptr<KRTransitionLayer>;

    /// The screen that leaves and the one that comes.
    void setFromLayer(LayerPtr layer) { m_fromLayer = std::move(layer); }
    const LayerPtr& fromLayer() const { return m_fromLayer; }
    void setToLayer(LayerPtr layer) { m_toLayer = std::move(layer); }
    const LayerPtr& toLayer() const { return m_toLayer; }
    void setDuration(Duration duration) { m_duration = duration; }
    Duration duration() const { return m_duration; }
    /// Not owned; outlives the transition.
    void setDelegate(KRViewControllerSwitcherTransitionDelegate* delegate) { m_delegate = delegate; }
    KRViewControllerSwitcherTransitionDelegate* delegate() const { return m_delegate; }

    /// Starts the kind of a code. False when there is none of that number, and nothing starts.
    bool start(int code);

    // Each starts the transition of its name; the layers are set before, and only one is started.
    void fade();
    /// The old screen grows past the viewer, the new one grows from slightly small.
    void flyIn() { flyInOut(Flight::In); }
    /// The old screen shrinks away, the new one settles from slightly large.
    void flyOut() { flyInOut(Flight::Out); }
    /// Both move down.
    void slideDown() { slide(Edge::Bottom); }
    /// Both move up.
    void slideUp() { slide(Edge::Top); }
    /// The old screen leaves to the right, uncovering from the left.
    void slideLeft() { slide(Edge::Right); }
    /// The old screen leaves to the left.
    void slideRight() { slide(Edge::Left); }
    /// The old screen turns away in perspective and uncovers the new one behind it.
    void fancy();

    enum class Flight { In, Out };
    void flyInOut(Flight flight);
    /// The edge the old screen leaves by, pushed out by the new one.
    enum class Edge { Top, Bottom, Right, Left };
    void slide(Edge edge);

    /// What the animation ends with.
    void animationDidStop();

private:
    void _begin();
    void _tick();

    LayerPtr m_fromLayer;
    LayerPtr m_toLayer;
    Duration m_duration = DefaultDuration;
    KRViewControllerSwitcherTransitionDelegate* m_delegate = nullptr;
    KRClock::TimePoint m_startTime;
    KRTimer m_frameTimer;
};
