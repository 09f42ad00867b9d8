#include "app/PelinorShortcutsWindow.h"

#include "app/PelinorMainMenu.h"

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(420, 560);

} // namespace

void PelinorShortcutsWindow::show(const PelinorMainMenu& menu, QWidget* parent)
{
    QList<PelinorMainMenu::Key> keys = PelinorMainMenu::listKeys();
    for (const QAction* const action : menu.actions()) {
        if (!action->shortcut().isEmpty())
            keys.append({ action->shortcut().toString(QKeySequence::NativeText),
                action->text().remove(QLatin1Char('&')).remove(QStringLiteral("...")) });
    }
    auto* const window = new QDialog(parent);
    window->setObjectName(QStringLiteral("shortcutsWindow"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(PelinorMainMenu::tr("Keyboard Shortcuts"));
    window->resize(InitialSize);
    auto* const table = new QTableWidget(int(keys.size()), 2, window);
    table->setHorizontalHeaderLabels({ PelinorMainMenu::tr("Key"), PelinorMainMenu::tr("What it does") });
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    for (int row = 0; row < int(keys.size()); ++row) {
        table->setItem(row, 0, new QTableWidgetItem(keys.at(row).key));
        table->setItem(row, 1, new QTableWidgetItem(keys.at(row).what));
    }
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, window);
    QObject::connect(buttons, &QDialogButtonBox::rejected, window, &QDialog::close);
    auto* const layout = new QVBoxLayout(window);
    layout->addWidget(table);
    layout->addWidget(buttons);
    window->show();
}
