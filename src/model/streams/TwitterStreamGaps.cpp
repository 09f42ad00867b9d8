#include "model/streams/TwitterStreamGaps.h"

#include "model/records/TwitterRecordOrder.h"

#include <QSet>

#include <algorithm>

namespace {

bool meets(const QStringList& pageIDs, const QStringList& knownIDs)
{
    const QSet<QString> known(knownIDs.begin(), knownIDs.end());
    return std::any_of(pageIDs.begin(), pageIDs.end(), [&known](const QString& id) {
        return known.contains(id);
    });
}

} // namespace

QString TwitterStreamGaps::lowestOf(const QStringList& ids)
{
    const auto isLower
        = [](const QString& a, const QString& b) { return std::is_lt(compareTwitterIDs(a, b)); };
    const auto lowest = std::min_element(ids.begin(), ids.end(), isLower);
    return lowest == ids.end() ? QString() : *lowest;
}

bool TwitterStreamGaps::openBelow(const QStringList& pageIDs,
    qsizetype posts,
    const QString& belowID,
    qsizetype asked,
    const QStringList& knownIDs)
{
    const bool isFull = posts > largestLastPage && (posts >= m_longestPage || (asked > 0 && posts >= asked));
    notePage(posts);
    const QString lowest = lowestOf(pageIDs);
    if (!isFull || belowID.isNull() || std::is_lteq(compareTwitterIDs(lowest, belowID)))
        return false;
    if (meets(pageIDs, knownIDs))
        return false;
    m_gaps.append({ belowID, lowest });
    return true;
}

bool TwitterStreamGaps::addPage(const QStringList& pageIDs,
    qsizetype posts,
    const QString& belowID,
    const QStringList& knownIDs)
{
    notePage(posts);
    Gap* const gap = _gapAbove(belowID);
    if (!gap)
        return false;
    const QString lowest = lowestOf(pageIDs);
    // What is known below the pages of this gap was there before.
    QStringList oldIDs = knownIDs;
    oldIDs.removeIf([gap](const QString& id) { return std::is_gteq(compareTwitterIDs(id, gap->aboveID)); });
    if (posts <= largestLastPage || std::is_lteq(compareTwitterIDs(lowest, belowID))
        || meets(pageIDs, oldIDs)) {
        m_gaps.removeIf([&belowID](const Gap& one) { return one.belowID == belowID; });
        return false;
    }
    // A service that does not know the request answers with the same page for ever.
    const bool isLower = std::is_lt(compareTwitterIDs(lowest, gap->aboveID));
    if (!isLower || ++gap->pagesInARow == maximumPagesInARow)
        fail(belowID);
    if (isLower)
        gap->aboveID = lowest;
    return gap->isLoading;
}

void TwitterStreamGaps::fail(const QString& belowID)
{
    if (Gap* const gap = _gapAbove(belowID)) {
        gap->isLoading = false;
        gap->isShown = true;
    }
}

bool TwitterStreamGaps::beginLoading(const QString& belowID)
{
    Gap* const gap = _gapAbove(belowID);
    if (!gap || gap->isLoading)
        return false;
    gap->isLoading = true;
    gap->pagesInARow = 0;
    return true;
}

bool TwitterStreamGaps::isLoading() const
{
    return std::any_of(m_gaps.begin(), m_gaps.end(), [](const Gap& gap) { return gap.isLoading; });
}

const TwitterStreamGaps::Gap* TwitterStreamGaps::gapAbove(const QString& belowID) const
{
    const auto found = std::find_if(m_gaps.begin(), m_gaps.end(), [&belowID](const Gap& gap) {
        return gap.belowID == belowID;
    });
    return found == m_gaps.end() ? nullptr : &*found;
}

TwitterStreamGaps::Gap* TwitterStreamGaps::_gapAbove(const QString& belowID)
{
    const auto found = std::find_if(m_gaps.begin(), m_gaps.end(), [&belowID](const Gap& gap) {
        return gap.belowID == belowID;
    });
    return found == m_gaps.end() ? nullptr : &*found;
}
