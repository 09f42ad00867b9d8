#pragma once

#include "api/TwitterSearchAPI.h"
#include "model/streams/TwitterConcreteStatusesStream.h"

/// The results of one search, which needs no account. The first older page is page 1, which the service
/// answers with what the newest load held already; merging drops what is known. Main thread, as its base.
class TwitterSearchStream final : public TwitterConcreteStatusesStream {
public:
    TwitterSearchStream(std::shared_ptr<TwitterUniquingTables> tables, TwitterServiceHosts hosts);

    [[nodiscard]] const QString& query() const { return m_query; }
    void setQuery(const QString& query) { m_query = query; }

    /// Whether a status is newer than what was there when noteFreshStatuses() was last called; none is before
    /// its first call.
    [[nodiscard]] bool hasFreshStatuses() const;
    void noteFreshStatuses();
    [[nodiscard]] qsizetype unseenStatusCount() const { return storedStatuses().size(); }

    /// The same query, whatever its case.
    [[nodiscard]] bool isEqual(const TwitterSearchStream& other) const;

private:
    void _loadNewer() override;
    void _loadOlder() override;
    void _takeBackOlderPage() override { --m_page; }

    TwitterServiceHosts m_hosts;
    QString m_query;
    qint32 m_page = 0;
    QDateTime m_freshDate;
};
