#pragma once

#include "core/TwitterAccount.h"
#include "foundation/KRRunLoop.h"

#include <QList>

class KRUserDefaults;
class Twitter;

// All of these are posted on the main thread.

/// After every heartbeat's refresh.
struct TwitterHeartbeatNotification {
    static constexpr char name[] = "TwitterHeartbeatNotification";
};
/// After every save of the account list.
struct TwitterAccountsDidChangeNotification {
    static constexpr char name[] = "TwitterAccountsDidChangeNotification";
};

/// New trends are there.
struct TwitterTrendsDidUpdateNotification {
    static constexpr char name[] = "TwitterTrendsDidUpdateNotification";
    const Twitter* object;
};

/// Trends could not be loaded; the old ones are still there.
struct TwitterTrendsDidFailNotification {
    static constexpr char name[] = "TwitterTrendsDidFailNotification";
    const Twitter* object;
    KRError error;
};

/// What the root object works with.
struct TwitterEnvironment {
    KRUserDefaults* defaults = nullptr;
    /// Without a table, the one of the defaults.
    std::optional<TwitterServiceHosts> hosts;
    /// A command that runs for seconds wants no heartbeat.
    bool runsHeartbeat = true;
    /// Whether the hosts are those of every account, whatever site it signed in to: the user named them at
    /// the start.
    bool hostsAreForAll = false;
};

/// The root of the model: the accounts, the one record of each thing, the heartbeat and the trends. Main
/// thread only; owned by a std::shared_ptr. What changes inside an account is saved soon afterwards, without
/// TwitterAccountsDidChangeNotification.
class Twitter : public std::enable_shared_from_this<Twitter> {
public:
    static constexpr KRClock::Duration heartbeatInterval = std::chrono::seconds(360);
    /// The first heartbeat comes so long after the start.
    static constexpr KRClock::Duration firstHeartbeatDelay = std::chrono::seconds(3);
    /// Accounts are refreshed so long one after the other.
    static constexpr KRClock::Duration accountRefreshStep = std::chrono::seconds(2);

    /// A change inside an account is saved so long after it, with whatever else has changed by then.
    static constexpr KRClock::Duration saveDelay = std::chrono::seconds(2);

    /// Restores the account list from the defaults and starts the heartbeat.
    explicit Twitter(TwitterEnvironment environment);
    Twitter(const Twitter&) = delete;
    Twitter& operator=(const Twitter&) = delete;
    ~Twitter();

    /// The process-wide instance, made on first use from the shared environment.
    static Twitter& sharedTwitter();
    /// What sharedTwitter() will be made with; without it, the standard defaults and their hosts.
    static void setSharedEnvironment(TwitterEnvironment environment);

    const QList<TwitterAccountPtr>& accounts() const { return m_accounts; }
    /// Appends and saves, then refreshes the account.
    void addAccount(const TwitterAccountPtr& account);
    /// Removes every account of the same name, and saves. Their passwords stay where they are stored, see
    /// TwitterAccount::removePasswordFromKeychain().
    void removeAccount(const TwitterAccountPtr& account);
    [[nodiscard]] bool containsAccount(const TwitterAccountPtr& account) const;
    /// Moves an account to an insertion point counted before the removal. Nothing happens when that is where
    /// it is, or outside of the list.
    void reorderAccountFromIndex(qsizetype from, qsizetype to);
    void markAllAsRead();
    [[nodiscard]] bool hasFreshAnythingApplicableToDockBadge() const;
    [[nodiscard]] bool hasFreshAnythingApplicableToStatusItem() const;

    /// Refreshes the accounts, one after the other.
    void refresh();
    void heartbeat();
    /// Saves; the last thing the program asks for.
    void shutdown();

    [[nodiscard]] TwitterUserPtr cachedUserWithID(const QString& userID) const;
    [[nodiscard]] TwitterUserPtr cachedUserWithUsername(const QString& username) const;
    [[nodiscard]] TwitterStatusPtr cachedStatusWithID(const QString& statusID) const;
    [[nodiscard]] TwitterDirectMessagePtr cachedDirectMessageWithID(const QString& messageID) const;
    TwitterUserPtr definitiveUser(const TwitterUserPtr& user);
    TwitterStatusPtr definitiveStatus(const TwitterStatusPtr& status);
    TwitterDirectMessagePtr definitiveMessage(const TwitterDirectMessagePtr& message);
    TwitterUserList definitiveUsers(const TwitterUserList& users);
    TwitterStatusList definitiveStatuses(const TwitterStatusList& statuses);
    TwitterDirectMessageList definitiveDirectMessages(const TwitterDirectMessageList& messages);
    [[nodiscard]] TwitterUserList cachedUsers() const;
    [[nodiscard]] TwitterUserList usersStartingWith(const QString& prefix) const;

    /// What many write about, as last loaded. While nothing was, each call starts loading.
    QStringList trends();
    /// Starts loading, unless that is under way. TwitterTrendsDidUpdateNotification tells of new trends; a
    /// failure leaves the old ones.
    void updateTrends();

    /// What accounts of the program's own table of hosts are made with.
    [[nodiscard]] TwitterAccountContext accountContext() const;
    /// What accounts of a site are made with. The first site of a program without hosts becomes its own one,
    /// and is kept in the defaults.
    [[nodiscard]] TwitterAccountContext accountContextForSite(const TwitterSite& site);
    /// Trusts a certificate that nobody vouches for, in place of the one before, for every account that signs
    /// in to the server.
    void trustCertificate(const KRServerCertificate& certificate);
    void stopTrustingCertificateOfServer(const QString& server);
    /// The server is trusted as its accounts say, and not without one: takes back a trust that came to
    /// nothing.
    void restoreTrustInServer(const QString& server);
    /// The servers of the accounts, and of the program's own table, each once.
    [[nodiscard]] QStringList servers() const;

private:
    void _loadAccounts();
    void _setFingerprintOfServer(const QString& server, const QString& fingerprint);
    void _saveAccounts();
    void _saveChanges();
    void _write(const KRKeyedArchiver& archiver);
    void _accountDidChange(const TwitterAccount* account);
    void trendsResponse(const KRResult<QStringList>& response);

    TwitterAccountContext _contextForSite(const TwitterSite& site);

    TwitterEnvironment m_environment;
    std::shared_ptr<TwitterUniquingTables> m_tables;
    // Of the other sites, by server.
    QHash<QString, std::shared_ptr<TwitterUniquingTables>> m_otherTables;
    QList<TwitterAccountPtr> m_accounts;
    std::optional<QStringList> m_trends;
    bool m_loadingTrends = false;
    KRTimer m_heartbeatTimer;
    KRTimer m_firstHeartbeat;
    KRTimer m_saveTimer;
    bool m_isSavePending = false;
    KRObservation m_changeObservation;
};
