#include "app/PelinorAppDelegate.h"

#include "app/PelinorMainMenu.h"
#include "app/PelinorShortcutsWindow.h"
#include "app/lists/PelinorStatusDetailsViewController.h"
#include "app/look/PelinorAlert.h"
#include "app/look/PelinorContrast.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorProfileImage.h"
#include "app/messages/PelinorReadMarks.h"
#include "app/people/PelinorUserDetailsViewController.h"
#include "app/searches/PelinorSearchViewController.h"
#include "app/settings/PelinorAddAccountSheet.h"
#include "app/settings/PelinorLoginWindowController.h"
#include "app/settings/PelinorPreferencesWindowController.h"
#include "app/window/PelinorMainWindowController.h"
#include "app/window/PelinorStatusStrip.h"
#include "core/EMKeychainProxy.h"
#include "core/KRKeychain.h"
#include "foundation/KRUserDefaults.h"
#include "toolkit/transitions/KRMotion.h"

#include <QApplication>
#include <QCursor>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

PelinorAppDelegate::PelinorAppDelegate(Twitter& twitter, KRUserDefaults& defaults)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_displayPreferences(PelinorDisplayPreferences::fromDefaults(defaults))
    , m_environment { defaults,
        KRNotificationCenter::defaultCenter(),
        m_displayPreferences,
        m_heights,
        m_workspace,
        *this }
    , m_hotKeys(defaults, [this](PelinorHotKeys::Type type) { _hotKeyWasPressed(type); })
{
    TwitterUser::setProfileImageMaker(&CreateRoundedProfileImage);
}

PelinorAppDelegate::~PelinorAppDelegate() = default;

// Start and end

void PelinorAppDelegate::applicationDidFinishLaunching()
{
    QApplication::setWindowIcon(PelinorImages::icon(u"Pelinor"_s, Qt::black));
    m_desktopAppearance = std::make_unique<KRDesktopAppearance>([](const auto& wishes) {
        KRMotion::setReducedByDesktop(wishes.reducesMotion);
        PelinorContrast::setRaised(wishes.raisesContrast);
        // Whatever keeps colours of its own asks for them anew.
        for (QWidget* const widget : QApplication::allWidgets()) {
            QEvent change(QEvent::PaletteChange);
            QApplication::sendEvent(widget, &change);
            widget->update();
        }
    });
    m_hotKeys.registerSavedHotKeys();
    m_menuStatusItem = std::make_unique<PelinorMenuStatusItem>(*this, m_defaults);
    m_accountObservation = KRNotificationCenter::defaultCenter().observe<TwitterAccountDidUpdateNotification>(
        [this](const auto&) { _updateMenuStatusItem(); });
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            _updateMenuStatusItem();
    });
    if (!m_twitter.accounts().isEmpty()) {
        _openMainWindow();
        return;
    }
    m_loginWindowController = std::make_unique<PelinorLoginWindowController>(m_twitter, m_workspace);
    m_loginWindowController->setResponseCallback(
        [this](const TwitterAccountPtr& account) { _firstLoginResponse(account); });
    m_loginWindowController->showWindow();
}

void PelinorAppDelegate::_firstLoginResponse(const TwitterAccountPtr& account)
{
    m_twitter.addAccount(account);
    _openMainWindow();
    // It is the login window that tells of this.
    m_loginWindowController.release()->deleteLater();
}

void PelinorAppDelegate::_openMainWindow()
{
    m_mainWindowController
        = std::make_unique<PelinorMainWindowController>(m_environment, m_twitter, m_draftStore);
    m_mainWindowController->setShouldClose([this] {
        terminate();
        return m_mayTerminate;
    });
    m_mainMenu = std::make_unique<PelinorMainMenu>(*this, *m_mainWindowController);
    m_keychainObservation = KRNotificationCenter::defaultCenter().observe<KRKeychainUnavailableNotification>(
        [this](const auto&) {
            m_mainWindowController->statusStrip().setNotice(tr("Password not kept"),
                tr("No keyring answers. Your password is kept in memory and asked for again next time."));
            _askForPasswords();
        });
    m_unlockingObservation
        = KRNotificationCenter::defaultCenter().observe<KRKeychainUnlockingDidEndNotification>(
            [this](const auto&) { _askForPasswords(); });
    m_mainWindowController->setFirstScreenHandler([this] { _askForPasswords(); });
    m_mainWindowController->setAddAccountHandler(
        [this] { _openSheet(*new PelinorAddAccountSheet(m_twitter, _frontWindow())); });
    m_mainWindowController->showWindow();
    // What the user was writing stands before what there is to read.
    _openLeftDrafts();
}

void PelinorAppDelegate::_openSheet(PelinorAddAccountSheet& sheet)
{
    sheet.setAttribute(Qt::WA_DeleteOnClose);
    sheet.open();
}

