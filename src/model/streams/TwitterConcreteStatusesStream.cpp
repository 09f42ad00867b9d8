#include "model/streams/TwitterConcreteStatusesStream.h"

#include "foundation/KRClock.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterUniquingTables.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterStatusStreamFilter.h"
#include "text/KRArrayAdditions.h"

#include <algorithm>

namespace {

QStringList idsOf(const TwitterStatusList& statuses)
{
    QStringList ids;
    for (const TwitterStatusPtr& status : statuses) {
        if (!status->statusID().isNull())
            ids.append(status->statusID());
    }
    return ids;
}

bool hasStatusID(const TwitterStatusPtr& status)
{
    return !status->statusID().isNull();
}

template <class Dummy, class... Arguments>
TwitterStatusPtr dummyDated(const QDateTime& date, Arguments... arguments)
{
    const auto dummy = std::make_shared<Dummy>(arguments...);
    dummy->setDate(date);
    return dummy;
}

} // namespace

TwitterConcreteStatusesStream::TwitterConcreteStatusesStream(std::shared_ptr<TwitterUniquingTables> tables)
    : m_tables(std::move(tables))
{
}

TwitterStatusList TwitterConcreteStatusesStream::statuses() const
{
    TwitterStatusList rows;
    rows.append(dummyDated<TwitterDummyHeaderStatus>(KRDistantFuture()));
    for (const TwitterStatusPtr& status : m_statuses) {
        const TwitterStreamGaps::Gap* const gap
            = m_gaps.isEmpty() ? nullptr : m_gaps.gapAbove(status->statusID());
        if (gap && gap->isShown) {
            rows.append(std::make_shared<TwitterDummyMissingStatus>(gap->belowID, gap->isLoading));
            rows.last()->setDate(status->date());
        }
        rows.append(status);
    }
    rows.append(m_isAtEnd ? dummyDated<TwitterDummyEndOfStreamStatus>(KRDistantPast(), bool(m_didFailOlder))
                          : dummyDated<TwitterDummyLoadingStatus>(KRDistantPast()));
    return rows;
}

void TwitterConcreteStatusesStream::setStatuses(const TwitterStatusList& statuses)
{
    m_statuses = statuses;
    if (!m_gaps.isEmpty()) {
        const QStringList ids = idsOf(m_statuses);
        m_gaps.keepAbove([&ids](const QString& id) { return ids.contains(id); });
    }
    _postDidUpdate();
}

void TwitterConcreteStatusesStream::removeStatus(const TwitterStatus& status)
{
    TwitterStatusList remaining = m_statuses;
    if (remaining.removeIf([&status](const TwitterStatusPtr& one) { return one->isEqual(status); }) > 0)
        setStatuses(remaining);
}

void TwitterConcreteStatusesStream::_postDidUpdate()
{
    // Whoever hears of it may remove the account that owns the stream.
    const auto self = shared_from_this();
    KRNotificationCenter::defaultCenter().post(TwitterStreamDidUpdateNotification { this });
}

void TwitterConcreteStatusesStream::loadNewer()
{
    if (!m_isLoadingNewer.exchange(true))
        _loadNewer();
}

void TwitterConcreteStatusesStream::loadOlder()
{
    if (!m_isAtEnd && !m_isLoadingOlder.exchange(true))
        _loadOlder();
}

void TwitterConcreteStatusesStream::loadOlderAgain()
{
    if (!m_didFailOlder.exchange(false))
        return;
    m_isAtEnd = false;
    _takeBackOlderPage();
    loadOlder();
    _postDidUpdate();
}

void TwitterConcreteStatusesStream::loadMissing(const TwitterDummyMissingStatus& row)
{
    if (!m_gaps.beginLoading(row.belowID()))
        return;
    _loadGap(row.belowID());
    _postDidUpdate();
}

void TwitterConcreteStatusesStream::_loadGap(const QString& belowID)
{
    if (const TwitterStreamGaps::Gap* const gap = m_gaps.gapAbove(belowID))
        _loadBelow(gap->aboveID,
            Callback(shared_from_this(), &TwitterConcreteStatusesStream::loadMissingResponse, belowID));
}

void TwitterConcreteStatusesStream::_loadNewer()
{
    KRLog(QStringLiteral("subclasses must implement"));
}

void TwitterConcreteStatusesStream::_loadOlder()
{
    KRLog(QStringLiteral("subclasses must implement"));
}

KRCallback<TwitterStatusList> TwitterConcreteStatusesStream::loadNewerResponseCallback()
{
    return Callback(shared_from_this(), &TwitterConcreteStatusesStream::loadNewerResponse, sinceID());
}

KRCallback<TwitterStatusList> TwitterConcreteStatusesStream::loadOlderResponseCallback()
{
    return Callback(shared_from_this(), &TwitterConcreteStatusesStream::loadOlderResponse);
}

TwitterStatusPtr TwitterConcreteStatusesStream::newestStatus() const
{
    const auto found = std::find_if(m_statuses.begin(), m_statuses.end(), hasStatusID);
    return found == m_statuses.end() ? nullptr : *found;
}

TwitterStatusPtr TwitterConcreteStatusesStream::oldestStatus() const
{
    const auto found = std::find_if(m_statuses.rbegin(), m_statuses.rend(), hasStatusID);
    return found == m_statuses.rend() ? nullptr : *found;
}

