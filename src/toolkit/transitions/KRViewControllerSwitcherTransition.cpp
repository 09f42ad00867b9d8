#include "toolkit/transitions/KRViewControllerSwitcherTransition.h"

#include <QEasingCurve>

#include <algorithm>
#include <cmath>

namespace {

// The curve of a movement that starts and ends at rest.
double eased(double time)
{
    static const QEasingCurve curve = [] {
        QEasingCurve easeInEaseOut(QEasingCurve::BezierSpline);
        easeInEaseOut.addCubicBezierSegment({ 0.42, 0 }, { 0.58, 1 }, { 1, 1 });
        return easeInEaseOut;
    }();
    return curve.valueForProgress(time);
}

constexpr double Enlarged = 1.2;
constexpr double Reduced = 0.9;
constexpr double QuarterTurn = 1.5707963267948966;
constexpr double TurnAngle = QuarterTurn / 2;
constexpr double TurnPerspective = 0.002;
// The near edge of a very wide screen would pass the viewer, and come back from behind.
constexpr double NearestToViewer = 0.9;
// The screen behind the one that turns away comes a little closer.
constexpr double BehindScale = 0.94;

} // namespace

bool KRViewControllerSwitcherTransition::start(int code)
{
    using Method = void (KRViewControllerSwitcherTransition::*)();
    using Self = KRViewControllerSwitcherTransition;
    static constexpr Method methods[] = { nullptr,
        &Self::fade,
        &Self::flyIn,
        &Self::flyOut,
        &Self::slideDown,
        &Self::slideUp,
        &Self::slideLeft,
        &Self::slideRight,
        &Self::fancy };
    const auto kind = size_t(code & KRTransitionKindMask);
    if (kind >= std::size(methods) || !methods[kind])
        return false;
    if (code & KRTransitionShort)
        setDuration(ShortDuration);
    (this->*methods[kind])();
    return true;
}

void KRViewControllerSwitcherTransition::fade()
{
    m_toLayer->setZPosition(1);
    m_toLayer->animate({ .opacity = 0 }, { .opacity = 1 });
    _begin();
}

void KRViewControllerSwitcherTransition::flyInOut(Flight flight)
{
    const double fromScale = flight == Flight::In ? Enlarged : Reduced;
    const double toScale = flight == Flight::In ? Reduced : Enlarged;
    m_fromLayer->animate({}, { .opacity = 0, .scale = fromScale });
    m_toLayer->animate({ .opacity = 0, .scale = toScale }, {});
    _begin();
}

void KRViewControllerSwitcherTransition::slide(Edge edge)
{
    const QSizeF size = m_fromLayer->size();
    QPointF way;
    switch (edge) {
    case Edge::Top:
        way = { 0, -size.height() };
        break;
    case Edge::Bottom:
        way = { 0, size.height() };
        break;
    case Edge::Right:
        way = { size.width(), 0 };
        break;
    case Edge::Left:
        way = { -size.width(), 0 };
        break;
    }
    m_fromLayer->animate({}, { .translation = way });
    m_toLayer->animate({ .translation = -way }, {});
    _begin();
}

void KRViewControllerSwitcherTransition::fancy()
{
    m_toLayer->setZPosition(-1);
    const double reach = m_fromLayer->size().width() / 2.0 * std::sin(TurnAngle);
    const double perspective
        = reach * TurnPerspective > NearestToViewer ? NearestToViewer / reach : TurnPerspective;
    m_fromLayer->animate({}, { .angle = TurnAngle, .perspective = perspective });
    m_toLayer->animate({ .scale = BehindScale }, {});
    _begin();
}

void KRViewControllerSwitcherTransition::_begin()
{
    m_startTime = KRClock::shared().monotonicNow();
    m_frameTimer
        = KRRunLoop::main().scheduleTimer(FrameInterval, KRRunLoop::Repeats::Yes, [this] { _tick(); });
}

void KRViewControllerSwitcherTransition::_tick()
{
    const std::chrono::duration<double> elapsed = KRClock::shared().monotonicNow() - m_startTime;
    const double time = elapsed / std::chrono::duration<double>(m_duration);
    if (time >= 1) {
        animationDidStop();
        return;
    }
    const double progress = eased(std::max(0.0, time));
    m_fromLayer->setProgress(progress);
    m_toLayer->setProgress(progress);
    if (m_delegate)
        m_delegate->transitionDidAdvance(*this);
}

void KRViewControllerSwitcherTransition::animationDidStop()
{
    m_frameTimer.invalidate();
    m_fromLayer->setProgress(1);
    m_toLayer->setProgress(1);
    if (m_delegate)
        m_delegate->transitionDidFinish(*this);
}
