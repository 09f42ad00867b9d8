#pragma once

#include <QColor>

class QPalette;

/// The colours of the main window around its lists. The column of accounts is dark on every desktop. Main
/// thread.
struct PelinorWindowColors {
    // The column.
    QColor column;
    QColor columnShade;
    QColor columnEnd;
    QColor columnIcon;
    QColor columnPlaceholder;
    QColor columnFocus;

    // The strip at the bottom.
    QColor strip;
    QColor stripLine;
    QColor stripText;
    QColor stripError;

    /// Where screens are; what points at them from the column has their colour.
    QColor screen;

    /// The quiet light in the status area, where the ground is the desktop's and not known.
    QColor statusItem;

    static const PelinorWindowColors& forPalette(const QPalette& palette);
};
