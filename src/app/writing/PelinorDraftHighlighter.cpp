#include "app/writing/PelinorDraftHighlighter.h"

#include "compose/PelinorDraft.h"

#include <QGuiApplication>
#include <QPalette>

namespace {

struct Colors {
    QColor links;
    QColor hashtags;
    QColor usernames;
};

Colors colors()
{
    // The blue of links is that of a light page; on a dark one it could not be read.
    if (QGuiApplication::palette().color(QPalette::WindowText).lightnessF() > 0.5F)
        return { QColor(0x6B, 0xB5, 0xFF), QColor(0x9E, 0xA6, 0xB0), QColor(0x6B, 0xB5, 0xFF) };
    return { QColor::fromRgbF(0, 0.2F, 0.4F),
        QColor::fromRgbF(0.7F, 0.7F, 0.7F),
        QColor::fromRgbF(0, 0.5F, 1) };
}

} // namespace

void PelinorDraftHighlighter::highlightBlock(const QString& text)
{
    const auto mark = [&](const KRRangeList& ranges, const QColor& color) {
        for (const KRRange& range : ranges)
            setFormat(int(range.location), int(range.length), color);
    };
    // Where they overlap the later one wins.
    const Colors shown = colors();
    const PelinorDraftRanges ranges(text);
    mark(ranges.linkRanges, shown.links);
    mark(ranges.hashTagRanges, shown.hashtags);
    mark(ranges.usernameRanges, shown.usernames);
}
