#pragma once

#include "text/render/KRActiveTextStyle.h"

#include <QColor>

class QPalette;

/// The colours of a list's cells, for light and for dark desktops.
struct PelinorCellColors {
    QColor background;
    /// Behind the account's own posts.
    QColor ownBackground;
    QColor selectedBackground;
    /// The mark at the edge of the selected row.
    QColor selectionMark;
    QColor separator;
    QColor name;
    QColor text;
    QColor secondaryText;
    /// Where a picture is not there yet, and what is drawn on it.
    QColor placeholder;
    QColor placeholderFigure;
    QColor error;
    KRActiveTextColors spans;

    static const PelinorCellColors& forPalette(const QPalette& palette);
};
