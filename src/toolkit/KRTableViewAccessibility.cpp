#include "toolkit/KRTableViewAccessibility.h"

#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewCell.h"

#include <QAccessibleWidget>

namespace {

class CellInterface final : public QAccessibleWidget {
public:
    explicit CellInterface(KRTableViewCell* cell)
        : QAccessibleWidget(cell, QAccessible::ListItem)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const auto* const cell = static_cast<const KRTableViewCell*>(widget());
        state.focusable = true;
        state.selectable = true;
        state.selected = cell->selected();
        return state;
    }
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object)
{
    if (auto* const cell = qobject_cast<KRTableViewCell*>(object))
        return new CellInterface(cell);
    if (auto* const table = qobject_cast<KRTableView*>(object))
        return new QAccessibleWidget(table, QAccessible::List);
    return nullptr;
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
