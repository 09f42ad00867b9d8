#pragma once

#include "api/TwitterAPI.h"
#include "api/TwitterServiceHosts.h"
#include "api/TwitterSite.h"
#include "core/TwitterAccountNotifications.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterUniquingTables.h"
#include "model/streams/TwitterAccountStream.h"
#include "model/streams/TwitterDirectMessagesConversationManager.h"
#include "model/streams/TwitterSearch.h"

#include <QSet>

#include <map>

class KRKeyedArchiver;
class KRKeyedUnarchiver;
class TwitterAccount;

using TwitterAccountPtr = std::shared_ptr<TwitterAccount>;

/// What drives which indicator: three groups of bits with the same roles. Bit 0 says that a choice was made.
enum TwitterAccountNotificationOption : quint32 {
    TwitterAccountNotificationOptionsSet = 0x1,
    TwitterAccountTimelineStatusItem = 0x2,
    TwitterAccountTimelineDockBadge = 0x4,
    TwitterAccountTimelineGrowl = 0x8,
    TwitterAccountMentionsStatusItem = 0x40,
    TwitterAccountMentionsDockBadge = 0x80,
    TwitterAccountMentionsGrowl = 0x100,
    TwitterAccountMessagesStatusItem = 0x800,
    TwitterAccountMessagesDockBadge = 0x1000,
    TwitterAccountMessagesGrowl = 0x2000,
};

inline constexpr quint32 TwitterAccountDefaultNotificationOptions = TwitterAccountNotificationOptionsSet
    | TwitterAccountTimelineStatusItem | TwitterAccountMentionsStatusItem | TwitterAccountMessagesStatusItem;

/// The account has deleted one of its posts. Posted on the main thread.
struct TwitterAccountDidDestroyStatusNotification {
    static constexpr char name[] = "TwitterAccountDidDestroyStatusNotification";
    const TwitterAccount* object;
    TwitterStatusPtr status;
};

/// What the accounts of one site share.
struct TwitterAccountContext {
    /// Of this site alone: records of two sites may have the same ID.
    std::shared_ptr<TwitterUniquingTables> tables;
    TwitterServiceHosts hosts;
    /// What the site said of itself when the account signed in there; archived with the account. Nothing for
    /// accounts of the program's own table of hosts.
    std::optional<TwitterSite> site = {};
    /// Whether this is another site than that of the program's own table, so that names alone do not tell
    /// its accounts from others.
    bool isOtherSite = false;
    /// The site the account was archived with and will be again, where hosts of the start stand in for it.
    std::optional<TwitterSite> replacedSite = {};
};