void PelinorAppDelegate::_askForPasswords()
{
    // An open keyring may know them; and one sheet at a time.
    if (m_passwordSheet || EMKeychainProxy::sharedProxy().isUnlocking())
        return;
    const auto isLacking = [](const TwitterAccountPtr& account) { return account->password().isNull(); };
    const QList<TwitterAccountPtr>& accounts = m_twitter.accounts();
    const auto account = std::find_if(accounts.begin(), accounts.end(), isLacking);
    if (account == accounts.end())
        return;
    m_passwordSheet = new PelinorAddAccountSheet(m_twitter, *account, &m_mainWindowController->window());
    connect(m_passwordSheet, &QDialog::accepted, this, [this] {
        m_passwordSheet = nullptr;
        _askForPasswords();
    });
    _openSheet(*m_passwordSheet);
}

bool PelinorAppDelegate::applicationShouldTerminate()
{
    if (m_composeControllers.empty())
        return true;
    QMessageBox& alert = *PelinorMakeAlert(QMessageBox::Question,
        tr("You have %1 unsent tweets. Do you want to review these tweets before quitting?")
            .arg(m_composeControllers.size()),
        tr("Unsent tweets will be lost."),
        _frontWindow());
    QPushButton* const review = alert.addButton(tr("Review Tweets..."), QMessageBox::RejectRole);
    QPushButton* const discard = alert.addButton(tr("Discard Tweets"), QMessageBox::DestructiveRole);
    alert.setDefaultButton(review);
    alert.setEscapeButton(review);
    // It outlives its closing for the question what was clicked.
    alert.setAttribute(Qt::WA_DeleteOnClose, false);
    alert.exec();
    alert.deleteLater();
    if (alert.clickedButton() != discard)
        return false;
    for (const auto& controller : m_composeControllers)
        controller->discardDraft();
    return true;
}

void PelinorAppDelegate::terminate()
{
    m_mayTerminate = m_mayTerminate || applicationShouldTerminate();
    // Not quit(), which would have every window asked whether it may be closed.
    if (m_mayTerminate)
        QApplication::exit();
}

void PelinorAppDelegate::applicationWillTerminate()
{
    m_accountObservation = {};
    m_menuStatusItem.reset();
    m_composeControllers.clear();
    m_preferencesWindowController.reset();
    m_mainMenu.reset();
    m_mainWindowController.reset();
    m_twitter.shutdown();
}

// Desktop

void PelinorAppDelegate::_updateMenuStatusItem()
{
    m_menuStatusItem->setStatusLight(m_twitter.hasFreshAnythingApplicableToStatusItem()
            ? PelinorMenuStatusItem::LightOn
            : PelinorMenuStatusItem::LightOff);
}

void PelinorAppDelegate::statusItemAction()
{
    showHidePelinor();
    _updateMenuStatusItem();
}

void PelinorAppDelegate::showHidePelinor()
{
    m_hiddenWindows.removeAll(nullptr);
    if (QGuiApplication::applicationState() == Qt::ApplicationActive) {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowType() != Qt::Popup) {
                m_hiddenWindows.append(window);
                window->hide();
            }
        }
        return;
    }
    for (const QPointer<QWidget>& window : std::exchange(m_hiddenWindows, {}))
        window->show();
    if (m_mainWindowController)
        m_mainWindowController->showWindow();
}

void PelinorAppDelegate::_hotKeyWasPressed(PelinorHotKeys::Type type)
{
    if (type == PelinorHotKeys::ShowHidePelinor)
        showHidePelinor();
    else if (type == PelinorHotKeys::NewTweet)
        newDocumentFromDock();
}

void PelinorAppDelegate::markAllAsRead()
{
    for (const TwitterAccountPtr& account : m_twitter.accounts())
        PelinorReadMarks(m_defaults, *account).noteAllRead();
    m_twitter.markAllAsRead();
}

void PelinorAppDelegate::newDocumentFromDock()
{
    if (!m_mainWindowController)
        return;
    newDocument();
    if (m_composeControllers.empty())
        return;
    QWidget& window = m_composeControllers.back()->window();
    window.raise();
    window.activateWindow();
}

// Windows

QWidget* PelinorAppDelegate::_frontWindow() const
{
    return m_mainWindowController ? &m_mainWindowController->window() : nullptr;
}

PelinorPreferencesWindowController& PelinorAppDelegate::preferencesWindowController()
{
    if (!m_preferencesWindowController)
        m_preferencesWindowController = std::make_unique<PelinorPreferencesWindowController>(m_twitter,
            m_defaults,
            m_hotKeys,
            m_displayPreferences);
    return *m_preferencesWindowController;
}

void PelinorAppDelegate::showPreferences()
{
    preferencesWindowController().showWindow();
}

void PelinorAppDelegate::showMainPelinorWindow()
{
    if (m_mainWindowController)
        m_mainWindowController->showWindow();
}

void PelinorAppDelegate::showShortcuts()
{
    PelinorShortcutsWindow::show(*m_mainMenu, _frontWindow());
}

void PelinorAppDelegate::showAbout()
{
    QMessageBox::about(_frontWindow(),
        tr("About Pelinor"),
        tr("<h3>Pelinor %1</h3><p>A client for micro-blogging services that speak the classic REST "
           "interface.</p>")
            .arg(QApplication::applicationVersion().toHtmlEscaped()));
}

