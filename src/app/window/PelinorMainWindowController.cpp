#include "app/window/PelinorMainWindowController.h"

#include "app/lists/PelinorRepliesListViewController.h"
#include "app/lists/PelinorTweetsListViewController.h"
#include "app/look/PelinorWindowColors.h"
#include "app/messages/PelinorDirectMessagesViewController.h"
#include "app/people/PelinorUserDetailsViewController.h"
#include "app/searches/PelinorSearchesViewController.h"
#include "app/window/PelinorGoToUserPanel.h"
#include "app/window/PelinorNoAccountView.h"
#include "app/window/PelinorProgressIndicator.h"
#include "app/window/PelinorStatusStrip.h"
#include "app/window/PelinorWindowStatus.h"
#include "core/Twitter.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"
#include "toolkit/KRLiveResize.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize MinimumSize(400, 360);
constexpr QSize InitialSize(480, 760);
// What a window's frame takes of the screen, which is known only once there is one.
constexpr QSize FrameRoom(8, 40);
constexpr char GeometryKey[] = "MainWindowGeometry";
constexpr char MenuBarHeightKey[] = "MainWindowMenuBarHeight";
// With the usual fonts; a first start cannot know.
constexpr int UsualMenuBarHeight = 22;
constexpr char SelectedAccountKey[] = "MainWindowSelectedAccount";
constexpr char SelectedTabKey[] = "MainWindowSelectedTab";

} // namespace

// The window asks its controller what becomes of it.
class PelinorMainWindowController::Window final : public QMainWindow {
public:
    explicit Window(PelinorMainWindowController& controller)
        : m_controller(controller)
    {
    }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        m_controller.saveState();
        if (m_controller.m_shouldClose && !m_controller.m_shouldClose()) {
            event->ignore();
            return;
        }
        QMainWindow::closeEvent(event);
    }

private:
    PelinorMainWindowController& m_controller;
};

// What is between the menu bar and the window's edges. Its own colour shows where no screen covers it.
class PelinorMainWindowController::ContentView final : public QWidget {
public:
    explicit ContentView(PelinorMainWindowController& controller)
        : m_controller(controller)
    {
        setObjectName(u"contentView"_s);
    }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QWidget::resizeEvent(event);
        m_controller._layOut();
    }
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter(this).fillRect(rect(), PelinorWindowColors::forPalette(palette()).screen);
        m_controller._windowWasPainted();
    }

private:
    PelinorMainWindowController& m_controller;
};

PelinorMainWindowController::PelinorMainWindowController(const PelinorScreenEnvironment& environment,
    Twitter& twitter,
    std::shared_ptr<PelinorDraftStore> draftStore)
    : m_environment(environment)
    , m_twitter(twitter)
    , m_outbox(twitter, environment.defaults, environment.notifications, std::move(draftStore))
    , m_window(std::make_unique<Window>(*this))
    , m_contentView(new ContentView(*this))
    , m_sideTabs(new PelinorAccountTabsView(environment.notifications, m_contentView))
    , m_statusStrip(new PelinorStatusStrip(m_contentView))
    , m_status(PelinorWindowStatus::observing(environment.notifications))
{
    m_window->setObjectName(u"mainWindow"_s);
    m_window->setWindowTitle(u"Pelinor"_s);
    m_window->setMinimumSize(MinimumSize);
    m_window->setCentralWidget(m_contentView);
    new KRLiveResize(*m_window);
    m_sideTabs->setDelegate(this);
    m_switcher.setTargetView(m_contentView);
    m_status->setChangeHandler([this] { _statusDidChange(); });
    _statusDidChange();
    m_accountsObservation = environment.notifications.observe<TwitterAccountsDidChangeNotification>(
        [this](const TwitterAccountsDidChangeNotification&) { accountsDidChange(); });
    _restoreState();
    accountsDidChange();
    m_sideTabs->restoreSelection(
        [this]() -> TwitterAccountPtr {
            const QString name = m_environment.defaults.stringForKey(SelectedAccountKey);
            for (const TwitterAccountPtr& account : m_twitter.accounts()) {
                if (account->qualifiedName() == name)
                    return account;
            }
            return nullptr;
        }(),
        m_environment.defaults.integerForKey(SelectedTabKey));
}

PelinorMainWindowController::~PelinorMainWindowController()
{
    m_status->setChangeHandler({});
    m_sideTabs->setDelegate(nullptr);
    saveState();
    m_switcher.setTargetView(nullptr);
}

QMainWindow& PelinorMainWindowController::window()
{
    return *m_window;
}

