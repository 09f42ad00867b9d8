#pragma once

#include "toolkit/KRTableViewDelegate.h"
#include "toolkit/navigation/KRViewController.h"

/// A table of ten thousand rows of different heights.
class GalleryTablePage final : public KRViewController, private KRTableViewDelegate {
public:
    ~GalleryTablePage() override;

    void loadView() override;

private:
    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;

    QPointer<KRTableView> m_table;
};
