#include "app/look/PelinorWindowColors.h"

#include "app/look/PelinorContrast.h"

#include <QPalette>

namespace {

PelinorWindowColors lightColors()
{
    return {
        .column = QColor(40, 40, 40),
        .columnShade = QColor(0, 0, 0),
        .columnEnd = QColor(179, 179, 179),
        .columnIcon = QColor(0xFF, 0xFF, 0xFF),
        .columnPlaceholder = QColor(128, 128, 128),
        .columnFocus = QColor(0x7C, 0xC4, 0xFF),
        .strip = QColor(0xF0, 0xF2, 0xF4),
        .stripLine = QColor(0xD5, 0xD9, 0xDE),
        .stripText = QColor(0x4A, 0x52, 0x5B),
        .stripError = QColor(0xA6, 0x2B, 0x1F),
        .screen = QColor(0xFF, 0xFF, 0xFF),
        .statusItem = QColor(0x8C, 0x94, 0x9D),
    };
}

PelinorWindowColors darkColors()
{
    PelinorWindowColors colors = lightColors();
    colors.strip = QColor(0x25, 0x2A, 0x2F);
    colors.stripLine = QColor(0x11, 0x14, 0x17);
    colors.stripText = QColor(0xA9, 0xB2, 0xBB);
    colors.stripError = QColor(0xF2, 0x9A, 0x8E);
    colors.screen = QColor(0x1C, 0x20, 0x24);
    return colors;
}

PelinorWindowColors raised(PelinorWindowColors colors, const QColor& page, const QColor& ink)
{
    colors.column = QColor(Qt::black);
    colors.columnFocus = QColor(Qt::white);
    colors.columnPlaceholder = QColor(Qt::white);
    colors.strip = page;
    colors.stripLine = ink;
    colors.stripText = ink;
    colors.screen = page;
    return colors;
}

} // namespace

const PelinorWindowColors& PelinorWindowColors::forPalette(const QPalette& palette)
{
    static const PelinorWindowColors light = lightColors();
    static const PelinorWindowColors dark = darkColors();
    static const PelinorWindowColors raisedLight = raised(light, QColor(Qt::white), QColor(Qt::black));
    static const PelinorWindowColors raisedDark = raised(dark, QColor(Qt::black), QColor(Qt::white));
    const bool isDark = palette.color(QPalette::WindowText).lightnessF() > 0.5F;
    if (PelinorContrast::isRaised())
        return isDark ? raisedDark : raisedLight;
    return isDark ? dark : light;
}
