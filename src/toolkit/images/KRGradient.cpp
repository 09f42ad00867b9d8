#include "toolkit/images/KRGradient.h"

#include "text/render/KRColorConversion.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

KRGradient::KRGradient(const KRColor& startingColor, const KRColor& endingColor)
    : KRGradient(std::vector<Stop> { { 0, startingColor }, { 1, endingColor } })
{
}

KRGradient::KRGradient(std::vector<Stop> stops)
    : m_stops(std::move(stops))
{
}

KRColor KRGradient::colorAtPosition(double position) const
{
    if (m_stops.empty())
        return KRColor::rgba(0, 0, 0, 0);
    const auto after = std::find_if(m_stops.begin(), m_stops.end(), [position](const Stop& stop) {
        return stop.position > position;
    });
    if (after == m_stops.begin())
        return m_stops.front().color;
    if (after == m_stops.end())
        return m_stops.back().color;
    const Stop& before = *(after - 1);
    const auto share = float((position - before.position) / (after->position - before.position));
    const auto between = [share](float from, float to) { return from + (to - from) * share; };
    return KRColor::rgba(between(before.color.red, after->color.red),
        between(before.color.green, after->color.green),
        between(before.color.blue, after->color.blue),
        between(before.color.alpha, after->color.alpha));
}

void KRGradient::drawInRect(QPainter& painter, const QRectF& rect, Direction direction) const
{
    const QPointF end = direction == Direction::Down ? rect.bottomLeft() : rect.topRight();
    drawFromPoint(painter, rect, rect.topLeft(), end);
}

void KRGradient::drawFromPoint(QPainter& painter, const QRectF& rect, QPointF start, QPointF end) const
{
    QLinearGradient gradient(start, end);
    for (const Stop& stop : m_stops)
        gradient.setColorAt(std::clamp(stop.position, 0.0, 1.0), KRQColor(stop.color));
    painter.fillRect(rect, gradient);
}
