#include "app/look/PelinorCellColors.h"

#include "app/look/PelinorContrast.h"

#include <QPalette>

namespace {

KRActiveTextColors spansOfColor(const KRColor& color)
{
    return { .links = color, .hashtags = color, .usernames = color, .stockSymbols = color };
}

PelinorCellColors lightColors()
{
    return {
        .background = QColor(0xFF, 0xFF, 0xFF),
        .ownBackground = QColor(0xF5, 0xF8, 0xFB),
        .mentionBackground = QColor(0xFE, 0xF8, 0xE7),
        .selectedBackground = QColor(0xE4, 0xEF, 0xFA),
        .selectionMark = QColor(0x1A, 0x69, 0xB3),
        .separator = QColor(0xE3, 0xE6, 0xEA),
        .name = QColor(0x14, 0x19, 0x1F),
        .text = QColor(0x23, 0x2A, 0x31),
        .secondaryText = QColor(0x5F, 0x68, 0x71),
        .dimmedText = QColor(0x6B, 0x70, 0x76),
        .placeholder = QColor(0xDD, 0xE2, 0xE8),
        .placeholderFigure = QColor(0xF7, 0xF9, 0xFB),
        .error = QColor(0xA6, 0x2B, 0x1F),
        .favorite = QColor(0xE8, 0xA3, 0x17),
        .spans = {},
        .selectedSpans = { .hashtags = KRColor::rgba(0.37F, 0.41F, 0.44F, 1) },
        .dimmedSpans = spansOfColor(KRColor::rgba(0.42F, 0.44F, 0.46F, 1)),
    };
}

PelinorCellColors darkColors()
{
    // The blue and the grey of the light scheme would not be readable here.
    const KRColor blue = KRColor::rgba(0.42F, 0.71F, 1, 1);
    const KRActiveTextColors spans {
        .links = blue,
        .hashtags = KRColor::rgba(0.62F, 0.65F, 0.69F, 1),
        .usernames = blue,
        .stockSymbols = blue,
    };
    return {
        .background = QColor(0x1C, 0x20, 0x24),
        .ownBackground = QColor(0x21, 0x27, 0x2D),
        .mentionBackground = QColor(0x2C, 0x29, 0x1F),
        .selectedBackground = QColor(0x24, 0x36, 0x49),
        .selectionMark = QColor(0x5A, 0xA9, 0xF0),
        .separator = QColor(0x30, 0x36, 0x3D),
        .name = QColor(0xF2, 0xF4, 0xF6),
        .text = QColor(0xD9, 0xDE, 0xE3),
        .secondaryText = QColor(0x9A, 0xA4, 0xAE),
        .dimmedText = QColor(0x8A, 0x94, 0x9E),
        .placeholder = QColor(0x3A, 0x42, 0x4A),
        .placeholderFigure = QColor(0x55, 0x5F, 0x69),
        .error = QColor(0xF2, 0x9A, 0x8E),
        .favorite = QColor(0xF5, 0xC0, 0x4A),
        .spans = spans,
        .selectedSpans = spans,
        .dimmedSpans = spansOfColor(KRColor::rgba(0.54F, 0.58F, 0.62F, 1)),
    };
}

// The same scheme with the text in one ink, in both directions as far as it goes.
PelinorCellColors raised(PelinorCellColors colors, const QColor& page, const QColor& ink, const QColor& link)
{
    colors.background = page;
    colors.ownBackground = page;
    colors.mentionBackground = page;
    colors.selectionMark = ink;
    colors.name = ink;
    colors.text = ink;
    colors.secondaryText = ink;
    colors.dimmedText = ink;
    colors.separator = ink;
    const KRColor span = KRColor::rgba(float(link.redF()), float(link.greenF()), float(link.blueF()), 1);
    colors.spans = colors.selectedSpans = colors.dimmedSpans = spansOfColor(span);
    return colors;
}

PelinorCellColors raisedLightColors()
{
    PelinorCellColors colors
        = raised(lightColors(), QColor(Qt::white), QColor(Qt::black), QColor(0x00, 0x2F, 0x8A));
    colors.error = QColor(0x8A, 0x00, 0x00);
    return colors;
}

PelinorCellColors raisedDarkColors()
{
    PelinorCellColors colors
        = raised(darkColors(), QColor(Qt::black), QColor(Qt::white), QColor(0xA8, 0xD4, 0xFF));
    colors.selectedBackground = QColor(0x00, 0x2B, 0x55);
    colors.error = QColor(0xFF, 0xB0, 0xA5);
    return colors;
}

} // namespace

const PelinorCellColors& PelinorCellColors::forPalette(const QPalette& palette)
{
    static const PelinorCellColors light = lightColors();
    static const PelinorCellColors dark = darkColors();
    static const PelinorCellColors raisedLight = raisedLightColors();
    static const PelinorCellColors raisedDark = raisedDarkColors();
    const bool isDark = palette.color(QPalette::WindowText).lightnessF() > 0.5F;
    if (PelinorContrast::isRaised())
        return isDark ? raisedDark : raisedLight;
    return isDark ? dark : light;
}
