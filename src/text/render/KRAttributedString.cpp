#include "text/render/KRAttributedString.h"

#include <algorithm>
#include <vector>

namespace {

bool areInOrder(const QList<KRAttributedString::Run>& runs)
{
    return std::adjacent_find(runs.begin(), runs.end(), [](const auto& run, const auto& next) {
        return next.range.location < run.range.end();
    }) == runs.end();
}

// The runs that result when each addition is laid over those before it, found by writing its number into
// every position it covers: the work grows with the lengths added, however they overlap.
QList<KRAttributedString::Run> flattened(const QList<KRAttributedString::Run>& additions, qsizetype length)
{
    constexpr qsizetype None = -1;
    std::vector<qsizetype> additionAt(size_t(length), None);
    for (qsizetype number = 0; number < additions.size(); ++number) {
        const KRRange range = additions.at(number).range;
        std::fill_n(additionAt.begin() + range.location, range.length, number);
    }
    QList<KRAttributedString::Run> runs;
    for (qsizetype at = 0; at < length; ++at) {
        const qsizetype number = additionAt[size_t(at)];
        if (number == None)
            continue;
        if (at > 0 && additionAt[size_t(at) - 1] == number)
            ++runs.last().range.length;
        else
            runs.append({ { at, 1 }, additions.at(number).attributes });
    }
    return runs;
}

} // namespace

KRAttributedString::KRAttributedString(const QString& text, const QFont& font)
    : m_text(text.isNull() ? QStringLiteral("") : text)
    , m_font(font)
{
}

void KRAttributedString::addAttributes(const KRTextAttributes& attributes, KRRange range)
{
    const qsizetype start = std::clamp<qsizetype>(range.location, 0, m_text.size());
    const qsizetype length = std::min(range.length, m_text.size() - start);
    if (length > 0)
        m_additions.append({ { start, length }, attributes });
}

QList<KRAttributedString::Run> KRAttributedString::runs() const
{
    return areInOrder(m_additions) ? m_additions : flattened(m_additions, m_text.size());
}

void KRAddAttributesToAttributedStringForRanges(KRAttributedString& attributedString,
    const KRTextAttributes& attributes,
    const KRRangeList& ranges)
{
    for (const KRRange& range : ranges)
        attributedString.addAttributes(attributes, range);
}
