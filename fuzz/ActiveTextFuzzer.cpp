#include "text/KRActiveTextRanges.h"

#include <QString>

#include <cstdint>

// Any text a person may write: every span lies inside of it, behind the one before of its kind.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const QString text(reinterpret_cast<const QChar*>(bytes), static_cast<qsizetype>(size / sizeof(QChar)));
    const KRActiveTextRanges ranges(text);
    for (const KRRangeList& list : { ranges.links(),
             ranges.hashtags(),
             ranges.usernames(),
             ranges.stockSymbols(),
             ranges.emailAddresses() }) {
        qsizetype end = 0;
        for (const KRRange& range : list) {
            if (range.location < end || range.length <= 0 || range.end() > text.size())
                __builtin_trap();
            end = range.end();
        }
    }
    (void)KRAdditions::activeStringType(text);
    return 0;
}
