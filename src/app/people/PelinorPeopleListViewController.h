#pragma once

#include "app/lists/PelinorTableViewController.h"
#include "app/lists/PelinorTitleTableViewCell.h"
#include "app/people/PelinorPeople.h"

/// Whom a person follows, or who follows them; more of them come as the end comes into view. Main thread.
class PelinorPeopleListViewController final : public PelinorTableViewController {
    Q_OBJECT

public:
    PelinorPeopleListViewController(const PelinorScreenEnvironment& environment, PelinorPeople::Kind kind);
    ~PelinorPeopleListViewController() override;

    /// Before the view appears, as the account.
    void setUser(TwitterUserPtr user) { m_user = std::move(user); }
    QString title() const override;
    void viewWillAppear(bool animated) override;

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;
    void tableViewDidShowRows(KRTableView& tableView, KRRange rows) override;

private:
    [[nodiscard]] PelinorTitleTableViewCell::Content _contentOfRow(qint64 row) const;
    [[nodiscard]] PelinorTitleTableViewCell::Content _contentOfEnd() const;
    void _activateRow(qint64 row);

    PelinorPeople::Kind m_kind;
    TwitterUserPtr m_user;
    std::shared_ptr<PelinorPeople> m_people;
    TwitterUserList m_rows;
};
