#include "text/render/KRAttributedString.h"

#include <algorithm>
#include <vector>

namespace {

bool areInOrder(const QList<KRAttributedString::Run>& runs)
{
    return std::adjacent_find(runs.begin(), runs.end(), [](const auto& run, const auto& next) {
        return next.start < run.start + run.length;
    }) == runs.end();
}

// The runs that result when each addition is laid over those before it, found by writing the number of the
// combined attributes into every position: the work grows with the lengths added, however they overlap.
QList<KRAttributedString::Run> flattened(const QList<KRAttributedString::Run>& additions, qsizetype length)
{
    constexpr int None = -1;
    std::vector<int> attributesAt(size_t(length), None);
    std::vector<KRAttributedString::Attributes> combined;
    for (const KRAttributedString::Run& addition : additions) {
        int below = None;
        int result = None;
        for (int at = addition.start; at < addition.start + addition.length; ++at) {
            int& current = attributesAt[size_t(at)];
            if (result == None || current != below) {
                below = current;
                KRAttributedString::Attributes attributes = addition.format;
                if (below != None) {
                    attributes = combined[size_t(below)];
                    attributes.merge(addition.format);
                }
                combined.push_back(attributes);
                result = int(combined.size()) - 1;
            }
            current = result;
        }
    }
    QList<KRAttributedString::Run> runs;
    for (int at = 0; at < int(length); ++at) {
        const int attributes = attributesAt[size_t(at)];
        if (attributes == None)
            continue;
        if (at > 0 && attributesAt[size_t(at) - 1] == attributes)
            ++runs.last().length;
        else
            runs.append({ at, 1, combined[size_t(attributes)] });
    }
    return runs;
}

} // namespace

KRAttributedString::KRAttributedString(const QString& text, const QFont& font)
    : m_text(text.isNull() ? QStringLiteral("") : text)
    , m_font(font)
{
}

void KRAttributedString::addAttributes(const Attributes& attributes, KRRange range)
{
    const qsizetype start = std::clamp<qsizetype>(range.location, 0, m_text.size());
    const qsizetype length = std::min(range.length, m_text.size() - start);
    if (length > 0)
        m_additions.append({ int(start), int(length), attributes });
}

QList<KRAttributedString::Run> KRAttributedString::runs() const
{
    return areInOrder(m_additions) ? m_additions : flattened(m_additions, m_text.size());
}

void KRAddAttributesToAttributedStringForRanges(KRAttributedString& attributedString,
    const KRAttributedString::Attributes& attributes,
    const KRRangeList& ranges)
{
    for (const KRRange& range : ranges)
        attributedString.addAttributes(attributes, range);
}
