#pragma once

#include <QRect>

/// Where things are in the cell of a status, in points from its top left. The account's own posts are laid
/// out mirrored, the picture at the right.
struct PelinorStatusCellGeometry {
    /// What the picture and the margins leave of a cell's width for its text.
    static constexpr int WidthBesideText = 94;
    static constexpr int HeightBesideText = 37;
    /// That of the picture.
    static constexpr int MinimumHeight = 52;

    int width = 0;
    bool isMine = false;

    QRect profileImageFrame() const { return isMine ? QRect(width - 58, 0, 52, 52) : QRect(6, 0, 52, 52); }
    QRect nameFrame() const
    {
        return isMine ? QRect(width - 280, 5, 200, 20) : QRect(71, 5, width - 195, 20);
    }
    QRect dateFrame() const { return isMine ? QRect(15, 6, 100, 20) : QRect(width - 128, 6, 100, 20); }
    // The buttons, each in the frame it is drawn in.
    QRect replyButtonDisplayRect() const { return { width - 27, 6, 18, 13 }; }
    static QRect actionRect(int width, int height) { return { width - 22, height - 18, 10, 10 }; }
    /// On the picture's lower corner.
    QRect favoriteRect() const
    {
        const QRect picture = profileImageFrame();
        return { picture.right() - 17, picture.bottom() - 17, 16, 16 };
    }
    QPoint textOrigin() const { return isMine ? QPoint(18, 24) : QPoint(73, 24); }
    int textWidth() const { return width - WidthBesideText; }
};
