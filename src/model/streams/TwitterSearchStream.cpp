#include "model/streams/TwitterSearchStream.h"

#include "text/KRDateAdditions.h"

#include <algorithm>

TwitterSearchStream::TwitterSearchStream(std::shared_ptr<TwitterUniquingTables> tables,
    TwitterServiceHosts hosts)
    : TwitterConcreteStatusesStream(std::move(tables))
    , m_hosts(std::move(hosts))
{
}

void TwitterSearchStream::_loadNewer()
{
    TwitterSearchAPI::request(m_hosts, loadNewerResponseCallback())
        ->search(m_query, TwitterAPIMaxSearchCount, {}, sinceID(), {});
}

void TwitterSearchStream::_loadOlder()
{
    m_page = std::max(m_page, 1);
    TwitterSearchAPI::request(m_hosts, loadOlderResponseCallback())
        ->search(m_query, TwitterAPIMaxSearchCount, m_page, {}, {});
    ++m_page;
}

bool TwitterSearchStream::hasFreshStatuses() const
{
    const TwitterStatusPtr newest = newestStatus();
    return newest && newest->date().isValid() && m_freshDate.isValid()
        && KRAdditions::isBefore(m_freshDate, newest->date());
}

void TwitterSearchStream::noteFreshStatuses()
{
    const TwitterStatusPtr newest = newestStatus();
    m_freshDate = newest ? newest->date() : QDateTime();
}

bool TwitterSearchStream::isEqual(const TwitterSearchStream& other) const
{
    return m_query.toLower() == other.m_query.toLower();
}
