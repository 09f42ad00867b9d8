#include "app/searches/PelinorSearchViewController.h"

#include "toolkit/navigation/KRBarButton.h"
#include "toolkit/navigation/KRNavigationItem.h"

QString PelinorSearchViewController::title() const
{
    return m_search->displayName().isNull() ? m_search->query() : m_search->displayName();
}

QString PelinorSearchViewController::autosaveName() const
{
    return QStringLiteral("%1__search").arg(m_search->query());
}

void PelinorSearchViewController::noteFreshness()
{
    m_search->stream()->noteFreshStatuses();
    account()->noteFreshSearches();
}

void PelinorSearchViewController::viewDidLoad()
{
    PelinorStatusListViewController::viewDidLoad();
    auto button = std::make_unique<KRBarButton>(QString());
    m_saveButton = button.get();
    m_saveButton->setObjectName(QStringLiteral("saveSearchButton"));
    connect(m_saveButton, &QAbstractButton::clicked, this, [this] { toggleSaved(); });
    _updateButton();
    navigationItem()->setRightBarButtonItem(std::make_unique<KRBarButtonItem>(std::move(button)));
}

void PelinorSearchViewController::toggleSaved()
{
    if (isSaved())
        account()->removeSavedSearch(m_search);
    else
        account()->addSavedSearch(m_search);
    _updateButton();
}

void PelinorSearchViewController::_updateButton()
{
    m_saveButton->setText(isSaved() ? tr("Remove") : tr("Save"));
    m_saveButton->setToolTip(
        isSaved() ? tr("Remove this search from the saved ones") : tr("Save this search with the account"));
}
