#pragma once

#include <QPixmap>
#include <QPointF>
#include <QTransform>

class QPainter;

/// Where and how a layer is shown. Lengths are in points, x to the right and y downward, about the layer's
/// centre.
struct KRTransitionPose {
    double opacity = 1;
    double scale = 1;
    QPointF translation = {};
    /// A turn about the vertical axis, in radians; the right edge goes away from the viewer.
    double angle = 0;
    /// How much what is a point further away is smaller; 0 for none.
    double perspective = 0;

    bool operator==(const KRTransitionPose&) const = default;
};

/// A picture that takes part in a transition, drawn as large as its layer. Its own pose is where it ends up;
/// while it is animated it shows one on the way there. Main thread.
class KRTransitionLayer {
public:
    KRTransitionLayer(QPixmap image, QSize size)
        : m_image(std::move(image))
        , m_size(size)
    {
    }

    QSize size() const { return m_size; }
    /// Layers with a greater one are in front.
    int zPosition() const { return m_zPosition; }
    void setZPosition(int zPosition) { m_zPosition = zPosition; }

    const KRTransitionPose& pose() const { return m_end; }
    /// Shown at once.
    void setPose(const KRTransitionPose& pose);
    /// From now on setProgress() moves between the two.
    void animate(const KRTransitionPose& from, const KRTransitionPose& to);
    /// From 0 at the start to 1 at the end.
    void setProgress(double progress) { m_progress = progress; }

    /// What is shown now.
    [[nodiscard]] KRTransitionPose presentation() const;
    /// From the layer, its top left at the origin, to where it is shown.
    [[nodiscard]] QTransform transform() const;
    void draw(QPainter& painter) const;

private:
    void _drawImage(QPainter& painter, const QTransform& transform) const;
    void _drawScaledAndBlended(QPainter& painter, const QTransform& transform) const;
    void _drawTurned(QPainter& painter, const QTransform& transform) const;

    QPixmap m_image;
    // Kept from frame to frame.
    mutable QPixmap m_scaledImage;
    QSize m_size;
    int m_zPosition = 0;
    KRTransitionPose m_start;
    KRTransitionPose m_end;
    double m_progress = 1;
};
