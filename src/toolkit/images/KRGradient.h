#pragma once

#include "foundation/KRColor.h"

#include <QPointF>
#include <QRectF>

#include <vector>

class QPainter;

/// Colours that run into each other along a line. A value. Main thread.
class KRGradient {
public:
    struct Stop {
        /// From 0 at the line's start to 1 at its end.
        double position = 0;
        KRColor color;
    };
    enum class Direction { Down, Right };

    KRGradient(const KRColor& startingColor, const KRColor& endingColor);
    /// Stops are given in ascending order; before the first and after the last the colour stays the same.
    explicit KRGradient(std::vector<Stop> stops);

    const std::vector<Stop>& stops() const { return m_stops; }
    /// The colour at a position of the line.
    [[nodiscard]] KRColor colorAtPosition(double position) const;

    /// Fills the rectangle from one of its edges to the opposite one.
    void drawInRect(QPainter& painter, const QRectF& rect, Direction direction) const;
    /// Fills the rectangle, the gradient running between the two points.
    void drawFromPoint(QPainter& painter, const QRectF& rect, QPointF start, QPointF end) const;

private:
    std::vector<Stop> m_stops;
};
