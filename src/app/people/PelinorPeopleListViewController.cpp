#include "app/people/PelinorPeopleListViewController.h"

PelinorPeopleListViewController::PelinorPeopleListViewController(const PelinorScreenEnvironment& environment,
    PelinorPeople::Kind kind)
    : PelinorTableViewController(environment)
    , m_kind(kind)
{
}

PelinorPeopleListViewController::~PelinorPeopleListViewController()
{
    if (m_people)
        m_people->setChangeHandler({});
}

QString PelinorPeopleListViewController::title() const
{
    return m_kind == PelinorPeople::Kind::Following ? tr("Following") : tr("Followers");
}

void PelinorPeopleListViewController::viewWillAppear(bool /*animated*/)
{
    if (!m_people) {
        m_people = std::make_shared<PelinorPeople>(account(), m_user, m_kind);
        m_people->setChangeHandler([this] { tableView().reloadDataKeepingPlace(); });
        m_people->loadMore();
    }
    tableView().reloadDataKeepingPlace();
}

void PelinorPeopleListViewController::tableViewWillReload(KRTableView& /*tableView*/)
{
    m_rows = m_people ? m_people->people() : TwitterUserList();
}

int PelinorPeopleListViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    // The last one says how the list goes on.
    return int(m_rows.size()) + 1;
}

PelinorTitleTableViewCell::Content PelinorPeopleListViewController::_contentOfEnd() const
{
    if (m_people && m_people->error())
        return { .title = tr("Loading failed. Try again"), .detail = m_people->error()->description };
    if (!m_people || !m_people->isAtEnd())
        return { .title = tr("Loading…"), .isNote = true };
    if (!m_rows.isEmpty())
        return { .title = {}, .isNote = true };
    return { .title
        = m_kind == PelinorPeople::Kind::Following ? tr("Follows nobody yet") : tr("No followers yet"),
        .isNote = true };
}

PelinorTitleTableViewCell::Content PelinorPeopleListViewController::_contentOfRow(qint64 row) const
{
    if (row >= m_rows.size())
        return _contentOfEnd();
    const TwitterUserPtr& user = m_rows.at(row);
    QString detail = u'@' + user->username();
    if (!user->bio().isEmpty())
        detail += QStringLiteral(" · ") + user->bio();
    return { .title = user->fullName(), .detail = detail, .user = user, .hasUser = true };
}

int PelinorPeopleListViewController::tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::heightForContent(_contentOfRow(row));
}

QString PelinorPeopleListViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::accessibleNameForContent(_contentOfRow(row));
}

KRTableViewCell* PelinorPeopleListViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    auto* const cell = reusedOrNewCell<PelinorTitleTableViewCell>(tableView, environment().notifications);
    cell->setContent(_contentOfRow(row));
    cell->setActivateHandler([this, row] { _activateRow(row); });
    return cell;
}

void PelinorPeopleListViewController::tableViewDidShowRows(KRTableView& /*tableView*/, KRRange rows)
{
    if (m_people && rows.end() > m_rows.size() && !m_people->error())
        m_people->loadMore();
}

void PelinorPeopleListViewController::_activateRow(qint64 row)
{
    if (row < m_rows.size()) {
        push(environment().screens.makeUserDetailsView(account(), m_rows.at(row), {}));
    } else {
        m_people->loadMore();
    }
}