void PelinorMainWindowController::showWindow()
{
    if (!m_wasPainted)
        _showTexts(false);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

QRect PelinorMainWindowController::mainViewRect() const
{
    const QRect content = m_contentView->rect();
    return QStyle::visualRect(m_contentView->layoutDirection(),
        content,
        content.adjusted(PelinorAccountTabsView::Width, 0, 0, -PelinorStatusStrip::Height));
}

void PelinorMainWindowController::_layOut()
{
    const QRect screens = mainViewRect();
    m_sideTabs->setGeometry(QStyle::visualRect(m_contentView->layoutDirection(),
        m_contentView->rect(),
        QRect(0, 0, PelinorAccountTabsView::Width, m_contentView->height())));
    m_statusStrip->setGeometry(screens.x(),
        screens.bottom() + 1,
        screens.width(),
        PelinorStatusStrip::Height);
}

// State kept between runs

void PelinorMainWindowController::_restoreState()
{
    const QByteArray geometry = m_environment.defaults.dataForKey(GeometryKey);
    if (geometry.isEmpty() || !m_window->restoreGeometry(geometry))
        m_window->resize(InitialSize);
    // What is below the screen's edge, such as the field of an answer, could not be reached.
    if (!m_window->isMaximized() && !m_window->isFullScreen())
        m_window->resize(m_window->size().boundedTo(m_window->screen()->availableSize() - FrameRoom));
}

void PelinorMainWindowController::saveState()
{
    KRUserDefaults& defaults = m_environment.defaults;
    defaults.setData(GeometryKey, m_window->saveGeometry());
    if (const QWidget* const menus = m_window->menuWidget(); menus && m_wasPainted)
        defaults.setInteger(MenuBarHeightKey, menus->height());
    if (const TwitterAccountPtr account = selectedTwitterAccount()) {
        defaults.setString(SelectedAccountKey, account->qualifiedName());
        defaults.setInteger(SelectedTabKey, m_sideTabs->selectedAccountTab());
    }
    if (auto* const list = topList(); list && m_areScreensShown)
        list->saveScrollPosition();
}

// Screens

void PelinorMainWindowController::_windowWasPainted()
{
    // The window is on the screen before the first text has loaded the fonts and the first request libcurl.
    if (!std::exchange(m_wasPainted, true))
        QMetaObject::invokeMethod(
            this,
            [this] {
                _showTexts(true);
                _showSelection();
                if (m_firstScreenHandler)
                    m_firstScreenHandler();
            },
            Qt::QueuedConnection);
}

void PelinorMainWindowController::_showTexts(bool areShown)
{
    m_statusStrip->setVisible(areShown);
    QWidget* const menus = m_window->menuWidget();
    if (!menus)
        return;
    // Its room is kept, so that nothing moves when it comes.
    const int known = m_environment.defaults.integerForKey(MenuBarHeightKey);
    const int room = known > 0 ? known : UsualMenuBarHeight;
    m_window->setContentsMargins(0, areShown ? 0 : room, 0, 0);
    menus->setVisible(areShown);
}

void PelinorMainWindowController::_showSelection()
{
    selectAccount(m_sideTabs->selectedAccount(), m_sideTabs->selectedAccountTab(), false, 0, false);
}

void PelinorMainWindowController::accountsDidChange()
{
    m_sideTabs->setAccounts(m_twitter.accounts());
    if (m_wasPainted)
        _showSelection();
}

KRViewControllerPtr PelinorMainWindowController::_rootScreen(const TwitterAccountPtr& account, int tab)
{
    const auto forAccount = [&account](const auto& screen) {
        screen->setAccount(account);
        return screen;
    };
    switch (tab) {
    case TimelineTab:
        return forAccount(std::make_shared<PelinorTweetsListViewController>(m_environment));
    case RepliesTab:
        return forAccount(std::make_shared<PelinorRepliesListViewController>(m_environment));
    case DirectMessagesTab:
        return forAccount(
            std::make_shared<PelinorDirectMessagesViewController>(m_environment, m_twitter, m_outbox));
    case SearchesTab:
        return forAccount(std::make_shared<PelinorSearchesViewController>(m_environment, m_twitter));
    case ProfileTab:
        return m_environment.screens.makeUserDetailsView(account, account->user(), account->username());
    default:
        KRLog(u"Warning: unknown tab selected %1"_s.arg(tab));
        return nullptr;
    }
}

KRViewControllerPtr PelinorMainWindowController::_screenWithoutAccount()
{
    auto view = std::make_unique<PelinorNoAccountView>();
    connect(view.get(), &PelinorNoAccountView::addAccountClicked, this, [this] {
        if (m_addAccountHandler)
            m_addAccountHandler();
    });
    auto screen = std::make_shared<KRViewController>();
    screen->navigationItem()->setTitle(tr("Accounts"));
    screen->setView(std::move(view));
    return screen;
}

void PelinorMainWindowController::selectAccount(const TwitterAccountPtr& account,
    int tab,
    bool animated,
    int direction,
    bool speedy)
{
    KRViewControllerPtr root = account ? _rootScreen(account, tab) : _screenWithoutAccount();
    if (!root) {
        root = std::make_shared<KRViewController>();
        root->setView(std::make_unique<QWidget>());
    }
    m_areScreensShown = account != nullptr;
    m_switcher.setTargetFrame(mainViewRect());
    int code = KRTransitionNone;
    if (animated)
        code = (direction ? KRTransitionSlideDown : KRTransitionSlideUp) | (speedy ? KRTransitionShort : 0);
    m_switcher.switchToViewController(std::make_shared<KRNavigationController>(root), code);
    if (!m_window->focusWidget() || m_window->focusWidget() == m_contentView)
        root->view()->setFocus();
}

KRViewControllerPtr PelinorMainWindowController::topViewController() const
{
    const auto navigation = m_switcher.currentNavigationController();
    return navigation ? navigation->topViewController() : nullptr;
}

PelinorStatusListViewController* PelinorMainWindowController::topList() const
{
    const KRViewControllerPtr top = topViewController();
    if (const auto* const person = qobject_cast<PelinorUserDetailsViewController*>(top.get()))
        return person->list();
    return qobject_cast<PelinorStatusListViewController*>(top.get());
}

void PelinorMainWindowController::refresh()
{
    const KRViewControllerPtr top = topViewController();
    if (auto* const person = qobject_cast<PelinorUserDetailsViewController*>(top.get()))
        person->refresh();
    else if (auto* const list = topList())
        list->refresh();
}

void PelinorMainWindowController::accountTabsSelectAccount(PelinorAccountTabsView& tabs,
    const TwitterAccountPtr& /*account*/,
    int direction,
    bool speedy)
{
    selectAccount(tabs.selectedAccount(), tabs.selectedAccountTab(), true, direction, speedy);
}

void PelinorMainWindowController::accountTabsSelectTab(PelinorAccountTabsView& tabs,
    int /*tag*/,
    int direction)
{
    selectAccount(tabs.selectedAccount(), tabs.selectedAccountTab(), true, direction, false);
}

void PelinorMainWindowController::accountTabsReSelectTab(PelinorAccountTabsView& /*tabs*/, int /*tag*/)
{
    if (const auto navigation = m_switcher.currentNavigationController())
        navigation->popToRootViewControllerAnimated(KRAnimated::Yes);
}

void PelinorMainWindowController::accountTabsDoubleClickAccount(PelinorAccountTabsView& /*tabs*/,
    const TwitterAccountPtr& account)
{
    _push(m_environment.screens.makeUserDetailsView(account, account->user(), account->username()));
}

void PelinorMainWindowController::_push(const KRViewControllerPtr& screen)
{
    if (const auto navigation = m_switcher.currentNavigationController())
        navigation->pushViewController(screen, KRAnimated::Yes);
    else
        KRLog(u"no navigation controller found!"_s);
}

// People

void PelinorMainWindowController::myProfile()
{
    if (const TwitterAccountPtr account = selectedTwitterAccount())
        _goToUser(account->username());
}

void PelinorMainWindowController::goToUser()
{
    const TwitterAccountPtr account = selectedTwitterAccount();
    if (!account)
        return;
    QStringList names;
    // Those of the account's own site: nobody else is found there.
    for (const TwitterUserPtr& user : account->context().tables->cachedUsers())
        names.append(user->username());
    names.sort(Qt::CaseInsensitive);
    if (!m_goToUserPanel) {
        m_goToUserPanel = new PelinorGoToUserPanel(m_window.get());
        connect(m_goToUserPanel, &PelinorGoToUserPanel::userChosen, this, [this](const QString& name) {
            _goToUser(name);
        });
    }
    m_goToUserPanel->goToUser(names);
}

void PelinorMainWindowController::_goToUser(const QString& username)
{
    const TwitterAccountPtr account = selectedTwitterAccount();
    if (account)
        _push(m_environment.screens.makeUserDetailsView(account, nullptr, username));
}

void PelinorMainWindowController::_statusDidChange()
{
    m_statusStrip->setError(m_status->currentError() ? m_status->currentError()->description : QString());
    if (m_status->isNetworkActive())
        m_statusStrip->progressIndicator().startAnimation();
    else
        m_statusStrip->progressIndicator().stopAnimation();
}
