#pragma once

#include <QColor>
#include <QFont>

class QPalette;

/// The gallery's colours and fonts, for light and for dark surroundings.
struct GalleryLook {
    QColor page;
    QColor card;
    QColor line;
    QColor text;
    QColor secondaryText;
    QColor accent;
    QColor selection;

    static const GalleryLook& forPalette(const QPalette& palette);
    /// For the whole program.
    static QPalette palette(bool dark);
    static QFont font(int size, bool bold = false);
};
