#pragma once

#include "model/records/TwitterStatus.h"
#include "model/records/TwitterUser.h"

#include <QList>
#include <QString>

#include <memory>

class KRUserDefaults;

/// The user's own filter: null for a status whose text contains one of the terms under the defaults key
/// "filterTerms", whatever their case, else the status; an empty term filters nothing. The terms are read
/// once and kept for the run: by ReadFilterTerms(), or at the first call from the standard defaults. Main
/// thread.
TwitterStatusPtr FilterWithUserDefaults(const TwitterStatusPtr& status);
void ReadFilterTerms(const KRUserDefaults& defaults);

/// A test of statuses. This one accepts every status. Filters are used on the main thread.
class TwitterStatusStreamFilter {
public:
    TwitterStatusStreamFilter() = default;
    TwitterStatusStreamFilter(const TwitterStatusStreamFilter&) = delete;
    TwitterStatusStreamFilter& operator=(const TwitterStatusStreamFilter&) = delete;
    virtual ~TwitterStatusStreamFilter() = default;

    static const std::shared_ptr<TwitterStatusStreamFilter>& defaultStatusStreamFilter();

    [[nodiscard]] virtual bool validStatus(const TwitterStatus& status) const;
};

/// Accepts statuses by certain users, and every row that is no post.
class TwitterStatusStreamFilterUserListFilter final : public TwitterStatusStreamFilter {
public:
    const QList<TwitterUserPtr>& users() const { return m_users; }
    void setUsers(const QList<TwitterUserPtr>& users) { m_users = users; }
    [[nodiscard]] bool validStatus(const TwitterStatus& status) const override;

private:
    QList<TwitterUserPtr> m_users;
};

/// Accepts statuses whose text contains the query, whatever its case, and every row that is no post.
class TwitterStatusStreamFilterSimpleSearchFilter final : public TwitterStatusStreamFilter {
public:
    const QString& query() const { return m_query; }
    void setQuery(const QString& query) { m_query = query; }
    [[nodiscard]] bool validStatus(const TwitterStatus& status) const override;

private:
    QString m_query;
};
