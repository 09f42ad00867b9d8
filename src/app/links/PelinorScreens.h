#pragma once

#include "core/TwitterAccount.h"
#include "toolkit/navigation/KRViewController.h"

#include <QPoint>

#include <optional>

class KRTextHeightCache;
class KRUserDefaults;
class KRWorkspace;
struct PelinorDisplayPreferences;

/// Opens the windows, and makes the screens, that whoever asks for them does not know: each is built in a
/// room of its own. Screens are made for an account and pushed by whoever asked. Main thread.
class PelinorScreens {
public:
    PelinorScreens() = default;
    PelinorScreens(const PelinorScreens&) = delete;
    PelinorScreens& operator=(const PelinorScreens&) = delete;
    virtual ~PelinorScreens() = default;

    /// Opens a window for a new post. Without an account it is the selected one's; it grows out of the point
    /// of the screen, or out of the pointer.
    virtual void newTweetFromAccount(const TwitterAccountPtr& account,
        const TwitterStatusPtr& inReplyToStatus,
        const QString& defaultText,
        const std::optional<QPoint>& replyPointHint)
        = 0;
    /// Opens a window for a message; without a user it asks whom to write to.
    virtual void newDirectMessageFromAccount(const TwitterAccountPtr& account, const TwitterUserPtr& user)
        = 0;

    /// A post, and what it answers.
    virtual KRViewControllerPtr makeStatusDetailsView(const TwitterAccountPtr& account,
        const TwitterStatusPtr& status)
        = 0;
    /// A person, who is loaded by name when there is no record of them.
    virtual KRViewControllerPtr makeUserDetailsView(const TwitterAccountPtr& account,
        const TwitterUserPtr& user,
        const QString& loadUsername)
        = 0;
    virtual KRViewControllerPtr makeSearchView(const TwitterAccountPtr& account,
        const TwitterSearchPtr& search)
        = 0;
};

/// What every screen works with. Outlives the screens.
struct PelinorScreenEnvironment {
    KRUserDefaults& defaults;
    KRNotificationCenter& notifications;
    const PelinorDisplayPreferences& displayPreferences;
    KRTextHeightCache& heights;
    KRWorkspace& workspace;
    PelinorScreens& screens;
};
