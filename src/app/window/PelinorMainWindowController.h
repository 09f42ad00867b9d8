#pragma once

#include "app/links/PelinorScreens.h"
#include "app/messages/PelinorOutbox.h"
#include "app/window/PelinorAccountTabsView.h"
#include "toolkit/navigation/KRNavigationBar.h"
#include "toolkit/navigation/KRViewControllerSwitcher.h"

#include <QMainWindow>

class PelinorGoToUserPanel;
class PelinorStatusListViewController;
class PelinorStatusStrip;
class PelinorWindowStatus;
class Twitter;

/// The one window for all accounts: the column of accounts and their tabs at the left, the selected tab's
/// screens, and a strip at the bottom that says what is loading and what went wrong. Main thread.
class PelinorMainWindowController : public QObject, private PelinorAccountTabsViewDelegate {
    Q_OBJECT

public:
    enum Tab : int { TimelineTab, RepliesTab, DirectMessagesTab, SearchesTab, ProfileTab };

    /// Makes the window, with what was selected when it was last closed. What is passed outlives it; the
    /// store keeps what is written in conversations.
    PelinorMainWindowController(const PelinorScreenEnvironment& environment,
        Twitter& twitter,
        std::shared_ptr<PelinorDraftStore> draftStore = PelinorDraftStore::userStore());
    ~PelinorMainWindowController() override;

    QMainWindow& window();
    void showWindow();
    PelinorAccountTabsView& sideTabs() { return *m_sideTabs; }
    PelinorStatusStrip& statusStrip() { return *m_statusStrip; }
    KRViewControllerSwitcher& switcher() { return m_switcher; }

    /// Where screens are, in the content view.
    [[nodiscard]] QRect mainViewRect() const;
    /// Null without accounts.
    [[nodiscard]] TwitterAccountPtr selectedTwitterAccount() const { return m_sideTabs->selectedAccount(); }
    /// The screen on top; null before the first one.
    [[nodiscard]] KRViewControllerPtr topViewController() const;
    /// The list of posts that it is, or that a person has in it.
    [[nodiscard]] PelinorStatusListViewController* topList() const;

    /// Asks anew for what the screen on top shows, which may belong to no account's refresh: a person, a
    /// search, a conversation.
    void refresh();

    void accountsDidChange();
    /// Builds the tab's screens anew and shows them. A direction of 1 is for what stands above what was
    /// selected before.
    void selectAccount(const TwitterAccountPtr& account, int tab, bool animated, int direction, bool speedy);

    void selectTimeline() { m_sideTabs->selectAccountTab(TimelineTab); }
    void selectReplies() { m_sideTabs->selectAccountTab(RepliesTab); }
    void selectDirectMessages() { m_sideTabs->selectAccountTab(DirectMessagesTab); }
    void selectSearch() { m_sideTabs->selectAccountTab(SearchesTab); }
    void selectPreviousAccount() { m_sideTabs->selectPreviousAccount(); }
    void selectNextAccount() { m_sideTabs->selectNextAccount(); }
    void myProfile();
    /// Opens the sheet that asks for a name.
    void goToUser();

    /// Keeps the geometry, what is selected, and the reader's place. At the end of the program and when the
    /// window is closed.
    void saveState();

    /// Called once the window has been painted and its first screen is there.
    void setFirstScreenHandler(std::function<void()> handler) { m_firstScreenHandler = std::move(handler); }
    /// Called when somebody wants to sign in where no account is.
    void setAddAccountHandler(std::function<void()> handler) { m_addAccountHandler = std::move(handler); }
    /// Asked when the user closes the window; false keeps it open.
    void setShouldClose(std::function<bool()> shouldClose) { m_shouldClose = std::move(shouldClose); }

private:
    class ContentView;
    class Window;

    void accountTabsSelectAccount(PelinorAccountTabsView& tabs,
        const TwitterAccountPtr& account,
        int direction,
        bool speedy) override;
    void accountTabsSelectTab(PelinorAccountTabsView& tabs, int tag, int direction) override;
    void accountTabsReSelectTab(PelinorAccountTabsView& tabs, int tag) override;
    void accountTabsDoubleClickAccount(PelinorAccountTabsView& tabs,
        const TwitterAccountPtr& account) override;

    void _layOut();
    void _windowWasPainted();
    void _showTexts(bool areShown);
    KRViewControllerPtr _screenWithoutAccount();
    void _restoreState();
    void _statusDidChange();
    void _goToUser(const QString& username);
    void _push(const KRViewControllerPtr& screen);
    KRViewControllerPtr _rootScreen(const TwitterAccountPtr& account, int tab);
    void _showSelection();

    PelinorScreenEnvironment m_environment;
    Twitter& m_twitter;
    PelinorOutbox m_outbox;
    std::unique_ptr<Window> m_window;
    ContentView* m_contentView = nullptr;
    PelinorAccountTabsView* m_sideTabs = nullptr;
    PelinorStatusStrip* m_statusStrip = nullptr;
    PelinorGoToUserPanel* m_goToUserPanel = nullptr;
    KRViewControllerSwitcher m_switcher;
    std::shared_ptr<PelinorWindowStatus> m_status;
    std::function<void()> m_firstScreenHandler;
    std::function<void()> m_addAccountHandler;
    std::function<bool()> m_shouldClose;
    bool m_wasPainted = false;
    bool m_areScreensShown = false;
    KRObservation m_accountsObservation;
};
