#include "model/streams/TwitterSearch.h"

#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "foundation/KRMainThreadObject.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String queryKey("query");
constexpr QLatin1String displayNameKey("displayName");

} // namespace

TwitterSearch::TwitterSearch(std::shared_ptr<TwitterUniquingTables> tables, TwitterServiceHosts hosts)
    : m_tables(std::move(tables))
    , m_hosts(std::move(hosts))
{
}

void TwitterSearch::encodeWithCoder(KRKeyedArchiver& coder) const
{
    if (m_stream)
        coder.encodeString(queryKey, m_stream->query());
    else
        KRLog(u"Error: trying to save search with no query string"_s);
    coder.encodeString(displayNameKey, m_displayName);
}

TwitterSearchPtr TwitterSearch::searchWithCoder(const KRKeyedUnarchiver& coder,
    std::shared_ptr<TwitterUniquingTables> tables,
    TwitterServiceHosts hosts)
{
    auto search = std::make_shared<TwitterSearch>(std::move(tables), std::move(hosts));
    search->setQuery(coder.decodeString(queryKey));
    search->setDisplayName(coder.decodeString(displayNameKey));
    return search;
}

const std::shared_ptr<TwitterSearchStream>& TwitterSearch::stream()
{
    if (!m_stream)
        m_stream = KRMakeMainThreadObject<TwitterSearchStream>(m_tables, m_hosts);
    return m_stream;
}

QString TwitterSearch::query() const
{
    return m_stream ? m_stream->query() : QString();
}

void TwitterSearch::setQuery(const QString& query)
{
    stream()->setQuery(query);
}

bool TwitterSearch::isEqual(const TwitterSearch& other) const
{
    return this == &other || (m_stream && other.m_stream && m_stream->isEqual(*other.m_stream));
}
