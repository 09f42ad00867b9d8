#pragma once

#include "app/PelinorDisplayPreferences.h"
#include "app/PelinorListAccount.h"
#include "app/PelinorMainWindow.h"
#include "core/Twitter.h"
#include "text/render/KRTextHeightCache.h"

#include <memory>

/// A main window's account.
class PelinorTwitterAccount final : public PelinorListAccount {
public:
    explicit PelinorTwitterAccount(TwitterAccountPtr account)
        : m_account(std::move(account))
    {
    }

    QString username() const override { return m_account->username(); }
    bool isAuthorOfStatus(const TwitterStatus& status) const override { return m_account->isAuthorOfStatus(status); }
    std::shared_ptr<TwitterConcreteStatusesStream> timelineStream() override { return m_account->timelineStream(); }
    void noteFreshTweets() override { m_account->noteFreshTweets(); }

private:
    TwitterAccountPtr m_account;
};

/// Puts the program together: owns what lives as long as it, opens the window, and saves at the end. Main thread.
class PelinorApplicationDelegate {
public:
    /// The root object outlives the delegate.
    PelinorApplicationDelegate(Twitter& twitter, KRUserDefaults& defaults);
    PelinorApplicationDelegate(const PelinorApplicationDelegate&) = delete;
    PelinorApplicationDelegate& operator=(const PelinorApplicationDelegate&) = delete;
    ~PelinorApplicationDelegate();

    /// Opens the window of the account. With a picture file, the window is saved there once its list and avatars have
    /// come; `finished` is called then.
    void applicationDidFinishLaunching(const TwitterAccountPtr& account);
    void takeScreenshot(const QString& file, std::function<void(bool isWritten)> finished);
    void applicationWillTerminate();

private:
    [[nodiscard]] bool _isFilled() const;
    void _saveScreenshot();

    Twitter& m_twitter;
    KRUserDefaults& m_defaults;
    PelinorDisplayPreferences m_displayPreferences;
    KRTextHeightCache m_heights;
    std::unique_ptr<PelinorTwitterAccount> m_account;
    std::unique_ptr<PelinorMainWindow> m_window;
    QString m_screenshotFile;
    std::function<void(bool)> m_screenshotFinished;
    KRTimer m_screenshotTimer;
    KRObservation m_networkObservation;
    KRObservation m_keychainObservation;
};
