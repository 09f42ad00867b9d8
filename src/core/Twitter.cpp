#include "core/Twitter.h"

#include "api/TwitterSearchAPI.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterStatusStreamFilter.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr char accountsKey[] = "accounts";

TwitterEnvironment& sharedEnvironment()
{
    static TwitterEnvironment environment;
    return environment;
}

} // namespace

Twitter::Twitter(TwitterEnvironment environment)
    : m_environment(std::move(environment))
    , m_tables(std::make_shared<TwitterUniquingTables>())
{
    if (!m_environment.defaults)
        m_environment.defaults = &KRUserDefaults::standardUserDefaults();
    if (!m_environment.hosts)
        m_environment.hosts = TwitterServiceHosts::hostsWithDefaults(*m_environment.defaults).value();
    ReadFilterTerms(*m_environment.defaults);
    _loadAccounts();
    m_changeObservation
        = KRNotificationCenter::defaultCenter().observe<TwitterAccountArchiveDidChangeNotification>(
            [this](const auto& notification) { _accountDidChange(notification.object); });
    if (!m_environment.runsHeartbeat)
        return;
    KRRunLoop& loop = KRRunLoop::main();
    m_heartbeatTimer
        = loop.scheduleTimer(heartbeatInterval, KRRunLoop::Repeats::Yes, [this] { heartbeat(); });
    m_firstHeartbeat
        = loop.scheduleTimer(firstHeartbeatDelay, KRRunLoop::Repeats::No, [this] { heartbeat(); });
}

Twitter::~Twitter()
{
    dissociateWeakProxy(this);
}

Twitter& Twitter::sharedTwitter()
{
    // Never released: whatever still runs when the process ends may ask for a record.
    static auto* shared = new std::shared_ptr<Twitter>(std::make_shared<Twitter>(sharedEnvironment()));
    return **shared;
}

void Twitter::setSharedEnvironment(TwitterEnvironment environment)
{
    sharedEnvironment() = std::move(environment);
}

TwitterAccountContext Twitter::accountContext() const
{
    return { m_tables, *m_environment.hosts };
}

TwitterAccountContext Twitter::_contextForSite(const TwitterSite& site)
{
    const QString server = site.hosts.server();
    if (server == m_environment.hosts->server())
        return { m_tables, site.hosts, site };
    std::shared_ptr<TwitterUniquingTables>& tables = m_otherTables[server];
    if (!tables)
        tables = std::make_shared<TwitterUniquingTables>();
    return { tables, site.hosts, site, true };
}

TwitterAccountContext Twitter::accountContextForSite(const TwitterSite& site)
{
    if (m_environment.hosts->server().isEmpty()) {
        m_environment.hosts = site.hosts;
        for (const QString& key : site.hosts.keys())
            m_environment.defaults->setString(QLatin1String(TwitterServiceHosts::group) + u'/' + key,
                site.hosts.valueForKey(key));
    }
    return _contextForSite(site);
}

void Twitter::trustCertificate(const KRServerCertificate& certificate)
{
    _setFingerprintOfServer(certificate.server, certificate.fingerprint);
}

void Twitter::stopTrustingCertificateOfServer(const QString& server)
{
    _setFingerprintOfServer(server, {});
}

void Twitter::_setFingerprintOfServer(const QString& server, const QString& fingerprint)
{
    // A copy: whoever hears of it may change the list.
    const QList<TwitterAccountPtr> accounts = m_accounts;
    for (const TwitterAccountPtr& account : accounts) {
        QList<KRServerCertificate> certificates = account->certificates();
        certificates.removeIf([&server](const KRServerCertificate& one) { return one.server == server; });
        if (!fingerprint.isEmpty() && account->context().hosts.protectedServers().contains(server))
            certificates.append({ server, fingerprint });
        account->setCertificates(certificates);
    }
    restoreTrustInServer(server);
}

void Twitter::restoreTrustInServer(const QString& server)
{
    for (const TwitterAccountPtr& account : std::as_const(m_accounts)) {
        for (const KRServerCertificate& certificate : account->certificates()) {
            if (certificate.server == server) {
                KRTrustedCertificates::trust(certificate);
                return;
            }
        }
    }
    KRTrustedCertificates::stopTrusting(server);
}

QStringList Twitter::servers() const
{
    QStringList servers { m_environment.hosts->server() };
    for (const TwitterAccountPtr& account : m_accounts)
        servers.append(account->context().hosts.server());
    servers.removeAll(QString());
    servers.removeDuplicates();
    return servers;
}

