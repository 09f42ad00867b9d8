#pragma once

#include "app/links/PelinorBrowserLinkPresenter.h"
#include "app/lists/PelinorListAccount.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/window/PelinorMainWindow.h"
#include "core/Twitter.h"
#include "platform/appearance/KRDesktopMotionSetting.h"
#include "text/render/KRTextHeightCache.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

/// A main window's account.
class PelinorTwitterAccount final : public PelinorListAccount {
public:
    explicit PelinorTwitterAccount(TwitterAccountPtr account)
        : m_account(std::move(account))
    {
    }

    QString username() const override { return m_account->username(); }
    bool isAuthorOfStatus(const TwitterStatus& status) const override
    {
        return m_account->isAuthorOfStatus(status);
    }
    std::shared_ptr<TwitterStream> timelineStream() override { return m_account->timelineStream(); }
    void noteFreshTweets() override { m_account->noteFreshTweets(); }

private:
    TwitterAccountPtr m_account;
};

/// Puts the program together: owns what lives as long as it, opens the window, and saves at the end. Main
/// thread.
class PelinorApplicationDelegate {
public:
    /// The root object outlives the delegate.
    PelinorApplicationDelegate(Twitter& twitter, KRUserDefaults& defaults, TwitterServiceHosts hosts);
    PelinorApplicationDelegate(const PelinorApplicationDelegate&) = delete;
    PelinorApplicationDelegate& operator=(const PelinorApplicationDelegate&) = delete;
    ~PelinorApplicationDelegate();

    /// Opens the account's window.
    void openMainWindow(const TwitterAccountPtr& account);
    /// Saves a picture of the window once its posts and their avatars have come, or after a while without
    /// them; `finished` is told whether the posts are in it.
    void takeScreenshot(const QString& file, std::function<void(bool isFilled)> finished);
    void applicationWillTerminate();

private:
    void _tryScreenshot();

    Twitter& m_twitter;
    KRUserDefaults& m_defaults;
    PelinorDisplayPreferences m_displayPreferences;
    KRTextHeightCache m_heights;
    const TwitterServiceHosts m_hosts;
    KRDesktopWorkspace m_workspace;
    PelinorBrowserLinkPresenter m_linkPresenter;
    const PelinorLinkEnvironment m_links;
    std::unique_ptr<PelinorTwitterAccount> m_account;
    std::unique_ptr<PelinorMainWindow> m_window;
    KRObservation m_keychainObservation;
    std::unique_ptr<KRDesktopMotionSetting> m_motionSetting;

    QString m_screenshotFile;
    std::function<void(bool)> m_screenshotFinished;
    KRTimer m_screenshotTimer;
    int m_screenshotTries = 0;
    int m_quietTries = 0;
    // Set on the threads that requests start and end on.
    std::atomic<bool> m_isNetworkActive = false;
    std::vector<KRObservation> m_networkObservations;
};
