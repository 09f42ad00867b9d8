#pragma once

#include "app/lists/PelinorTableViewController.h"
#include "app/lists/PelinorTitleTableViewCell.h"

#include <vector>

class QLineEdit;
class Twitter;

/// Where searches begin: a field, the account's saved searches, and what many write about. Main thread.
class PelinorSearchesViewController final : public PelinorTableViewController {
    Q_OBJECT

public:
    /// The root object outlives the screen.
    PelinorSearchesViewController(const PelinorScreenEnvironment& environment, Twitter& twitter);
    ~PelinorSearchesViewController() override;

    QString title() const override { return tr("Searches"); }
    void loadView() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    /// Shows what the query finds; nothing for an empty one.
    void search(const QString& query);

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;

private:
    struct Row {
        PelinorTitleTableViewCell::Content content;
        /// Null for a heading, and for a trend until it is opened.
        TwitterSearchPtr search = nullptr;
        QString query = {};
    };

    void _open(const TwitterSearchPtr& search);
    TwitterSearchPtr _searchFor(const QString& query) const;

    Twitter& m_twitter;
    QPointer<QLineEdit> m_searchField;
    std::vector<Row> m_rows;
    std::vector<KRObservation> m_observations;
};
