#pragma once

#include "core/TwitterAccount.h"

#include <functional>
#include <optional>

/// What is known of one person, and how they stand to an account; loads what is missing. Each part may fail
/// without the others. Main thread; owned by a std::shared_ptr.
class PelinorUserDetails : public std::enable_shared_from_this<PelinorUserDetails> {
public:
    enum class Following {
        Unknown,
        No,
        Yes,
        /// Asked for and not answered yet.
        Changing,
    };

    /// Without a user the one of that name is loaded.
    PelinorUserDetails(TwitterAccountPtr account, TwitterUserPtr user, QString loadUsername);
    PelinorUserDetails(const PelinorUserDetails&) = delete;
    PelinorUserDetails& operator=(const PelinorUserDetails&) = delete;
    ~PelinorUserDetails();

    /// Asks for what is not known yet. Once, and again after a failure.
    void load();
    /// Called after every change; an empty function stops that.
    void setChangeHandler(std::function<void()> handler) { m_didChange = std::move(handler); }

    const TwitterAccountPtr& account() const { return m_account; }
    /// Null until there is a record.
    const TwitterUserPtr& user() const { return m_user; }
    /// The name to go by, also while nothing else is known.
    [[nodiscard]] QString username() const;
    /// Why nobody could be loaded.
    const std::optional<KRError>& error() const { return m_error; }
    /// Why following or unfollowing did not work the last time.
    const std::optional<KRError>& followError() const { return m_followError; }
    /// The account's own user, whom it cannot follow.
    [[nodiscard]] bool isMe() const;
    Following following() const { return m_following; }
    [[nodiscard]] bool followsMe() const { return m_followsMe; }

    /// Follows, or stops. Nothing while the state is not known.
    void toggleFollowing();

private:
    void userResponse(const KRResult<TwitterUserPtr>& response);
    void followingResponse(const KRResult<bool>& response);
    void followsMeResponse(const KRResult<bool>& response);
    void followResponse(const KRResult<TwitterUserPtr>& response, bool follows);
    void _take(const TwitterUserPtr& user);
    void _loadFriendships();
    void _changed();

    TwitterAccountPtr m_account;
    TwitterUserPtr m_user;
    QString m_loadUsername;
    bool m_isLoaded = false;
    std::optional<KRError> m_error;
    std::optional<KRError> m_followError;
    Following m_following = Following::Unknown;
    bool m_followsMe = false;
    KRObservation m_userObservation;
    std::function<void()> m_didChange;
};
