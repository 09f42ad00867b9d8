#include "app/people/PelinorUserDetailsViewController.h"

#include "app/links/PelinorScreenLinkPresenter.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/people/PelinorUserHeaderView.h"
#include "app/people/PelinorUserListViewControllers.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QTabBar>
#include <QVBoxLayout>

PelinorUserDetailsViewController::PelinorUserDetailsViewController(
    const PelinorScreenEnvironment& environment)
    : m_environment(environment)
{
}

PelinorUserDetailsViewController::~PelinorUserDetailsViewController()
{
    if (m_details)
        m_details->setChangeHandler({});
}

void PelinorUserDetailsViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    m_header = new PelinorUserHeaderView(view.get());
    m_tabs = new QTabBar(view.get());
    m_tabs->setObjectName(QStringLiteral("userTabs"));
    m_tabs->setExpanding(true);
    m_tabs->setDrawBase(false);
    m_tabs->addTab(tr("Posts"));
    m_tabs->addTab(tr("Favorites"));
    m_layout = new QVBoxLayout(view.get());
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_header);
    m_layout->addWidget(m_tabs);
    m_layout->addStretch(1);
    setView(std::move(view));
}

void PelinorUserDetailsViewController::viewDidLoad()
{
    navigationItem()->setTitle(m_user ? m_user->username() : m_loadUsername);
    if (!m_details)
        m_details = std::make_shared<PelinorUserDetails>(m_account, m_user, m_loadUsername);
    m_details->setChangeHandler([this] { _detailsDidChange(); });
    const auto links
        = [this] { return PelinorScreenLinkPresenter(m_environment, m_account, navigationController()); };
    m_header->setLinkHandler(
        [this, links](const QString& text, int type) { links().handleLink(text, type, view()); });
    connect(m_header, &PelinorUserHeaderView::homePageClicked, this, [this, links] {
        links().openURLString(m_details->user()->url().toString(QUrl::FullyEncoded), view());
    });
    connect(m_header, &PelinorUserHeaderView::retryClicked, this, [this] { refresh(); });
    connect(m_header, &PelinorUserHeaderView::followClicked, this, [this] { m_details->toggleFollowing(); });
    connect(m_header, &PelinorUserHeaderView::mentionClicked, this, [this] {
        m_environment.screens.newTweetFromAccount(m_account,
            nullptr,
            QStringLiteral("@%1 ").arg(m_details->username()),
            std::nullopt);
    });
    connect(m_header, &PelinorUserHeaderView::directMessageClicked, this, [this] {
        m_environment.screens.newDirectMessageFromAccount(m_account, m_details->user());
    });
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int tab) { _showList(tab); });
}

void PelinorUserDetailsViewController::viewWillAppear(bool animated)
{
    m_isVisible = true;
    m_preferencesObservation
        = m_environment.notifications.observe<PelinorDisplayPreferencesDidChangeNotification>(
            [this](const auto&) { _detailsDidChange(); });
    m_details->load();
    _detailsDidChange();
    if (m_list)
        m_list->viewWillAppear(animated);
    else
        _showList(m_tabs->currentIndex());
}

void PelinorUserDetailsViewController::viewWillDisappear(bool animated)
{
    m_isVisible = false;
    m_preferencesObservation.invalidate();
    if (m_list)
        m_list->viewWillDisappear(animated);
}

void PelinorUserDetailsViewController::refresh()
{
    m_details->load();
    _detailsDidChange();
    if (m_list)
        m_list->refresh();
}

void PelinorUserDetailsViewController::_detailsDidChange()
{
    m_header->showDetails(*m_details, m_environment.displayPreferences.statusCellFontSize);
    if (m_isVisible && !m_list)
        _showList(m_tabs->currentIndex());
}

void PelinorUserDetailsViewController::_showList(int tab)
{
    const TwitterUserPtr& user = m_details->user();
    if (!user)
        return;
    if (m_list && m_isVisible)
        m_list->viewWillDisappear(false);
    const auto make = [&](const auto& list) {
        list->setAccount(m_account);
        list->setUser(user);
        list->setParentViewController(this);
        m_list = list;
    };
    if (tab == FavoritesTab)
        make(std::make_shared<PelinorUserFavoritesListViewController>(m_environment));
    else
        make(std::make_shared<PelinorUserTweetsListViewController>(m_environment));
    // The stretch that holds the place, or the former list's remains, is the last item.
    constexpr int PlaceOfList = 2;
    while (m_layout->count() > PlaceOfList)
        delete m_layout->takeAt(PlaceOfList);
    m_layout->addWidget(m_list->view(), 1);
    m_list->view()->show();
    if (m_isVisible)
        m_list->viewWillAppear(false);
}
