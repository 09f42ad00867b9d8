#include "app/writing/PelinorAccountMenu.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorProfileImage.h"
#include "core/TwitterAccountNotifications.h"

#include <QPainter>

namespace {

constexpr int IconSide = 20;
// Pixels for a point: sharp up to a scale factor of 2.
constexpr int Scale = 2;

QIcon iconOf(TwitterAccount& account, const QPalette& palette)
{
    QPixmap pixmap(Scale * IconSide, Scale * IconSide);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    PelinorProfileImage::draw(painter,
        pixmap.rect(),
        account.user() ? account.user()->profileImage() : nullptr,
        PelinorCellColors::forPalette(palette));
    return pixmap;
}

} // namespace

PelinorAccountMenu::PelinorAccountMenu(const Twitter& twitter, QWidget* parent)
    : QComboBox(parent)
    , m_twitter(twitter)
{
    setObjectName(QStringLiteral("accountPopUpButton"));
    setAccessibleName(tr("Post as"));
    setIconSize({ IconSide, IconSide });
    connect(this, &QComboBox::activated, this, [this](int index) {
        m_account = m_twitter.accounts().value(index, m_account);
        Q_EMIT accountChosen(m_account);
    });
    m_accountsObservation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountsDidChangeNotification>(
            [this](const auto&) { _build(); });
    // Pictures come later than their accounts.
    m_pictureObservation = KRNotificationCenter::defaultCenter().observe<TwitterAccountDidUpdateNotification>(
        [this](const auto&) { _updateIcons(); });
}

PelinorAccountMenu::~PelinorAccountMenu() = default;

void PelinorAccountMenu::setAccount(const TwitterAccountPtr& account)
{
    m_account = account;
    _build();
}

void PelinorAccountMenu::_build()
{
    clear();
    for (const TwitterAccountPtr& account : m_twitter.accounts())
        addItem(account->qualifiedName());
    setCurrentIndex(int(m_twitter.accounts().indexOf(m_account)));
    // Somebody whose account has gone needs another one.
    setVisible(count() >= 2 || (m_account && currentIndex() < 0));
    _updateIcons();
}

void PelinorAccountMenu::_updateIcons()
{
    for (int index = 0; isVisibleTo(parentWidget()) && index < count(); ++index)
        setItemIcon(index, iconOf(*m_twitter.accounts().at(index), palette()));
}
