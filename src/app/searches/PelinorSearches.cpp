#include "app/searches/PelinorSearches.h"

#include "foundation/KRUserDefaults.h"

#include <QCoreApplication>

namespace {

constexpr char recentQueriesKey[] = "RecentSearches";

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PelinorSearches)
};

} // namespace

PelinorSearches::PelinorSearches(TwitterAccountPtr account, Twitter& twitter, KRUserDefaults& defaults)
    : m_account(std::move(account))
    , m_twitter(twitter)
    , m_defaults(defaults)
{
}

std::vector<PelinorSearches::Row> PelinorSearches::rows() const
{
    using Kind = Row::Kind;
    std::vector<Row> rows;
    rows.push_back({ Kind::Heading, Texts::tr("Saved searches") });
    for (const TwitterSearchPtr& search : m_account->savedSearches())
        rows.push_back({ Kind::Saved,
            search->displayName().isNull() ? search->query() : search->displayName(),
            search->stream()->hasFreshStatuses(),
            search });
    if (m_account->savedSearches().isEmpty())
        rows.push_back(
            { Kind::Note, Texts::tr("None yet. What a search finds has a button that saves it.") });
    const QStringList recent = recentQueries();
    if (!recent.isEmpty()) {
        rows.push_back({ Kind::Heading, Texts::tr("Recent searches") });
        for (const QString& query : recent)
            rows.push_back({ Kind::Query, query });
        rows.push_back({ Kind::ForgetRecent, Texts::tr("Forget these") });
    }
    const QStringList trends = m_twitter.trends();
    if (!trends.isEmpty() || m_trendsError)
        rows.push_back({ Kind::Heading, Texts::tr("Trends") });
    for (const QString& trend : trends)
        rows.push_back({ Kind::Query, trend });
    if (trends.isEmpty() && m_trendsError)
        rows.push_back(
            { Kind::Note, Texts::tr("This site tells no trends: %1").arg(m_trendsError->description) });
    return rows;
}

TwitterSearchPtr PelinorSearches::searchFor(const QString& query)
{
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return nullptr;
    QStringList recent = recentQueries();
    // The same search in any case, as with those that are saved.
    recent.removeIf([&](const QString& one) { return one.toLower() == trimmed.toLower(); });
    recent.prepend(trimmed);
    m_defaults.setStringList(recentQueriesKey, recent.mid(0, MostRecentQueries));
    auto search = std::make_shared<TwitterSearch>(m_account->context().tables, m_account->context().hosts);
    search->setQuery(trimmed);
    for (const TwitterSearchPtr& saved : m_account->savedSearches()) {
        if (saved->isEqual(*search))
            return saved;
    }
    return search;
}

QStringList PelinorSearches::recentQueries() const
{
    return m_defaults.stringListForKey(recentQueriesKey);
}

void PelinorSearches::forgetRecentQueries()
{
    m_defaults.removeObjectForKey(recentQueriesKey);
}

void PelinorSearches::move(const TwitterSearchPtr& search, qsizetype distance)
{
    const qsizetype place = m_account->savedSearches().indexOf(search);
    if (place >= 0 && distance != 0)
        m_account->moveSavedSearch(search, place + distance);
}
