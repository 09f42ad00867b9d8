#pragma once

#include <QtGlobal>

class KRTableView;

/// Makes tables known to assistive technology as lists of all their rows, on screen or not, and the active
/// spans of a row's cell as links in it. Once for the program; later calls do nothing. Main thread.
void KRInstallTableViewAccessibility();

/// Tells assistive technology that the selection has gone from one row to another; -1 is none.
void KRAnnounceSelection(KRTableView& tableView, qint64 oldRow, qint64 newRow);
/// Tells it that the rows are other ones.
void KRAnnounceReload(KRTableView& tableView);