QString TwitterConcreteStatusesStream::newestStatusID() const
{
    const TwitterStatusPtr status = newestStatus();
    return status ? status->statusID() : QString();
}

QString TwitterConcreteStatusesStream::sinceID() const
{
    const QDateTime latest = KRNow().addDays(1);
    const auto found
        = std::find_if(m_statuses.begin(), m_statuses.end(), [&latest](const TwitterStatusPtr& status) {
              return hasStatusID(status) && !(status->date() > latest);
          });
    return found == m_statuses.end() ? newestStatusID() : (*found)->statusID();
}

QString TwitterConcreteStatusesStream::oldestStatusID() const
{
    const TwitterStatusPtr status = oldestStatus();
    return status ? status->statusID() : QString();
}

QString TwitterConcreteStatusesStream::olderPageID() const
{
    return m_lowestOfIdlePage.isNull() ? oldestStatusID() : m_lowestOfIdlePage;
}

void TwitterConcreteStatusesStream::markAtEnd()
{
    m_isAtEnd = true;
    mainThreadProxy(shared_from_this()).perform(&TwitterConcreteStatusesStream::_markAtEnd);
}

void TwitterConcreteStatusesStream::_markAtEnd()
{
    m_isAtEnd = true;
    _postDidUpdate();
}

void TwitterConcreteStatusesStream::loadNewerResponse(const Response& response, const QString& newestKnownID)
{
    m_isLoadingNewer = false;
    if (response.isError())
        _postError(response.error());
    else
        mainThreadProxy(shared_from_this())
            .perform(&TwitterConcreteStatusesStream::_addNewer, response.value(), newestKnownID);
}

void TwitterConcreteStatusesStream::loadOlderResponse(const Response& response)
{
    m_isLoadingOlder = false;
    m_didFailOlder = response.isError();
    if (response.isError() || response.value().size() <= largestLastPage)
        markAtEnd();
    if (response.isError())
        _postError(response.error());
    else
        mainThreadProxy(shared_from_this())
            .perform(&TwitterConcreteStatusesStream::_addOlder, response.value());
}

void TwitterConcreteStatusesStream::loadMissingResponse(const Response& response, const QString& belowID)
{
    const auto proxy = mainThreadProxy(shared_from_this());
    if (!response.isError()) {
        proxy.perform(&TwitterConcreteStatusesStream::_addMissing, response.value(), belowID);
        return;
    }
    proxy.perform(&TwitterConcreteStatusesStream::_failMissing, belowID);
    _postError(response.error());
}

void TwitterConcreteStatusesStream::_postError(const KRError& error)
{
    const auto self = shared_from_this();
    KRNotificationCenter::defaultCenter().post(TwitterStreamErrorNotification { this, error });
}

void TwitterConcreteStatusesStream::_addNewer(const TwitterStatusList& statuses, const QString& newestKnownID)
{
    const bool hasGap = _canLoadBelow()
        && m_gaps.openBelow(idsOf(statuses), statuses.size(), newestKnownID, _pageCount(), idsOf(m_statuses));
    addStatuses(statuses);
    if (hasGap)
        _loadGap(newestKnownID);
}

void TwitterConcreteStatusesStream::_addOlder(const TwitterStatusList& statuses)
{
    m_gaps.notePage(statuses.size());
    const QString oldestBefore = oldestStatusID();
    addStatuses(statuses);
    m_lowestOfIdlePage
        = oldestStatusID() == oldestBefore ? TwitterStreamGaps::lowestOf(idsOf(statuses)) : QString();
}

void TwitterConcreteStatusesStream::_addMissing(const TwitterStatusList& statuses, const QString& belowID)
{
    const bool goesOn = m_gaps.addPage(idsOf(statuses), statuses.size(), belowID, idsOf(m_statuses));
    addStatuses(statuses);
    if (goesOn)
        _loadGap(belowID);
}

void TwitterConcreteStatusesStream::_failMissing(const QString& belowID)
{
    m_gaps.fail(belowID);
    _postDidUpdate();
}

bool TwitterConcreteStatusesStream::_isKnownWithoutID(const TwitterStatus& status) const
{
    const auto nameOf = [](const TwitterStatus& one) {
        return one.fromUser() ? one.fromUser()->lowercaseUsername() : QString();
    };
    return status.statusID().isNull() && status.isNotADummyStatus()
        && std::any_of(m_statuses.begin(), m_statuses.end(), [&](const TwitterStatusPtr& one) {
               return one->statusID().isNull() && one->date() == status.date() && one->text() == status.text()
                   && nameOf(*one) == nameOf(status);
           });
}

void TwitterConcreteStatusesStream::addStatuses(const TwitterStatusList& statuses)
{
    const TwitterStatusList definitive = m_tables->definitiveStatuses(statuses);
    TwitterStatusList merged = m_statuses;
    for (const TwitterStatusPtr& status : KRAdditions::mapFunction(definitive, FilterWithUserDefaults)) {
        // What has no ID is equal to nothing else, and would come again with every load.
        if (!_isKnownWithoutID(*status))
            merged.append(status);
    }
    merged = KRAdditions::sortedArray(KRAdditions::arrayWithoutDuplicates(merged));
    if (merged.size() > maximumStatuses) {
        merged.resize(statusesAfterCut);
        // There is no room for anything older.
        m_isAtEnd = true;
        m_didFailOlder = false;
    }
    setStatuses(merged);
}