void PelinorAppDelegate::_openLeftDrafts()
{
    for (const PelinorDraftStore::Stored& left : m_draftStore->takeLeftDrafts()) {
        PelinorComposeWindowController& controller = _makeComposeController(nullptr, left);
        controller.setSourcePoint(QCursor::pos());
        controller.showWindow();
    }
}

PelinorComposeWindowController& PelinorAppDelegate::_makeComposeController(const TwitterAccountPtr& account,
    const std::optional<PelinorDraftStore::Stored>& left)
{
    auto controller
        = std::make_unique<PelinorComposeWindowController>(m_twitter, m_defaults, m_draftStore, left);
    controller->setDelegate(this);
    controller->setWindowsBefore(int(m_composeControllers.size()));
    controller->setAccount(account   ? account
            : m_mainWindowController ? m_mainWindowController->selectedTwitterAccount()
                                     : nullptr);
    m_composeControllers.push_back(std::move(controller));
    return *m_composeControllers.back();
}

bool PelinorAppDelegate::_hasAccount()
{
    if (!m_twitter.accounts().isEmpty())
        return true;
    showPreferences();
    preferencesWindowController().accounts();
    return false;
}

void PelinorAppDelegate::newDocument()
{
    if (_hasAccount())
        newTweetFromAccount(nullptr, nullptr, {}, std::nullopt);
}

void PelinorAppDelegate::newVideoTweet()
{
    if (!_hasAccount())
        return;
    PelinorComposeWindowController& controller = _makeComposeController(nullptr);
    controller.setForceVideo(true);
    controller.setSourcePoint(QCursor::pos());
    controller.showWindow();
}

void PelinorAppDelegate::newDirectMessage()
{
    if (_hasAccount())
        newDirectMessageFromAccount(nullptr, nullptr);
}

void PelinorAppDelegate::newTweetFromAccount(const TwitterAccountPtr& account,
    const TwitterStatusPtr& inReplyToStatus,
    const QString& defaultText,
    const std::optional<QPoint>& replyPointHint)
{
    PelinorComposeWindowController& controller = _makeComposeController(account);
    controller.setInReplyToStatus(inReplyToStatus);
    controller.setDefaultText(defaultText);
    controller.setSourcePoint(replyPointHint.value_or(QCursor::pos()));
    controller.showWindow();
}

void PelinorAppDelegate::newDirectMessageFromAccount(const TwitterAccountPtr& account,
    const TwitterUserPtr& user)
{
    PelinorComposeWindowController& controller = _makeComposeController(account);
    if (user)
        controller.setDirectMessageUser(user);
    else
        controller.setPromptToDirectMessageUser(true);
    controller.showWindow();
}

void PelinorAppDelegate::composeWindowDismiss(PelinorComposeWindowController& controller)
{
    const auto found = std::find_if(m_composeControllers.begin(),
        m_composeControllers.end(),
        [&controller](const auto& one) { return one.get() == &controller; });
    if (found == m_composeControllers.end())
        return;
    // It is the controller that tells of this.
    found->release()->deleteLater();
    m_composeControllers.erase(found);
    if (m_composeControllers.empty() && m_mainWindowController
        && m_mainWindowController->window().isVisible())
        m_mainWindowController->showWindow();
}

void PelinorAppDelegate::composeWindowShowTimeline(PelinorComposeWindowController& controller)
{
    if (!m_mainWindowController || !controller.account())
        return;
    for (qsizetype tried = 0; tried < m_twitter.accounts().size()
         && m_mainWindowController->selectedTwitterAccount() != controller.account();
         ++tried)
        m_mainWindowController->selectNextAccount();
    if (controller.isDirectMessage())
        m_mainWindowController->selectDirectMessages();
    else
        m_mainWindowController->selectTimeline();
    m_mainWindowController->showWindow();
    controller.account()->refresh();
}

// Screens

KRViewControllerPtr PelinorAppDelegate::makeStatusDetailsView(const TwitterAccountPtr& account,
    const TwitterStatusPtr& status)
{
    auto screen = std::make_shared<PelinorStatusDetailsViewController>(m_environment);
    screen->setAccount(account);
    screen->setStatus(status);
    return screen;
}

KRViewControllerPtr PelinorAppDelegate::makeUserDetailsView(const TwitterAccountPtr& account,
    const TwitterUserPtr& user,
    const QString& loadUsername)
{
    auto screen = std::make_shared<PelinorUserDetailsViewController>(m_environment);
    screen->setAccount(account);
    screen->setUser(user);
    screen->setLoadUsername(loadUsername);
    return screen;
}

KRViewControllerPtr PelinorAppDelegate::makeSearchView(const TwitterAccountPtr& account,
    const TwitterSearchPtr& search)
{
    auto screen = std::make_shared<PelinorSearchViewController>(m_environment);
    screen->setAccount(account);
    screen->setSearch(search);
    return screen;
}
