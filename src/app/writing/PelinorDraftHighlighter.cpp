#include "app/writing/PelinorDraftHighlighter.h"

#include "app/look/PelinorDraftColors.h"
#include "compose/PelinorDraft.h"

#include <QGuiApplication>

void PelinorDraftHighlighter::highlightBlock(const QString& text)
{
    const auto mark = [&](const KRRangeList& ranges, const QColor& color) {
        for (const KRRange& range : ranges)
            setFormat(int(range.location), int(range.length), color);
    };
    // Where they overlap the later one wins.
    const PelinorDraftColors& colors = PelinorDraftColors::forPalette(QGuiApplication::palette());
    const PelinorDraftRanges ranges(text);
    mark(ranges.linkRanges, colors.links);
    mark(ranges.hashTagRanges, colors.hashtags);
    mark(ranges.usernameRanges, colors.usernames);
}
