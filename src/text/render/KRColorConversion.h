#pragma once

#include "foundation/KRColor.h"

#include <QColor>

/// The drawing layers' form of a colour.
[[nodiscard]] inline QColor KRQColor(const KRColor& color)
{
    return QColor::fromRgbF(color.red, color.green, color.blue, color.alpha);
}

/// The other way round.
[[nodiscard]] inline KRColor KRColorFromQColor(const QColor& color)
{
    return KRColor::rgba(color.redF(), color.greenF(), color.blueF(), color.alphaF());
}
