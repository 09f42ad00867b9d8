#pragma once

#include "model/records/TwitterProfileImage.h"

#include <QImage>
#include <QRectF>

class QPainter;
struct PelinorCellColors;

/// An avatar with rounded corners, in the size lists show it. Immutable; any thread.
class PelinorProfileImage final : public TwitterProfileImage {
public:
    /// The square an avatar takes in a list, in points. The picture itself keeps Inset from its sides.
    static constexpr int Side = 52;
    static constexpr int Inset = 4;
    static constexpr int CornerRadius = 8;

    explicit PelinorProfileImage(QImage image)
        : m_image(std::move(image))
    {
    }

    const QImage& image() const { return m_image; }

    /// Draws the avatar into the square; a drawn figure when there is none (yet). Main thread.
    static void draw(QPainter& painter,
        const QRectF& square,
        const TwitterProfileImagePtr& image,
        const PelinorCellColors& colors);

    /// Draws nothing but the avatar.
    static void drawPicture(QPainter& painter, const QRectF& square, const TwitterProfileImage& image);

private:
    QImage m_image;
};

/// The maker of avatars. Null for data that is no picture of a usual kind, or one of more bytes or pixels
/// than any avatar needs.
TwitterProfileImagePtr CreateRoundedProfileImage(const QByteArray& data);
