#include "app/searches/PelinorSearchesViewController.h"

#include "core/Twitter.h"

#include <QLineEdit>
#include <QVBoxLayout>

PelinorSearchesViewController::PelinorSearchesViewController(const PelinorScreenEnvironment& environment,
    Twitter& twitter)
    : PelinorTableViewController(environment)
    , m_twitter(twitter)
{
}

PelinorSearchesViewController::~PelinorSearchesViewController() = default;

void PelinorSearchesViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    m_searchField = new QLineEdit(view.get());
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search all posts"));
    m_searchField->setAccessibleName(tr("Search all posts"));
    m_searchField->setClearButtonEnabled(true);
    connect(m_searchField, &QLineEdit::returnPressed, this, [this] { search(m_searchField->text()); });
    auto* const layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* const margins = new QVBoxLayout;
    margins->setContentsMargins(10, 8, 10, 8);
    margins->addWidget(m_searchField);
    layout->addLayout(margins);
    layout->addWidget(makeTableView().release(), 1);
    view->setFocusProxy(m_searchField);
    setView(std::move(view));
}

void PelinorSearchesViewController::viewWillAppear(bool /*animated*/)
{
    const auto reload = [this](const auto&) { tableView().reloadData(); };
    m_observations.push_back(
        environment().notifications.observe<TwitterAccountDidUpdateNotification>(reload, account().get()));
    m_observations.push_back(
        environment().notifications.observe<TwitterTrendsDidUpdateNotification>(reload, &m_twitter));
    m_twitter.updateTrends();
    tableView().reloadData();
}

void PelinorSearchesViewController::viewWillDisappear(bool /*animated*/)
{
    m_observations.clear();
}

TwitterSearchPtr PelinorSearchesViewController::_searchFor(const QString& query) const
{
    auto search = std::make_shared<TwitterSearch>(account()->context().tables, account()->context().hosts);
    search->setQuery(query);
    for (const TwitterSearchPtr& saved : account()->savedSearches()) {
        if (saved->isEqual(*search))
            return saved;
    }
    return search;
}

void PelinorSearchesViewController::search(const QString& query)
{
    if (!query.trimmed().isEmpty())
        _open(_searchFor(query.trimmed()));
}

void PelinorSearchesViewController::_open(const TwitterSearchPtr& search)
{
    push(environment().screens.makeSearchView(account(), search));
}

void PelinorSearchesViewController::tableViewWillReload(KRTableView& /*tableView*/)
{
    m_rows.clear();
    if (!account())
        return;
    m_rows.push_back({ { .title = tr("Saved searches"), .isHeading = true } });
    for (const TwitterSearchPtr& search : account()->savedSearches())
        m_rows.push_back(
            { { .title = search->displayName().isNull() ? search->query() : search->displayName(),
                  .isFresh = search->stream()->hasFreshStatuses() },
                search });
    if (account()->savedSearches().isEmpty())
        m_rows.back().content.title = tr("No saved searches yet");
    const QStringList trends = m_twitter.trends();
    if (trends.isEmpty())
        return;
    m_rows.push_back({ { .title = tr("Trends"), .isHeading = true } });
    for (const QString& trend : trends)
        m_rows.push_back({ { .title = trend }, nullptr, trend });
}

int PelinorSearchesViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return int(m_rows.size());
}

int PelinorSearchesViewController::tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::heightForContent(m_rows[size_t(row)].content);
}

QString PelinorSearchesViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::accessibleNameForContent(m_rows[size_t(row)].content);
}

KRTableViewCell* PelinorSearchesViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    const Row& shown = m_rows[size_t(row)];
    auto* const cell = reusedOrNewCell<PelinorTitleTableViewCell>(tableView, environment().notifications);
    cell->setContent(shown.content);
    cell->setActivateHandler([this, shown] { _open(shown.search ? shown.search : _searchFor(shown.query)); });
    return cell;
}
