#pragma once

#include "app/lists/PelinorTableViewController.h"
#include "app/searches/PelinorSearches.h"

#include <optional>
#include <vector>

class PelinorTitleTableViewCell;
class QFrame;
class QLineEdit;
class QMenu;

/// Where searches begin: a field, the account's saved searches, which can be renamed, removed and dragged to
/// another place, what was looked for last, and what many write about. Main thread.
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
    void tableViewDidReload(KRTableView& tableView) override;
    bool tableViewKeyDown(KRTableView& tableView, const QKeyEvent& event) override;

private:
    using Row = PelinorSearches::Row;

    void _open(const Row& row);
    void _show(const TwitterSearchPtr& search);
    void _rename(const TwitterSearchPtr& search);
    void _fillMenu(QMenu& menu, const TwitterSearchPtr& search);
    void _cellWasDragged(const PelinorTitleTableViewCell& cell, int y);
    void _cellWasDropped();
    [[nodiscard]] qint64 _rowOfFirstSaved() const;
    [[nodiscard]] const Row* _savedRow(qint64 row) const;

    Twitter& m_twitter;
    std::optional<PelinorSearches> m_searches;
    QPointer<QLineEdit> m_searchField;
    // Where a dragged search would be put.
    QPointer<QFrame> m_dropMark;
    TwitterSearchPtr m_dragged;
    qsizetype m_dropDistance = 0;
    std::vector<Row> m_rows;
    std::optional<Row> m_selected;
    std::vector<KRObservation> m_observations;
};
