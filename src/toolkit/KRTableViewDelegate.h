#pragma once

#include "foundation/KRRange.h"

#include <QString>

class QKeyEvent;
class KRTableView;
class KRTableViewCell;

/// Supplies a table's rows and cells, and hears of its selection. Main thread. The table does not own its
/// delegate: whoever destroys the delegate first takes it off the table.
class KRTableViewDelegate {
public:
    KRTableViewDelegate() = default;
    KRTableViewDelegate(const KRTableViewDelegate&) = delete;
    KRTableViewDelegate& operator=(const KRTableViewDelegate&) = delete;
    virtual ~KRTableViewDelegate() = default;

    /// Asked once for each reload.
    virtual int numberOfRowsInTableView(KRTableView& tableView) = 0;
    /// In whole points, for the table's current width. Asked for every row on each reload and never while
    /// scrolling.
    virtual int tableViewHeightForRow(KRTableView& tableView, qint64 row) = 0;
    /// A cell configured for the row: an idle one from dequeueReusableCellWithIdentifier(), or a new one
    /// without a parent, which the table takes over.
    virtual KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) = 0;
    /// What a screen reader says of a row that is not on screen and thus has no cell with a name.
    virtual QString tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 /*row*/) { return {}; }
    /// Told around every reload, which may come later than it was asked for. What the rows stand for changes
    /// in the first of the two and nowhere else, so that no row is drawn from another one's content; the
    /// reader's place is put back in the second.
    virtual void tableViewWillReload(KRTableView& /*tableView*/) { }
    virtual void tableViewDidReload(KRTableView& /*tableView*/) { }
    /// Told when other rows than before have come into view, after their cells were made.
    virtual void tableViewDidShowRows(KRTableView& /*tableView*/, KRRange /*rows*/) { }
    /// Offered the presses of keys that mean nothing to the table. Whether it was used.
    virtual bool tableViewKeyDown(KRTableView& /*tableView*/, const QKeyEvent& /*event*/) { return false; }
    /// Told after every selection, also when the row was selected before.
    virtual void tableViewDidSelectRow(KRTableView& /*tableView*/, qint64 /*row*/) { }
};
