#pragma once

#include <QColor>

class QPalette;

/// The colours of the window that a post is written in. Those of a light desktop are fixed; on a dark one they
/// could not be read. Main thread.
struct PelinorDraftColors {
    QColor links;
    QColor hashtags;
    QColor usernames;
    /// Behind links, and around that.
    QColor backdrop;
    QColor backdropRim;
    /// How many characters are left, and how many are too many.
    QColor remaining;
    QColor tooMany;
    /// Behind the picture of the camera, and the words on it.
    QColor camera;
    QColor cameraText;

    static const PelinorDraftColors& forPalette(const QPalette& palette);
};