void Twitter::_loadAccounts()
{
    const QByteArray data = m_environment.defaults->dataForKey(accountsKey);
    if (data.isEmpty())
        return;
    const KRResult<KRKeyedUnarchiver> coder = KRKeyedUnarchiver::unarchiverWithData(data);
    if (coder.isError()) {
        KRLog(u"Error: the account list cannot be read: %1"_s.arg(coder.error().description));
        m_environment.defaults->setAsideUnreadableData(QLatin1String(accountsKey));
        return;
    }
    for (const KRKeyedUnarchiver& account : coder.value().decodeObjects("accounts"_L1)) {
        const std::optional<TwitterSite> site = TwitterAccount::siteWithCoder(account);
        // Before the first request.
        for (const KRServerCertificate& certificate :
            site ? site->certificates : QList<KRServerCertificate>())
            KRTrustedCertificates::trust(certificate);
        TwitterAccountContext context
            = site && !m_environment.hostsAreForAll ? _contextForSite(*site) : accountContext();
        if (m_environment.hostsAreForAll)
            context.replacedSite = site;
        m_accounts.append(TwitterAccount::accountWithCoder(account, std::move(context)));
    }
}

void Twitter::_saveAccounts()
{
    KRKeyedArchiver archiver;
    archiver.encodeObjects("accounts"_L1, m_accounts);
    _write(archiver);
    KRNotificationCenter::defaultCenter().post(TwitterAccountsDidChangeNotification());
}

void Twitter::_saveChanges()
{
    struct Changes {
        TwitterAccountPtr account;
        void encodeWithCoder(KRKeyedArchiver& coder) const { account->encodeChangesWithCoder(coder); }
    };
    std::vector<std::unique_ptr<Changes>> changes;
    for (const TwitterAccountPtr& account : std::as_const(m_accounts))
        changes.push_back(std::make_unique<Changes>(Changes { account }));
    KRKeyedArchiver archiver;
    archiver.encodeObjects("accounts"_L1, changes);
    _write(archiver);
}

void Twitter::_write(const KRKeyedArchiver& archiver)
{
    m_isSavePending = false;
    m_environment.defaults->setData(accountsKey, archiver.archivedData());
    const KRResult<void> written = m_environment.defaults->synchronize();
    if (written.isError())
        KRLog(u"Error: the account list is not saved: %1"_s.arg(written.error().description));
}

void Twitter::_accountDidChange(const TwitterAccount* account)
{
    const auto isIt = [account](const TwitterAccountPtr& one) { return one.get() == account; };
    if (m_isSavePending || std::none_of(m_accounts.begin(), m_accounts.end(), isIt))
        return;
    m_isSavePending = true;
    m_saveTimer = KRRunLoop::main().scheduleTimer(saveDelay, KRRunLoop::Repeats::No, [this] {
        if (m_isSavePending)
            _saveChanges();
    });
}

void Twitter::addAccount(const TwitterAccountPtr& account)
{
    const TwitterAccountPtr added = account;
    m_accounts.append(added);
    // Those who are signed in there already trust it, too.
    for (const KRServerCertificate& certificate : added->certificates())
        trustCertificate(certificate);
    _saveAccounts();
    if (m_accounts.contains(added))
        added->refresh();
}

void Twitter::removeAccount(const TwitterAccountPtr& account)
{
    // Kept: the argument may be an element of the list.
    const TwitterAccountPtr removed = account;
    m_accounts.removeIf([&removed](const TwitterAccountPtr& one) { return one->isEqual(*removed); });
    for (const KRServerCertificate& certificate : removed->certificates())
        restoreTrustInServer(certificate.server);
    _saveAccounts();
}

bool Twitter::containsAccount(const TwitterAccountPtr& account) const
{
    return std::any_of(m_accounts.begin(), m_accounts.end(), [&account](const TwitterAccountPtr& one) {
        return one->isEqual(*account);
    });
}

void Twitter::reorderAccountFromIndex(qsizetype from, qsizetype to)
{
    const qsizetype destination = to > from ? to - 1 : to;
    const auto isOutside = [this](qsizetype index) { return index < 0 || index >= m_accounts.size(); };
    if (destination == from || isOutside(from) || isOutside(destination))
        return;
    m_accounts.move(from, destination);
    _saveAccounts();
}

