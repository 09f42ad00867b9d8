#include "toolkit/transitions/KRTransitionLayer.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int StripWidth = 2;

} // namespace

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
    const QTransform transform = this->transform();
    if (opacity < 1 && transform.type() == QTransform::TxScale)
        _drawScaledAndBlended(painter, transform);
    else if (transform.type() == QTransform::TxProject)
        _drawTurned(painter, transform);
    else
        _drawImage(painter, transform);
    painter.restore();
}

void KRTransitionLayer::_drawImage(QPainter& painter, const QTransform& transform) const
{
    painter.setTransform(transform, true);
    painter.drawPixmap(QRectF(QPointF(), QSizeF(m_size)), m_image, QRectF(m_image.rect()));
}

// Scaling and blending one after the other takes half as long as both at once: the painter is fast at each.
void KRTransitionLayer::_drawScaledAndBlended(QPainter& painter, const QTransform& transform) const
{
    const QRect area
        = transform.mapRect(QRectF(QPointF(), QSizeF(m_size))).toRect() & QRect(QPoint(), m_size);
    if (area.isEmpty())
        return;
    const qreal scale = m_image.devicePixelRatio();
    const QSize pixels = (QSizeF(area.size()) * scale).toSize();
    if (m_scaledImage.size() != pixels) {
        m_scaledImage = QPixmap(pixels);
        m_scaledImage.setDevicePixelRatio(scale);
    }
    QPainter scaledPainter(&m_scaledImage);
    scaledPainter.translate(-area.topLeft());
    _drawImage(scaledPainter, transform);
    scaledPainter.end();
    painter.drawPixmap(area.topLeft(), m_scaledImage);
}

// A turn about the vertical axis leaves columns upright and only changes how high and how far apart they are,
// so the picture is drawn in narrow strips; much faster than a division for every point of it.
void KRTransitionLayer::_drawTurned(QPainter& painter, const QTransform& transform) const
{
    const double middle = m_size.height() / 2.0;
    const QTransform inverse = transform.inverted();
    const QPointF scale(m_image.width() / double(m_size.width()), m_image.height() / double(m_size.height()));
    const auto columnAt = [&](double x) {
        return std::clamp(inverse.map(QPointF(x, middle)).x(), 0.0, double(m_size.width()));
    };
    for (int x = 0; x < m_size.width(); x += StripWidth) {
        const double left = columnAt(x);
        const double right = columnAt(x + StripWidth);
        const double distance = transform.m13() * (left + right) / 2 + transform.m33();
        if (right <= left || distance <= 0)
            continue;
        const double height = m_size.height() / distance;
        painter.drawPixmap(QRectF(x, middle - height / 2, StripWidth, height),
            m_image,
            QRectF(left * scale.x(), 0, (right - left) * scale.x(), m_image.height()));
    }
}
