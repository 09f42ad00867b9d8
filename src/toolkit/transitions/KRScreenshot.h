#pragma once

#include <QPixmap>

class QWidget;

/// An opaque image of the view's current appearance at its size, as sharp as the screen it is on; also of a
/// view that is not visible yet. Null for a view without an area and for one too large to be photographed.
[[nodiscard]] QPixmap CreateCGImageScreenshot(QWidget& view);