void Twitter::markAllAsRead()
{
    // A copy: whoever hears of it may change the list.
    const QList<TwitterAccountPtr> accounts = m_accounts;
    for (const TwitterAccountPtr& account : accounts)
        account->markAllAsRead();
}

bool Twitter::hasFreshAnythingApplicableToDockBadge() const
{
    return std::any_of(m_accounts.begin(), m_accounts.end(), [](const TwitterAccountPtr& account) {
        return account->hasFreshAnythingApplicableToDockBadge();
    });
}

bool Twitter::hasFreshAnythingApplicableToStatusItem() const
{
    return std::any_of(m_accounts.begin(), m_accounts.end(), [](const TwitterAccountPtr& account) {
        return account->hasFreshAnythingApplicableToStatusItem();
    });
}

void Twitter::refresh()
{
    KRClock::Duration delay { 0 };
    for (const TwitterAccountPtr& account : std::as_const(m_accounts)) {
        const auto refreshOne = [root = weak_from_this(), account = std::weak_ptr(account)] {
            const std::shared_ptr<Twitter> twitter = root.lock();
            const TwitterAccountPtr one = account.lock();
            // Removed meanwhile, it has nothing left to ask for, whoever else keeps it.
            if (twitter && one && twitter->m_accounts.contains(one))
                one->refresh();
        };
        KRRunLoop::main().performAfterDelay(delay, refreshOne);
        delay += accountRefreshStep;
    }
}

void Twitter::heartbeat()
{
    refresh();
    KRNotificationCenter::defaultCenter().post(TwitterHeartbeatNotification());
}

void Twitter::shutdown()
{
    _saveAccounts();
}

TwitterUserPtr Twitter::cachedUserWithID(const QString& userID) const
{
    return m_tables->cachedUserWithID(userID);
}

TwitterUserPtr Twitter::cachedUserWithUsername(const QString& username) const
{
    return m_tables->cachedUserWithUsername(username);
}

TwitterStatusPtr Twitter::cachedStatusWithID(const QString& statusID) const
{
    return m_tables->cachedStatusWithID(statusID);
}

TwitterDirectMessagePtr Twitter::cachedDirectMessageWithID(const QString& messageID) const
{
    return m_tables->cachedDirectMessageWithID(messageID);
}

TwitterUserPtr Twitter::definitiveUser(const TwitterUserPtr& user)
{
    return m_tables->definitiveUser(user);
}

TwitterStatusPtr Twitter::definitiveStatus(const TwitterStatusPtr& status)
{
    return m_tables->definitiveStatus(status);
}

TwitterDirectMessagePtr Twitter::definitiveMessage(const TwitterDirectMessagePtr& message)
{
    return m_tables->definitiveMessage(message);
}

TwitterUserList Twitter::definitiveUsers(const TwitterUserList& users)
{
    return m_tables->definitiveUsers(users);
}

TwitterStatusList Twitter::definitiveStatuses(const TwitterStatusList& statuses)
{
    return m_tables->definitiveStatuses(statuses);
}

TwitterDirectMessageList Twitter::definitiveDirectMessages(const TwitterDirectMessageList& messages)
{
    return m_tables->definitiveDirectMessages(messages);
}

TwitterUserList Twitter::cachedUsers() const
{
    TwitterUserList users = m_tables->cachedUsers();
    for (const auto& tables : m_otherTables)
        users += tables->cachedUsers();
    return users;
}

TwitterUserList Twitter::usersStartingWith(const QString& prefix) const
{
    return m_tables->usersStartingWith(prefix);
}

QStringList Twitter::trends()
{
    if (!m_trends)
        updateTrends();
    return m_trends.value_or(QStringList());
}

void Twitter::updateTrends()
{
    if (m_loadingTrends)
        return;
    m_loadingTrends = true;
    // Weak: the root object does not outlive its owner for the sake of trends.
    TwitterSearchAPI::request(*m_environment.hosts,
        Callback(weakMainThreadProxy(shared_from_this()), &Twitter::trendsResponse))
        ->trends();
}

void Twitter::trendsResponse(const KRResult<QStringList>& response)
{
    m_loadingTrends = false;
    if (response.isError()) {
        KRNotificationCenter::defaultCenter().post(
            TwitterTrendsDidFailNotification { this, response.error() });
        return;
    }
    m_trends = response.value();
    KRNotificationCenter::defaultCenter().post(TwitterTrendsDidUpdateNotification { this });
}
