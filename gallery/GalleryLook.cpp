#include "GalleryLook.h"

#include "text/render/KRActiveTextStyle.h"

#include <QPalette>

const GalleryLook& GalleryLook::forPalette(const QPalette& palette)
{
    static const GalleryLook light {
        .page = QColor(0xEC, 0xEE, 0xF1),
        .card = QColor(0xFF, 0xFF, 0xFF),
        .line = QColor(0xD9, 0xDD, 0xE2),
        .text = QColor(0x1B, 0x21, 0x28),
        .secondaryText = QColor(0x5E, 0x68, 0x73),
        .accent = QColor(0x1F, 0x6F, 0xBF),
        .selection = QColor(0xDC, 0xEA, 0xF8),
    };
    static const GalleryLook dark {
        .page = QColor(0x1B, 0x1E, 0x22),
        .card = QColor(0x26, 0x2B, 0x30),
        .line = QColor(0x3A, 0x41, 0x49),
        .text = QColor(0xEA, 0xED, 0xF0),
        .secondaryText = QColor(0x9F, 0xA9, 0xB3),
        .accent = QColor(0x5F, 0xAC, 0xF2),
        .selection = QColor(0x2B, 0x40, 0x56),
    };
    return palette.color(QPalette::WindowText).lightnessF() > 0.5F ? dark : light;
}

QPalette GalleryLook::palette(bool dark)
{
    QPalette marker;
    marker.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
    const GalleryLook& look = forPalette(marker);
    QPalette palette(look.card, look.page);
    palette.setColor(QPalette::WindowText, look.text);
    palette.setColor(QPalette::Text, look.text);
    palette.setColor(QPalette::ButtonText, look.text);
    palette.setColor(QPalette::Base, look.card);
    palette.setColor(QPalette::PlaceholderText, look.secondaryText);
    palette.setColor(QPalette::Highlight, look.accent);
    palette.setColor(QPalette::HighlightedText, dark ? look.page : look.card);
    return palette;
}

QFont GalleryLook::font(int size, bool bold)
{
    QFont font = KRMessageFont(size);
    font.setBold(bold);
    return font;
}
