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

bool hasStatusID(const TwitterStatusPtr& status)
{
    return !status->statusID().isNull();
}

template <class Dummy>
TwitterStatusPtr dummyDated(const QDateTime& date)
{
    const auto dummy = std::make_shared<Dummy>();
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
    rows.reserve(m_statuses.size() + 2);
    rows.append(dummyDated<TwitterDummyHeaderStatus>(KRDistantFuture()));
    rows.append(m_statuses);
    rows.append(m_isAtEnd ? dummyDated<TwitterDummyEndOfStreamStatus>(KRDistantPast())
                          : dummyDated<TwitterDummyLoadingStatus>(KRDistantPast()));
    return rows;
}

void TwitterConcreteStatusesStream::setStatuses(const TwitterStatusList& statuses)
{
    m_statuses = statuses;
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
    return Callback(shared_from_this(), &TwitterConcreteStatusesStream::loadNewerResponse);
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

QString TwitterConcreteStatusesStream::oldestStatusID() const
{
    const TwitterStatusPtr status = oldestStatus();
    return status ? status->statusID() : QString();
}

void TwitterConcreteStatusesStream::markAtEnd()
{
    m_isAtEnd = true;
    mainThreadProxy(shared_from_this()).perform(&TwitterConcreteStatusesStream::_markAtEnd);
}

void TwitterConcreteStatusesStream::_markAtEnd()
{
    m_isAtEnd = true;
    KRNotificationCenter::defaultCenter().post(TwitterStreamDidUpdateNotification { this });
}

void TwitterConcreteStatusesStream::loadNewerResponse(KRResult<TwitterStatusList> response)
{
    m_isLoadingNewer = false;
    statusesResponse(response);
}

void TwitterConcreteStatusesStream::loadOlderResponse(KRResult<TwitterStatusList> response)
{
    m_isLoadingOlder = false;
    if (response.isError() || response.value().size() <= largestLastPage)
        markAtEnd();
    statusesResponse(response);
}

void TwitterConcreteStatusesStream::statusesResponse(const KRResult<TwitterStatusList>& response)
{
    if (response.isError()) {
        KRNotificationCenter::defaultCenter().post(TwitterStreamErrorNotification { this, response.error() });
        return;
    }
    mainThreadProxy(shared_from_this())
        .perform(&TwitterConcreteStatusesStream::addStatuses, response.value());
}

void TwitterConcreteStatusesStream::addStatuses(const TwitterStatusList& statuses)
{
    const TwitterStatusList definitive = m_tables->definitiveStatuses(statuses);
    TwitterStatusList merged = m_statuses;
    merged.append(KRAdditions::mapFunction(definitive, FilterWithUserDefaults));
    merged = KRAdditions::sortedArray(KRAdditions::arrayWithoutDuplicates(merged));
    if (merged.size() > maximumStatuses)
        merged.resize(statusesAfterCut);
    setStatuses(merged);
}
