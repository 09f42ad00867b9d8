#pragma once

#include "toolkit/images/KRImage.h"

#include <QColor>
#include <QIcon>

/// The program's own pictures, by name: vectors, sharp at every scale factor. Each is read once. Main thread.
class PelinorImages {
public:
    PelinorImages() = delete;

    /// The picture as it was drawn.
    static const KRImage& named(const QString& name);
    /// A picture whose strokes take the colour of where they stand.
    static const KRImage& named(const QString& name, const QColor& color);
    /// The same for buttons and menus, at 16 points.
    static QIcon icon(const QString& name, const QColor& color);
};
