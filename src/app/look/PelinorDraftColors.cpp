#include "app/look/PelinorDraftColors.h"

#include "app/look/PelinorContrast.h"

#include <QPalette>

namespace {

PelinorDraftColors lightColors()
{
    return {
        .links = QColor::fromRgbF(0, 0.2F, 0.4F),
        .hashtags = QColor::fromRgbF(0.7F, 0.7F, 0.7F),
        .usernames = QColor::fromRgbF(0, 0.5F, 1),
        .backdrop = QColor::fromRgbF(0.8F, 0.85F, 0.95F),
        .backdropRim = QColor::fromRgbF(0.7F, 0.75F, 0.85F),
        .remaining = QColor::fromRgbF(0, 0, 0, 0.5F),
        .tooMany = QColor::fromRgbF(0.5F, 0, 0, 0.8F),
        .camera = QColor(0x16, 0x18, 0x1B),
        .cameraText = QColor(0xD5, 0xD9, 0xDE),
    };
}

PelinorDraftColors darkColors()
{
    PelinorDraftColors colors = lightColors();
    colors.links = QColor(0x6B, 0xB5, 0xFF);
    colors.hashtags = QColor(0x9E, 0xA6, 0xB0);
    colors.usernames = QColor(0x6B, 0xB5, 0xFF);
    colors.backdrop = QColor(0x24, 0x30, 0x45);
    colors.backdropRim = QColor(0x2E, 0x3E, 0x58);
    colors.remaining = QColor::fromRgbF(1, 1, 1, 0.6F);
    colors.tooMany = QColor(0xF2, 0x9A, 0x8E);
    return colors;
}

PelinorDraftColors raised(PelinorDraftColors colors, const QColor& ink)
{
    const bool isDark = ink == QColor(Qt::white);
    colors.links = isDark ? QColor(0x9C, 0xCF, 0xFF) : QColor(0x00, 0x2A, 0x5C);
    colors.usernames = colors.links;
    colors.hashtags = isDark ? QColor(0xD0, 0xD5, 0xDA) : QColor(0x40, 0x46, 0x4D);
    colors.backdropRim = ink;
    colors.remaining = ink;
    colors.tooMany = isDark ? QColor(0xFF, 0xB4, 0xAA) : QColor(0x80, 0x00, 0x00);
    colors.camera = QColor(Qt::black);
    colors.cameraText = QColor(Qt::white);
    return colors;
}

} // namespace

const PelinorDraftColors& PelinorDraftColors::forPalette(const QPalette& palette)
{
    static const PelinorDraftColors light = lightColors();
    static const PelinorDraftColors dark = darkColors();
    static const PelinorDraftColors raisedLight = raised(light, QColor(Qt::black));
    static const PelinorDraftColors raisedDark = raised(dark, QColor(Qt::white));
    const bool isDark = palette.color(QPalette::WindowText).lightnessF() > 0.5F;
    if (PelinorContrast::isRaised())
        return isDark ? raisedDark : raisedLight;
    return isDark ? dark : light;
}