/// One signed-in user: credentials, streams, unread marks, and the requests made in the user's name. Main
/// thread; the callbacks of its requests come on the thread that each operation names.
///
/// Whatever it posts, an observer may remove the account: it stays until the operation that posts is through.
/// What it does later, and what follows an answer, holds it weakly, so that a removed account sends nothing
/// more.
class TwitterAccount final : public TwitterStreamAccount,
                             public TwitterCredentials,
                             public std::enable_shared_from_this<TwitterAccount> {
public:
    /// The credential store's name for this program.
    static constexpr char16_t keychainService[] = u"com.kestrin.pelinor-mac";

    static TwitterAccountPtr
    accountWithUsername(const QString& username, const QString& password, TwitterAccountContext context);
    /// Reads the archived account; its password comes from the keychain.
    static TwitterAccountPtr accountWithCoder(const KRKeyedUnarchiver& coder, TwitterAccountContext context);
    ~TwitterAccount() override;

    /// Archives all but the password, which goes to the keychain when it was given in this run.
    void encodeWithCoder(KRKeyedArchiver& coder) const;
    /// The same for the saves in between: a password that was handed to the keychain before is not again.
    void encodeChangesWithCoder(KRKeyedArchiver& coder) const;

    QString username() const override { return m_username; }
    /// Null when it is not known.
    QString password() const override { return m_password; }
    void setPassword(const QString& password);
    /// Takes the stored password out of the keychain; the one in memory stays, and is not stored or read any
    /// more. Where that fails in a locked keyring it is done once that is open, whether the account is still
    /// there or not. Removing an account from the list leaves its password stored: whoever removes it decides.
    KRResult<void> removePasswordFromKeychain();

    /// The name, and on another site than the program's own its server behind an "@": tells the account from
    /// all others, wherever accounts are listed and what they keep is stored.
    [[nodiscard]] QString qualifiedName() const;
    /// Whether people mean this account by a name, which may have its server behind an "@".
    [[nodiscard]] bool isNamed(const QString& name) const;
    /// The longest post in UTF-16 units; 0 when there is no limit.
    [[nodiscard]] qint32 longestPost() const;
    /// Whether the account's site takes pictures itself.
    [[nodiscard]] bool siteTakesUploads() const;
    /// What sites take that do not say.
    static constexpr qint32 usualLongestPost = 140;
    /// The certificates of the account's servers that are trusted although nobody vouches for them.
    [[nodiscard]] QList<KRServerCertificate> certificates() const;
    /// Changes what is archived; Twitter tells the transport.
    void setCertificates(const QList<KRServerCertificate>& certificates);
    /// The site an account was archived with, if it was with one.
    [[nodiscard]] static std::optional<TwitterSite> siteWithCoder(const KRKeyedUnarchiver& coder);

    /// The same name on the same site.
    [[nodiscard]] bool isEqual(const TwitterAccount& other) const;
    [[nodiscard]] int compare(const TwitterAccount& other) const;

    /// The account's own record; null until it has been loaded, which the first call starts.
    TwitterUserPtr user();
    /// Made on first demand.
    const std::shared_ptr<TwitterTimelineStream>& timelineStream();
    const std::shared_ptr<TwitterRepliesStream>& repliesStream();
    const std::shared_ptr<TwitterDirectMessagesConversationManager>& directMessagesManager();

    [[nodiscard]] const QList<TwitterSearchPtr>& savedSearches() const { return m_savedSearches; }
    [[nodiscard]] bool containsSavedSearch(const TwitterSearch& search) const;
    /// Adding what is there and removing what is not does nothing. The account hears of what a search's
    /// stream brings if the stream has been made by then.
    void addSavedSearch(const TwitterSearchPtr& search);
    void removeSavedSearch(const TwitterSearchPtr& search);
    /// The search goes by its query again with an empty name. Nothing for one that is not in the list.
    void renameSavedSearch(const TwitterSearchPtr& search, const QString& name);
    /// To the place among the others, counted without it.
    void moveSavedSearch(const TwitterSearchPtr& search, qsizetype place);

    /// So long after the rest the first saved search is loaded, and each further one a step later.
    static constexpr KRClock::Duration firstSearchDelay = std::chrono::seconds(3);
    static constexpr KRClock::Duration searchStep = std::chrono::seconds(1);
    void refresh();

    [[nodiscard]] quint32 notificationOptions() const { return m_notificationOptions; }
    void setNotificationOptions(quint32 options);

    /// Mark what has come so far as seen.
    void noteFreshTweets();
    void noteFreshMentions();
    void noteFreshMessages();
    /// Up to when messages count as seen; invalid while there were none.
    [[nodiscard]] const QDateTime& freshMessages() const { return m_freshMessages; }
    /// Each search's stream keeps its own mark; this only announces that they may have moved.
    void noteFreshSearches();
    void markAllAsRead();
    [[nodiscard]] bool hasFreshTweets() const;
    [[nodiscard]] bool hasFreshMentions() const;
    [[nodiscard]] bool hasFreshMessages() const;
    [[nodiscard]] bool hasFreshSearches() const;
    [[nodiscard]] bool hasFreshAnythingApplicableToStatusItem() const;
    [[nodiscard]] bool hasFreshAnythingApplicableToDockBadge() const;

    [[nodiscard]] bool isAuthorOfStatus(const TwitterStatus& status) const override;
    [[nodiscard]] bool isAuthorOfDirectMessage(const TwitterDirectMessage& message) const override;
    /// Whether the text holds "@" and the name, also as the beginning of a longer one.
    [[nodiscard]] bool isMentionedInStatus(const TwitterStatus& status) const;

    /// A request without credentials, to be sent one operation.
    template <class Result>
    [[nodiscard]] auto request(KRCallback<Result> callback)
    {
        return TwitterAPI::request(m_context.hosts, std::move(callback));
    }
    /// A request with this account's credentials.
    template <class Result>
    [[nodiscard]] auto authenticatedRequest(KRCallback<Result> callback)
    {
        return TwitterAPI::authenticatedRequest(m_context.hosts, *this, std::move(callback));
    }
    [[nodiscard]] std::shared_ptr<TwitterStatusesOperations> authenticatedRequest(
        KRCallback<TwitterStatusList> callback) override;
    [[nodiscard]] std::shared_ptr<TwitterDirectMessagesOperations> authenticatedRequest(
        KRCallback<TwitterDirectMessageList> callback) override;

    void verifyCredentials(KRCallback<bool> callback);
    /// Posts. The timeline loads what is new when that worked. The callback is invoked on the background
    /// thread.
    void update(const QString& text, const QString& inReplyToStatusID, KRCallback<TwitterStatusPtr> callback);
    /// Deletes one of the account's own posts, which is gone from its streams before the callback is invoked,
    /// on the main thread. One that the service no longer has is as good as deleted.
    void destroyStatus(const TwitterStatusPtr& status, KRCallback<TwitterStatusPtr> callback);
    /// Sends a message. Both lists load what is new when that worked. The callback is invoked on the
    /// background thread.
    void sendDirectMessage(const QString& text,
        const TwitterUser& user,
        KRCallback<TwitterDirectMessagePtr> callback);
    /// Somebody without an ID, as people from search results are, is named by screen name here and below. The
    /// callbacks of these two are invoked on the background thread.
    void follow(const TwitterUser& user, KRCallback<TwitterUserPtr> callback);
    void stopFollowing(const TwitterUser& user, KRCallback<TwitterUserPtr> callback);
    /// The callback is invoked on the main thread.
    void checkIfUserFollows(const TwitterUser& user, const TwitterUser& other, KRCallback<bool> callback);
    /// Counts as a favourite at once; a failure is not undone. Nothing happens without an ID.
    void addStatusToFavorites(const TwitterStatusPtr& status);
    [[nodiscard]] bool isFavoriteStatus(const TwitterStatus& status) const;

    [[nodiscard]] TwitterUserPtr cachedUserWithID(const QString& userID) const;
    [[nodiscard]] TwitterUserPtr cachedUserWithUsername(const QString& username) const;
    [[nodiscard]] TwitterStatusPtr cachedStatusWithID(const QString& statusID) const override;

    /// Look-ups ask without credentials first, and with them when that failed. The callbacks are invoked on
    /// the main thread, with the definitive record.
    void requestUserWithUsername(const QString& username, KRCallback<TwitterUserPtr> callback);
    void requestUserWithID(const QString& userID, KRCallback<TwitterUserPtr> callback);
    void requestStatusWithID(const QString& statusID, KRCallback<TwitterStatusPtr> callback) override;

    [[nodiscard]] const TwitterAccountContext& context() const { return m_context; }

private:
    enum class Password {
        /// From the keychain, or none.
        Stored,
        /// Given in this run, and not yet handed to the keychain.
        Given,
        /// Handed to it in this run, as every further archive will.
        HandedOver,
        /// The keychain did not take it.
        Refused,
        /// Taken out again, for an account that is none any more.
        Withdrawn,
    };

    TwitterAccount(QString username, TwitterAccountContext context);
    void _observeKeychain();
    void _keychainDidUnlock();
    void _loadPassword();
    void _savePassword() const;
    void _encodeWithoutPassword(KRKeyedArchiver& coder) const;
    void _savedSearchesDidChange();
    void _noteFresh(QDateTime& mark, const QDateTime& newest);
    void _postArchiveDidChange();
    /// Nothing while hosts of the start stand in for it.
    [[nodiscard]] const TwitterSite* _ownSite() const;

    void somethingDidUpdate();
    [[nodiscard]] static TwitterStatusList unNotifiedStatuses(const TwitterStatusList& statuses);
    [[nodiscard]] TwitterDirectMessageList _unNotifiedMessages();
    void _postDidUpdate();
    [[nodiscard]] bool _has(TwitterAccountNotificationOption option) const;

    void myUserResponse(const KRResult<TwitterUserPtr>& response);
    void myUserDidUpdate();
    void _loadNewerTimeline();
    void _refreshMessages();
    struct Destroying;
    void _didDestroy(const KRResult<TwitterStatusPtr>& response,
        const std::shared_ptr<Destroying>& destroying);

    TwitterAccountContext m_context;
    QString m_username;
    QString m_password;
    // Archiving, which changes nothing else, hands it over.
    mutable Password m_passwordState = Password::Stored;
    // Nobody was there to say what it is.
    bool m_isPasswordUnanswered = false;
    TwitterUserPtr m_user;
    bool m_loadingUser = false;
    std::shared_ptr<TwitterTimelineStream> m_timelineStream;
    std::shared_ptr<TwitterRepliesStream> m_repliesStream;
    std::shared_ptr<TwitterDirectMessagesConversationManager> m_directMessagesManager;
    QList<TwitterSearchPtr> m_savedSearches;
    // Status IDs; the records themselves are kept by the uniquing tables.
    QSet<QString> m_favoritesSet;
    quint32 m_notificationOptions = TwitterAccountDefaultNotificationOptions;
    QDateTime m_freshTweets;
    QDateTime m_freshMentions;
    QDateTime m_freshMessages;
    QDateTime m_freshSearches;

    KRObservation m_timelineObservation;
    KRObservation m_repliesObservation;
    KRObservation m_messagesObservation;
    std::map<const TwitterSearchStream*, KRObservation> m_searchObservations;
    KRObservation m_userObservation;
    KRObservation m_keychainObservation;
};
