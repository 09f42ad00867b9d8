#include "app/settings/PelinorAccountPreferencesController.h"

#include "app/look/PelinorAlert.h"
#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorProfileImage.h"
#include "app/settings/PelinorAccountDetailsSheet.h"
#include "app/settings/PelinorAddAccountSheet.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int IconSide = 28;

QIcon iconOf(TwitterAccount& account)
{
    const TwitterProfileImagePtr image = account.user() ? account.user()->profileImage() : nullptr;
    QPixmap pixmap(2 * IconSide, 2 * IconSide);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    PelinorProfileImage::draw(painter,
        pixmap.rect(),
        image,
        PelinorCellColors::forPalette(QGuiApplication::palette()));
    QIcon icon(pixmap);
    // Styles would make a selected one grey.
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
}

} // namespace

PelinorAccountPreferencesController::PelinorAccountPreferencesController(Twitter& twitter, QWidget* parent)
    : QWidget(parent)
    , m_twitter(twitter)
    , m_list(new QListWidget(this))
{
    m_list->setObjectName(u"accountsTable"_s);
    m_list->setAccessibleName(tr("Accounts"));
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setIconSize({ IconSide, IconSide });
    m_list->setSpacing(2);
    const auto makeButton = [this](const QString& name, const QString& text) {
        auto* const button = new QPushButton(text, this);
        button->setObjectName(name);
        return button;
    };
    QPushButton* const add = makeButton(u"addAccountButton"_s, tr("Add..."));
    m_removeButton = makeButton(u"removeAccountButton"_s, tr("Remove..."));
    m_detailsButton = makeButton(u"accountDetailsButton"_s, tr("Details..."));
    connect(add, &QPushButton::clicked, this, &PelinorAccountPreferencesController::addAccount);
    connect(m_removeButton, &QPushButton::clicked, this, &PelinorAccountPreferencesController::removeAccount);
    connect(m_detailsButton,
        &QPushButton::clicked,
        this,
        &PelinorAccountPreferencesController::configureAccount);
    connect(m_list, &QListWidget::currentRowChanged, this, [this] { _updateButtons(); });
    connect(m_list, &QListWidget::itemActivated, this, [this] { configureAccount(); });
    // The view has moved the row; both count the place to insert at before the removal.
    connect(m_list->model(),
        &QAbstractItemModel::rowsMoved,
        this,
        [this](const QModelIndex&, int from, int, const QModelIndex&, int to) {
            m_twitter.reorderAccountFromIndex(from, to);
        });

    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(m_removeButton);
    buttons->addStretch();
    buttons->addWidget(m_detailsButton);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    // A reorder tells of itself while the list still moves its row.
    m_observation = KRNotificationCenter::defaultCenter().observe<TwitterAccountsDidChangeNotification>(
        [this](const TwitterAccountsDidChangeNotification&) {
            QMetaObject::invokeMethod(
                this,
                [this] { _reloadData(); },
                Qt::QueuedConnection);
        });
    // Pictures come later than their accounts.
    m_pictureObservation = KRNotificationCenter::defaultCenter().observe<TwitterAccountDidUpdateNotification>(
        [this](const TwitterAccountDidUpdateNotification&) {
            if (isVisible())
                _updateIcons();
        });
    _reloadData();
}

PelinorAccountPreferencesController::~PelinorAccountPreferencesController() = default;

TwitterAccountPtr PelinorAccountPreferencesController::selectedAccount() const
{
    return accountForRow(m_list->currentRow());
}

void PelinorAccountPreferencesController::_reloadData()
{
    const int row = m_list->currentRow();
    m_list->clear();
    for (const TwitterAccountPtr& account : m_twitter.accounts())
        m_list->addItem(new QListWidgetItem(account->qualifiedName()));
    _updateIcons();
    m_list->setCurrentRow(std::min(row, m_list->count() - 1));
    _updateButtons();
}

void PelinorAccountPreferencesController::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    _updateIcons();
}

void PelinorAccountPreferencesController::_updateIcons()
{
    for (int row = 0; row < m_list->count(); ++row) {
        if (const TwitterAccountPtr account = accountForRow(row))
            m_list->item(row)->setIcon(iconOf(*account));
    }
}

void PelinorAccountPreferencesController::_updateButtons()
{
    m_removeButton->setEnabled(selectedAccount() != nullptr);
    m_detailsButton->setEnabled(selectedAccount() != nullptr);
}

void PelinorAccountPreferencesController::addAccount()
{
    auto* const sheet = new PelinorAddAccountSheet(m_twitter, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void PelinorAccountPreferencesController::removeAccount()
{
    const TwitterAccountPtr account = selectedAccount();
    if (!account)
        return;
    QMessageBox* const sheet = PelinorMakeAlert(QMessageBox::Question,
        tr("Remove Account"),
        tr("Are you sure you want to remove \"%1\"?").arg(account->qualifiedName()),
        window());
    QPushButton* const cancel = sheet->addButton(tr("Cancel"), QMessageBox::RejectRole);
    sheet->setDefaultButton(cancel);
    sheet->setEscapeButton(cancel);
    QPushButton* const remove = sheet->addButton(tr("Delete"), QMessageBox::DestructiveRole);
    connect(remove, &QPushButton::clicked, this, [this, account] {
        m_twitter.removeAccount(account);
        // Who removes an account here wants its password gone as well.
        static_cast<void>(account->removePasswordFromKeychain());
    });
    sheet->open();
}

void PelinorAccountPreferencesController::configureAccount()
{
    const TwitterAccountPtr account = selectedAccount();
    if (!account)
        return;
    auto* const sheet = new PelinorAccountDetailsSheet(m_twitter, account, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}
