#include "toolkit/KRTableViewCell.h"

#include "toolkit/KRTableView.h"

#include <QMouseEvent>

KRTableViewCell::KRTableViewCell(const QString& reusableIdentifier)
    : m_reusableIdentifier(reusableIdentifier)
{
    // The table sets the real frame.
    setGeometry(0, 0, 1, 1);
}

KRTableViewCell::~KRTableViewCell() = default;

KRTableView* KRTableViewCell::tableView() const
{
    return m_tableView;
}

void KRTableViewCell::setTableView(KRTableView* tableView)
{
    m_tableView = tableView;
}

bool KRTableViewCell::selected() const
{
    return m_tableView && m_tableView->selectedRow() == m_row;
}

void KRTableViewCell::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    event->accept();
    if (m_tableView)
        m_tableView->selectRow(m_row);
}

bool KRTableViewCell::focusNextPrevChild(bool next)
{
    return m_tableView ? m_tableView->leaveWithTab(next) : QWidget::focusNextPrevChild(next);
}
