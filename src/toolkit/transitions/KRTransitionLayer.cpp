#include "toolkit/transitions/KRTransitionLayer.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

void KRTransitionLayer::setPose(const KRTransitionPose& pose)
{
    animate(pose, pose);
    m_progress = 1;
}

void KRTransitionLayer::animate(const KRTransitionPose& from, const KRTransitionPose& to)
{
    m_start = from;
    m_end = to;
    m_progress = 0;
}

KRTransitionPose KRTransitionLayer::presentation() const
{
    const auto between = [this](auto from, auto to) { return from + (to - from) * m_progress; };
    return { between(m_start.opacity, m_end.opacity),
        between(m_start.scale, m_end.scale),
        between(m_start.translation, m_end.translation),
        between(m_start.angle, m_end.angle),
        between(m_start.perspective, m_end.perspective) };
}

QTransform KRTransitionLayer::transform() const
{
    const KRTransitionPose pose = presentation();
    const QPointF center(m_size.width() / 2.0, m_size.height() / 2.0);
    // A point at x of the turned layer is x·cos to the side and x·sin away, where everything is smaller.
    const QTransform turn(std::cos(pose.angle), 0, pose.perspective * std::sin(pose.angle), 0, 1, 0, 0, 0, 1);
    return QTransform::fromTranslate(-center.x(), -center.y()) * QTransform::fromScale(pose.scale, pose.scale)
        * turn
        * QTransform::fromTranslate(center.x() + pose.translation.x(), center.y() + pose.translation.y());
}

void KRTransitionLayer::draw(QPainter& painter) const
{
    const double opacity = std::clamp(presentation().opacity, 0.0, 1.0);
    if (m_image.isNull() || opacity <= 0)
        return;
    painter.save();
    painter.setOpacity(opacity);
    painter.setTransform(transform(), true);
    painter.drawPixmap(QRectF(QPointF(), QSizeF(m_size)), m_image, QRectF(m_image.rect()));
    painter.restore();
}
