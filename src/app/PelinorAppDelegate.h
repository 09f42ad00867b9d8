#pragma once

#include "app/PelinorMenuStatusItem.h"
#include "app/links/PelinorScreens.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/settings/PelinorHotKeys.h"
#include "app/writing/PelinorComposeWindowController.h"
#include "core/Twitter.h"
#include "platform/appearance/KRDesktopAppearance.h"
#include "platform/workspace/KRWorkspace.h"
#include "text/render/KRTextHeightCache.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class PelinorAddAccountSheet;
class PelinorLoginWindowController;
class PelinorMainMenu;
class PelinorMainWindowController;
class PelinorPreferencesWindowController;

/// Puts the program together: runs the start-up, owns the windows, makes the screens that rooms ask each
/// other for, and guards what was written when the program ends. Main thread.
class PelinorAppDelegate final : public QObject,
                                 public PelinorScreens,
                                 private PelinorComposeWindowControllerDelegate {
    Q_OBJECT

public:
    /// Both outlive the delegate.
    PelinorAppDelegate(Twitter& twitter, KRUserDefaults& defaults);
    ~PelinorAppDelegate() override;

    /// Opens the main window, or the login where there is no account yet.
    void applicationDidFinishLaunching();
    /// Whether the program may end now. With compose windows open the user is asked.
    [[nodiscard]] bool applicationShouldTerminate();
    /// Saves.
    void applicationWillTerminate();

    /// Null until there is an account.
    PelinorMainWindowController* mainWindowController() const { return m_mainWindowController.get(); }
    /// Null unless the login is open.
    PelinorLoginWindowController* loginWindowController() const { return m_loginWindowController.get(); }
    PelinorPreferencesWindowController& preferencesWindowController();
    /// Every open compose window.
    const std::vector<std::unique_ptr<PelinorComposeWindowController>>& composeControllers() const
    {
        return m_composeControllers;
    }
    Twitter& twitter() { return m_twitter; }
    /// Null before the start.
    const PelinorMenuStatusItem* menuStatusItem() const { return m_menuStatusItem.get(); }

    // What menus ask for.
    void newDocument();
    void newVideoTweet();
    void newDirectMessage();
    void refreshAll() { m_twitter.refresh(); }
    void markAllAsRead();
    void showPreferences();
    void showMainPelinorWindow();
    void showShortcuts();
    void showAbout();
    /// A new tweet from outside the windows: brings the program to the front first.
    void newDocumentFromDock();
    /// Hides every window when the program is the one in use, else brings it to the front.
    void showHidePelinor();
    void statusItemAction();
    /// Does nothing: whether there is a status item is decided at the start.
    void toggleMenuStatusItemVisibility() { }
    /// Ends the program, unless the user wants to see to something first.
    void terminate();

    void newTweetFromAccount(const TwitterAccountPtr& account,
        const TwitterStatusPtr& inReplyToStatus,
        const QString& defaultText,
        const std::optional<QPoint>& replyPointHint) override;
    void newDirectMessageFromAccount(const TwitterAccountPtr& account, const TwitterUserPtr& user) override;
    KRViewControllerPtr makeStatusDetailsView(const TwitterAccountPtr& account,
        const TwitterStatusPtr& status) override;
    KRViewControllerPtr makeUserDetailsView(const TwitterAccountPtr& account,
        const TwitterUserPtr& user,
        const QString& loadUsername) override;
    KRViewControllerPtr makeSearchView(const TwitterAccountPtr& account,
        const TwitterSearchPtr& search) override;

private:
    /// It deletes itself when it is closed.
    static void _openSheet(PelinorAddAccountSheet& sheet);
    /// For one account after the other that has none.
    void _askForPasswords();
    /// Without an account shows where to add one.
    bool _hasAccount();
    void _firstLoginResponse(const TwitterAccountPtr& account);
    void _openMainWindow();
    void _updateMenuStatusItem();
    void _hotKeyWasPressed(PelinorHotKeys::Type type);
    /// Shows what an earlier run was in the middle of.
    void _openLeftDrafts();
    PelinorComposeWindowController& _makeComposeController(const TwitterAccountPtr& account,
        const std::optional<PelinorDraftStore::Stored>& left = std::nullopt);
    void composeWindowDismiss(PelinorComposeWindowController& controller) override;
    void composeWindowShowTimeline(PelinorComposeWindowController& controller) override;
    QWidget* _frontWindow() const;

    Twitter& m_twitter;
    KRUserDefaults& m_defaults;
    PelinorDisplayPreferences m_displayPreferences;
    KRTextHeightCache m_heights;
    KRDesktopWorkspace m_workspace;
    PelinorScreenEnvironment m_environment;
    std::unique_ptr<PelinorMainWindowController> m_mainWindowController;
    std::unique_ptr<PelinorMainMenu> m_mainMenu;
    std::unique_ptr<PelinorLoginWindowController> m_loginWindowController;
    std::unique_ptr<PelinorPreferencesWindowController> m_preferencesWindowController;
    std::shared_ptr<PelinorDraftStore> m_draftStore = PelinorDraftStore::userStore();
    std::vector<std::unique_ptr<PelinorComposeWindowController>> m_composeControllers;
    PelinorHotKeys m_hotKeys;
    std::unique_ptr<PelinorMenuStatusItem> m_menuStatusItem;
    QList<QPointer<QWidget>> m_hiddenWindows;
    QPointer<PelinorAddAccountSheet> m_passwordSheet;
    KRObservation m_accountObservation;
    KRObservation m_keychainObservation;
    KRObservation m_unlockingObservation;
    std::unique_ptr<KRDesktopAppearance> m_desktopAppearance;
    bool m_mayTerminate = false;
};
