#include "toolkit/KRTableViewAccessibility.h"

#include "toolkit/KRAccessiblePart.h"
#include "toolkit/KRActiveTextAccessibility.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewCell.h"
#include "toolkit/KRTableViewDelegate.h"
#include "toolkit/KRTableViewDocumentView.h"

#include <QAccessibleWidget>

namespace {

void pressRow(KRTableView& table, qint64 row)
{
    const QPointer<KRTableView> alive = &table;
    table.scrollToRow(row);
    table.selectRow(row);
    if (!alive)
        return;
    if (KRTableViewCell* const cell = table.selectedCell())
        cell->activate();
    else
        table.setFocus();
}

// A row with a cell on screen.
class CellInterface final : public QAccessibleWidget {
public:
    explicit CellInterface(KRTableViewCell& cell)
        : QAccessibleWidget(&cell, QAccessible::ListItem)
        , m_cell(cell)
        , m_spans(cell)
    {
    }

    QAccessibleInterface* parent() const override
    {
        return m_cell.tableView() ? QAccessible::queryAccessibleInterface(m_cell.tableView())
                                  : QAccessibleWidget::parent();
    }
    int childCount() const override { return m_spans.count(); }
    QAccessibleInterface* child(int index) const override { return m_spans.at(index); }
    int indexOfChild(const QAccessibleInterface* child) const override { return m_spans.indexOf(child); }
    QAccessibleInterface* childAt(int x, int y) const override { return m_spans.under({ x, y }); }
    QAccessibleInterface* focusChild() const override
    {
        return m_spans.focused() ? m_spans.focused() : QAccessibleWidget::focusChild();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        state.selectable = true;
        state.selected = m_cell.selected();
        return state;
    }
    QStringList actionNames() const override { return QStringList(pressAction()) + m_cell.actionNames(); }
    void doAction(const QString& name) override
    {
        if (name != pressAction())
            m_cell.performAction(name);
        else if (m_cell.tableView())
            pressRow(*m_cell.tableView(), m_cell.row());
    }
    QString localizedActionName(const QString& name) const override
    {
        return name == pressAction() ? QAccessibleWidget::localizedActionName(name) : name;
    }

private:
    KRTableViewCell& m_cell;
    KRAccessibleSpans m_spans;
};

// A row that has no cell because it is not on screen.
class RowInterface final : public KRAccessiblePart {
public:
    RowInterface(KRTableView& table, int row)
        : m_table(&table)
        , m_row(row)
    {
    }

    int row() const { return m_row; }
    const KRTableView* table() const { return m_table; }

    bool isValid() const override { return m_table && m_row < m_table->numberOfRows(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_table); }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect rect = m_table->rectForRow(m_row).translated(-m_table->documentVisibleRect().topLeft());
        return { m_table->viewport()->mapToGlobal(rect.topLeft()), rect.size() };
    }

private:
    QString name() const override
    {
        return m_table->delegate() ? m_table->delegate()->tableViewAccessibleNameForRow(*m_table, m_row)
                                   : QString();
    }
    void describe(QAccessible::State& state) const override
    {
        state.focusable = true;
        state.selectable = true;
        state.selected = m_table->selectedRow() == m_row;
        state.offscreen = !m_table->visibleRange().contains(m_row);
    }
    void press() override { pressRow(*m_table, m_row); }

    QPointer<KRTableView> m_table;
    int m_row;
};

class TableInterface final : public QAccessibleWidget {
public:
    explicit TableInterface(KRTableView& table)
        : QAccessibleWidget(&table, QAccessible::List)
        , m_table(table)
    {
    }
    ~TableInterface() override
    {
        for (const QAccessible::Id id : std::as_const(m_rows))
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return m_table.numberOfRows(); }
    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= m_table.numberOfRows())
            return nullptr;
        if (KRTableViewCell* const cell = m_table.cellForRow(index))
            return QAccessible::queryAccessibleInterface(cell);
        const auto known = m_rows.constFind(index);
        if (known != m_rows.cend())
            return QAccessible::accessibleInterface(*known);
        auto* const row = new RowInterface(m_table, index);
        m_rows.insert(index, QAccessible::registerAccessibleInterface(row));
        return row;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        if (const auto* const row = dynamic_cast<const RowInterface*>(child))
            return row->table() == &m_table && row->isValid() ? row->row() : -1;
        const auto* const cell = child ? qobject_cast<KRTableViewCell*>(child->object()) : nullptr;
        return cell && m_table.cellForRow(cell->row()) == cell ? int(cell->row()) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QPoint point = m_table.viewport()->mapFromGlobal(QPoint(x, y));
        if (!m_table.viewport()->rect().contains(point))
            return nullptr;
        const KRRange rows
            = m_table.rangeForRect({ point + m_table.documentVisibleRect().topLeft(), QSize(1, 1) });
        return rows.length > 0 ? child(int(rows.location)) : nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        KRTableViewCell* const cell = m_table.selectedCell();
        QAccessibleInterface* const row
            = cell && cell->hasFocus() ? QAccessible::queryAccessibleInterface(cell) : nullptr;
        return row ? row->focusChild() : QAccessibleWidget::focusChild();
    }

private:
    KRTableView& m_table;
    mutable QHash<int, QAccessible::Id> m_rows;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object)
{
    if (auto* const cell = qobject_cast<KRTableViewCell*>(object))
        return new CellInterface(*cell);
    if (auto* const table = qobject_cast<KRTableView*>(object))
        return new TableInterface(*table);
    return nullptr;
}

void announceSelected(QAccessibleInterface* row, QAccessible::Event type)
{
    if (!row)
        return;
    QAccessibleEvent selection(row, type);
    QAccessible::updateAccessibility(&selection);
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent state(row, changed);
    QAccessible::updateAccessibility(&state);
}

} // namespace

void KRInstallTableViewAccessibility()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    static_cast<void>(isInstalled);
}

void KRAnnounceSelection(KRTableView& tableView, qint64 oldRow, qint64 newRow)
{
    if (!QAccessible::isActive() || oldRow == newRow)
        return;
    QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(&tableView);
    announceSelected(table->child(int(oldRow)), QAccessible::SelectionRemove);
    announceSelected(table->child(int(newRow)), QAccessible::Selection);
}

void KRAnnounceReload(KRTableView& tableView)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent reordered(&tableView, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
}
