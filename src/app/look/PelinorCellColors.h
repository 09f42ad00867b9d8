#pragma once

#include "text/render/KRActiveTextStyle.h"

#include <QColor>

class QPalette;

/// The colours of a list's cells, for light and for dark desktops, and for users who wish for more contrast.
/// Text has a contrast of 4.5:1 or more on every background it can stand on, hashtags on white aside, whose
/// grey is fixed; of 7:1 with more contrast, without an exception. Main thread.
struct PelinorCellColors {
    QColor background;
    /// Behind the account's own posts.
    QColor ownBackground;
    /// Behind the posts that mention it.
    QColor mentionBackground;
    QColor selectedBackground;
    /// The mark at the edge of the selected row.
    QColor selectionMark;
    QColor separator;
    QColor name;
    QColor text;
    QColor secondaryText;
    /// Everything written in a post that was read, where the user wants those dimmed.
    QColor dimmedText;
    /// Where a picture is not there yet, and what is drawn on it.
    QColor placeholder;
    QColor placeholderFigure;
    QColor error;
    QColor favorite;
    KRActiveTextColors spans;
    /// On the selected row's background.
    KRActiveTextColors selectedSpans;
    KRActiveTextColors dimmedSpans;

    static const PelinorCellColors& forPalette(const QPalette& palette);
};
