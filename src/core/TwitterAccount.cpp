#include "core/TwitterAccount.h"

#include "core/EMKeychainProxy.h"
#include "core/KRKeychain.h"
#include "foundation/KRClock.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "foundation/KRMainThreadObject.h"
#include "text/KRArrayAdditions.h"
#include "text/KRDateAdditions.h"
#include "text/KRStringAdditions.h"
#include "text/TwitterAdditions.h"
#include "transport/KRProxy.h"

#include <algorithm>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace {

QString serviceName()
{
    return QString::fromUtf16(TwitterAccount::keychainService);
}

QDateTime dateOr(const QDateTime& date, const QDateTime& fallback)
{
    return date.isValid() ? date : fallback;
}

QDateTime dateOf(const TwitterStatusPtr& status)
{
    return status ? status->date() : QDateTime();
}

/// Nothing is fresh without a mark to compare with.
bool isFresh(const QDateTime& mark, const QDateTime& newest)
{
    return mark.isValid() && newest.isValid() && KRAdditions::isBefore(mark, newest);
}

bool isSameName(const TwitterUserPtr& user, const QString& username)
{
    return user
        && TwitterAdditions::canonicalTwitterUsername(user->username())
        == TwitterAdditions::canonicalTwitterUsername(username);
}

/// Takes passwords out of a locked keyring once it is open.
class LateRemovals {
public:
    static LateRemovals& shared()
    {
        static auto* removals = new LateRemovals;
        return *removals;
    }

    void add(const QString& name) { m_names.insert(name); }
    void forget(const QString& name) { m_names.remove(name); }

private:
    LateRemovals()
        : m_observation(KRNotificationCenter::defaultCenter().observe<KRKeychainDidUnlockNotification>(
            [this](const auto&) { _remove(); }))
    {
    }

    void _remove()
    {
        // Another keyring may hold one of them, and is asked for in turn.
        for (const QString& name : std::exchange(m_names, {})) {
            if (KRKeychain::removePasswordForUsername(name, serviceName()).isError())
                m_names.insert(name);
        }
    }

    QSet<QString> m_names;
    KRObservation m_observation;
};

} // namespace

TwitterAccount::TwitterAccount(QString username, TwitterAccountContext context)
    : m_context(std::move(context))
    , m_username(std::move(username))
    , m_freshTweets(KRNow())
    , m_freshMentions(m_freshTweets)
    , m_freshMessages(m_freshTweets)
    , m_freshSearches(m_freshTweets)
{
    _observeKeychain();
}

TwitterAccount::~TwitterAccount()
{
    dissociateWeakProxy(this);
}

TwitterAccountPtr TwitterAccount::accountWithUsername(const QString& username,
    const QString& password,
    TwitterAccountContext context)
{
    TwitterAccountPtr account = KRAdoptMainThreadObject(new TwitterAccount(username, std::move(context)));
    account->setPassword(password);
    return account;
}

TwitterAccountPtr TwitterAccount::accountWithCoder(const KRKeyedUnarchiver& coder,
    TwitterAccountContext context)
{
    TwitterAccountPtr account
        = KRAdoptMainThreadObject(new TwitterAccount(coder.decodeString("username"_L1), std::move(context)));
    account->m_freshTweets = dateOr(coder.decodeDate("freshTweets"_L1), account->m_freshTweets);
    account->m_freshMentions = dateOr(coder.decodeDate("freshMentions"_L1), account->m_freshMentions);
    account->m_freshMessages = dateOr(coder.decodeDate("freshMessages"_L1), account->m_freshMessages);
    account->m_freshSearches = dateOr(coder.decodeDate("freshSearches"_L1), account->m_freshSearches);
    const TwitterAccountContext& shared = account->m_context;
    for (const KRKeyedUnarchiver& search : coder.decodeObjects("savedSearches"_L1))
        account->addSavedSearch(TwitterSearch::searchWithCoder(search, shared.tables, shared.hosts));
    const auto options = static_cast<quint32>(coder.decodeInteger("notificationOptions"_L1).value_or(0));
    account->m_notificationOptions = options ? options : TwitterAccountDefaultNotificationOptions;
    account->_loadPassword();
    return account;
}

void TwitterAccount::encodeWithCoder(KRKeyedArchiver& coder) const
{
    if (m_password.isNull())
        KRLog(u"Error: no password set for account"_s);
    else if (m_passwordState != Password::Stored && m_passwordState != Password::Withdrawn)
        _savePassword();
    _encodeWithoutPassword(coder);
}

void TwitterAccount::encodeChangesWithCoder(KRKeyedArchiver& coder) const
{
    if (m_passwordState == Password::Given && !m_password.isNull())
        _savePassword();
    _encodeWithoutPassword(coder);
}

void TwitterAccount::_encodeWithoutPassword(KRKeyedArchiver& coder) const
{
    coder.encodeString("username"_L1, m_username);
    coder.encodeDate("freshTweets"_L1, m_freshTweets);
    coder.encodeDate("freshMentions"_L1, m_freshMentions);
    coder.encodeDate("freshMessages"_L1, m_freshMessages);
    coder.encodeDate("freshSearches"_L1, m_freshSearches);
    coder.encodeObjects("savedSearches"_L1, m_savedSearches);
    coder.encodeInteger("notificationOptions"_L1, m_notificationOptions);
    const std::optional<TwitterSite>& site = m_context.site ? m_context.site : m_context.replacedSite;
    if (!site)
        return;
    QStringList hosts;
    for (const QString& key : site->hosts.keys())
        hosts << key << site->hosts.valueForKey(key);
    coder.encodeStrings("siteHosts"_L1, hosts);
    coder.encodeString("siteName"_L1, site->name);
    coder.encodeInteger("siteTakesUploads"_L1, site->takesUploads ? 1 : 0);
    if (site->textLimit)
        coder.encodeInteger("siteTextLimit"_L1, *site->textLimit);
    QStringList certificates;
    for (const KRServerCertificate& certificate : site->certificates)
        certificates << certificate.server << certificate.fingerprint;
    coder.encodeStrings("siteCertificates"_L1, certificates);
}

std::optional<TwitterSite> TwitterAccount::siteWithCoder(const KRKeyedUnarchiver& coder)
{
    const QStringList hosts = coder.decodeStrings("siteHosts"_L1);
    if (hosts.isEmpty())
        return std::nullopt;
    TwitterSite site;
    for (qsizetype key = 0; key + 1 < hosts.size(); key += 2)
        site.hosts.setValueForKey(hosts.at(key + 1), hosts.at(key));
    site.name = coder.decodeString("siteName"_L1);
    site.takesUploads = coder.decodeInteger("siteTakesUploads"_L1).value_or(0) != 0;
    if (const std::optional<qint64> limit = coder.decodeInteger("siteTextLimit"_L1))
        site.textLimit = qint32(*limit);
    const QStringList certificates = coder.decodeStrings("siteCertificates"_L1);
    for (qsizetype server = 0; server + 1 < certificates.size(); server += 2)
        site.certificates.append({ certificates.at(server), certificates.at(server + 1) });
    return site;
}

QList<KRServerCertificate> TwitterAccount::certificates() const
{
    const std::optional<TwitterSite>& site = m_context.site ? m_context.site : m_context.replacedSite;
    return site ? site->certificates : QList<KRServerCertificate>();
}

void TwitterAccount::setCertificates(const QList<KRServerCertificate>& certificates)
{
    if (this->certificates() == certificates)
        return;
    std::optional<TwitterSite>& site
        = m_context.site || !m_context.replacedSite ? m_context.site : m_context.replacedSite;
    if (!site)
        site = TwitterSite { m_context.hosts };
    site->certificates = certificates;
    _postArchiveDidChange();
}

QString TwitterAccount::qualifiedName() const
{
    return m_context.isOtherSite ? u"%1@%2"_s.arg(m_username, m_context.hosts.server()) : m_username;
}

bool TwitterAccount::isNamed(const QString& name) const
{
    return name.compare(m_username, Qt::CaseInsensitive) == 0
        || name.compare(u"%1@%2"_s.arg(m_username, m_context.hosts.server()), Qt::CaseInsensitive) == 0;
}

qint32 TwitterAccount::longestPost() const
{
    const TwitterSite* const site = _ownSite();
    return site ? site->textLimit.value_or(usualLongestPost) : usualLongestPost;
}

bool TwitterAccount::siteTakesUploads() const
{
    const TwitterSite* const site = _ownSite();
    return site && site->takesUploads;
}

const TwitterSite* TwitterAccount::_ownSite() const
{
    const bool isThere = m_context.site && m_context.site->hosts.server() == m_context.hosts.server();
    return isThere ? &*m_context.site : nullptr;
}

void TwitterAccount::setPassword(const QString& password)
{
    m_password = password;
    m_passwordState = Password::Given;
    _postArchiveDidChange();
}

KRResult<void> TwitterAccount::removePasswordFromKeychain()
{
    m_passwordState = Password::Withdrawn;
    KRResult<void> removed = KRKeychain::removePasswordForUsername(qualifiedName(), serviceName());
    if (removed.isError())
        LateRemovals::shared().add(qualifiedName());
    return removed;
}

void TwitterAccount::_loadPassword()
{
    KRError reported;
    const QString password = KRKeychain::passwordForUsername(qualifiedName(), serviceName(), &reported);
    if (!reported.description.isNull())
        KRLog(
            u"Error getting password from keychain for user %1: %2"_s.arg(m_username, reported.description));
    m_password = password;
    m_isPasswordUnanswered = password.isNull() && !EMKeychainProxy::sharedProxy().isAvailable();
}

void TwitterAccount::_savePassword() const
{
    LateRemovals::shared().forget(qualifiedName());
    const bool isRefused = KRKeychain::setPassword(m_password, qualifiedName(), serviceName()).isError();
    m_passwordState = isRefused ? Password::Refused : Password::HandedOver;
    if (isRefused && EMKeychainProxy::sharedProxy().isAvailable())
        KRLog(u"Critical Error: could not store item in keychain. Try repairing your keychain and repairing "
              u"permissions. (Service: \"%1\""_s.arg(serviceName()));
}

void TwitterAccount::_observeKeychain()
{
    m_keychainObservation = KRNotificationCenter::defaultCenter().observe<KRKeychainDidUnlockNotification>(
        [this](const KRKeychainDidUnlockNotification&) { _keychainDidUnlock(); });
}

void TwitterAccount::_keychainDidUnlock()
{
    // An account whose login is still being checked, or that nobody keeps, has nothing to store.
    if (m_passwordState == Password::Refused)
        _savePassword();
    if (m_passwordState != Password::Stored || !m_password.isNull())
        return;
    _loadPassword();
    if (!m_password.isNull())
        refresh();
}

bool TwitterAccount::isEqual(const TwitterAccount& other) const
{
    return m_username.toLower() == other.m_username.toLower()
        && m_context.hosts.server() == other.m_context.hosts.server();
}

int TwitterAccount::compare(const TwitterAccount& other) const
{
    return m_username.compare(other.m_username);
}

const std::shared_ptr<TwitterTimelineStream>& TwitterAccount::timelineStream()
{
    if (!m_timelineStream) {
        m_timelineStream = KRMakeMainThreadObject<TwitterTimelineStream>(m_context.tables);
        m_timelineStream->setAccount(shared_from_this());
        m_timelineObservation
            = KRNotificationCenter::defaultCenter().observe<TwitterStreamDidUpdateNotification>(
                [this](const auto&) { somethingDidUpdate(); },
                m_timelineStream.get());
    }
    return m_timelineStream;
}

const std::shared_ptr<TwitterRepliesStream>& TwitterAccount::repliesStream()
{
    if (!m_repliesStream) {
        m_repliesStream = KRMakeMainThreadObject<TwitterRepliesStream>(m_context.tables);
        m_repliesStream->setAccount(shared_from_this());
        m_repliesObservation
            = KRNotificationCenter::defaultCenter().observe<TwitterStreamDidUpdateNotification>(
                [this](const auto&) { somethingDidUpdate(); },
                m_repliesStream.get());
    }
    return m_repliesStream;
}

const std::shared_ptr<TwitterDirectMessagesConversationManager>& TwitterAccount::directMessagesManager()
{
    if (!m_directMessagesManager) {
        m_directMessagesManager
            = KRMakeMainThreadObject<TwitterDirectMessagesConversationManager>(m_context.tables,
                shared_from_this());
        m_messagesObservation = KRNotificationCenter::defaultCenter()
                                    .observe<TwitterDirectMessageConversationManagerDidUpdateNotification>(
                                        [this](const auto&) { somethingDidUpdate(); },
                                        m_directMessagesManager.get());
    }
    return m_directMessagesManager;
}

void TwitterAccount::refresh()
{
    const TwitterAccountPtr self = shared_from_this();
    // A keyring that starts after the program is there by now.
    if (m_isPasswordUnanswered && m_password.isNull() && m_passwordState == Password::Stored)
        _loadPassword();
    timelineStream()->loadNewer();
    repliesStream()->loadNewer();
    directMessagesManager()->refresh();
    KRClock::Duration delay = firstSearchDelay;
    for (const TwitterSearchPtr& search : std::as_const(m_savedSearches)) {
        const auto load = [self = weak_from_this(), search = std::weak_ptr(search)] {
            const TwitterAccountPtr account = self.lock();
            const TwitterSearchPtr one = search.lock();
            if (account && account->m_savedSearches.contains(one))
                one->stream()->loadNewer();
        };
        KRRunLoop::main().performAfterDelay(delay, load);
        delay += searchStep;
    }
}

// --- Saved searches

bool TwitterAccount::containsSavedSearch(const TwitterSearch& search) const
{
    return std::any_of(m_savedSearches.begin(),
        m_savedSearches.end(),
        [&search](const TwitterSearchPtr& one) { return one->isEqual(search); });
}

void TwitterAccount::addSavedSearch(const TwitterSearchPtr& search)
{
    if (containsSavedSearch(*search))
        return;
    if (search->hasStream()) {
        const TwitterSearchStream* stream = search->stream().get();
        m_searchObservations[stream]
            = KRNotificationCenter::defaultCenter().observe<TwitterStreamDidUpdateNotification>(
                [this](const auto&) { somethingDidUpdate(); },
                stream);
    } else {
        KRLog(u"Error: saving search with no stream attached"_s);
    }
    m_savedSearches.append(search);
    _postArchiveDidChange();
}

void TwitterAccount::removeSavedSearch(const TwitterSearchPtr& search)
{
    // Kept: the argument may be an element of the list.
    const TwitterSearchPtr removed = search;
    if (!containsSavedSearch(*removed))
        return;
    if (!removed->hasStream())
        KRLog(u"Error: remove saved search with no stream attached"_s);
    m_savedSearches.removeIf([this, &removed](const TwitterSearchPtr& one) {
        const bool isRemoved = one->isEqual(*removed);
        // The one in the list is observed, which need not be the one that was given.
        if (isRemoved && one->hasStream())
            m_searchObservations.erase(one->stream().get());
        return isRemoved;
    });
    _postArchiveDidChange();
}

void TwitterAccount::renameSavedSearch(const TwitterSearchPtr& search, const QString& name)
{
    if (!m_savedSearches.contains(search))
        return;
    const QString trimmed = name.trimmed();
    search->setDisplayName(trimmed.isEmpty() ? QString() : trimmed);
    _savedSearchesDidChange();
}

void TwitterAccount::moveSavedSearch(const TwitterSearchPtr& search, qsizetype place)
{
    const qsizetype from = m_savedSearches.indexOf(search);
    if (from < 0)
        return;
    m_savedSearches.move(from, std::clamp<qsizetype>(place, 0, m_savedSearches.size() - 1));
    _savedSearchesDidChange();
}

void TwitterAccount::_savedSearchesDidChange()
{
    const TwitterAccountPtr self = shared_from_this();
    _postArchiveDidChange();
    _postDidUpdate();
}

// --- What is unread

void TwitterAccount::setNotificationOptions(quint32 options)
{
    m_notificationOptions = options | TwitterAccountNotificationOptionsSet;
    _postArchiveDidChange();
}

bool TwitterAccount::_has(TwitterAccountNotificationOption option) const
{
    return (m_notificationOptions & option) != 0;
}

void TwitterAccount::_noteFresh(QDateTime& mark, const QDateTime& newest)
{
    const TwitterAccountPtr self = shared_from_this();
    if (std::exchange(mark, newest) != newest)
        _postArchiveDidChange();
    _postDidUpdate();
}

void TwitterAccount::noteFreshTweets()
{
    _noteFresh(m_freshTweets, dateOf(m_timelineStream ? m_timelineStream->newestStatus() : nullptr));
}

void TwitterAccount::noteFreshMentions()
{
    _noteFresh(m_freshMentions, dateOf(m_repliesStream ? m_repliesStream->newestStatus() : nullptr));
}

void TwitterAccount::noteFreshMessages()
{
    _noteFresh(m_freshMessages,
        m_directMessagesManager ? m_directMessagesManager->newestMessageDateNotFromMe() : QDateTime());
}

void TwitterAccount::noteFreshSearches()
{
    _postDidUpdate();
}

void TwitterAccount::markAllAsRead()
{
    const TwitterAccountPtr self = shared_from_this();
    noteFreshTweets();
    noteFreshMentions();
    noteFreshMessages();
    for (const TwitterSearchPtr& search : std::as_const(m_savedSearches))
        search->stream()->noteFreshStatuses();
    noteFreshSearches();
}

bool TwitterAccount::hasFreshTweets() const
{
    return m_timelineStream && isFresh(m_freshTweets, dateOf(m_timelineStream->newestStatusThatIsNotMine()));
}

bool TwitterAccount::hasFreshMentions() const
{
    return m_repliesStream && isFresh(m_freshMentions, dateOf(m_repliesStream->newestStatusThatIsNotMine()));
}

bool TwitterAccount::hasFreshMessages() const
{
    return m_directMessagesManager
        && isFresh(m_freshMessages, m_directMessagesManager->newestMessageDateNotFromMe());
}

bool TwitterAccount::hasFreshSearches() const
{
    return std::any_of(m_savedSearches.begin(), m_savedSearches.end(), [](const TwitterSearchPtr& search) {
        return search->stream()->hasFreshStatuses();
    });
}

bool TwitterAccount::hasFreshAnythingApplicableToStatusItem() const
{
    return (_has(TwitterAccountTimelineStatusItem) && hasFreshTweets())
        || (_has(TwitterAccountMentionsStatusItem) && hasFreshMentions())
        || (_has(TwitterAccountMessagesStatusItem) && hasFreshMessages());
}

bool TwitterAccount::hasFreshAnythingApplicableToDockBadge() const
{
    return (_has(TwitterAccountTimelineDockBadge) && hasFreshTweets())
        || (_has(TwitterAccountMentionsDockBadge) && hasFreshMentions())
        || (_has(TwitterAccountMessagesDockBadge) && hasFreshMessages());
}

void TwitterAccount::_postDidUpdate()
{
    // The observers that come after one that removes the account are told of it too.
    const TwitterAccountPtr self = shared_from_this();
    KRNotificationCenter::defaultCenter().post(TwitterAccountDidUpdateNotification { this });
}

void TwitterAccount::_postArchiveDidChange()
{
    const TwitterAccountPtr self = shared_from_this();
    KRNotificationCenter::defaultCenter().post(TwitterAccountArchiveDidChangeNotification { this });
}

TwitterStatusList TwitterAccount::unNotifiedStatuses(const TwitterStatusList& statuses)
{
    TwitterStatusList chosen;
    for (const TwitterStatusPtr& status : statuses) {
        const TwitterStatus& record = *status;
        if (typeid(record) != typeid(TwitterStatus) || record.didGlobalNotification())
            continue;
        status->setDidGlobalNotification(true);
        chosen.append(status);
    }
    return chosen;
}

TwitterDirectMessageList TwitterAccount::_unNotifiedMessages()
{
    TwitterDirectMessageList chosen;
    for (const TwitterDirectMessageConversationPtr& conversation : directMessagesManager()->conversations()) {
        for (const TwitterDirectMessagePtr& message : conversation->messages()) {
            if (message->didGlobalNotification() || isAuthorOfDirectMessage(*message))
                continue;
            message->setDidGlobalNotification(true);
            chosen.append(message);
        }
    }
    return chosen;
}

void TwitterAccount::somethingDidUpdate()
{
    const TwitterAccountPtr self = shared_from_this();
    KRNotificationCenter& center = KRNotificationCenter::defaultCenter();
    _postDidUpdate();
    if (_has(TwitterAccountTimelineGrowl)) {
        const TwitterStatusList statuses = unNotifiedStatuses(timelineStream()->storedStatuses());
        center.post(TwitterAccountGrowlForNewTimelineStatuses { &statuses, this });
    }
    if (_has(TwitterAccountMentionsGrowl)) {
        const TwitterStatusList statuses = unNotifiedStatuses(repliesStream()->storedStatuses());
        center.post(TwitterAccountGrowlForNewMentionStatuses { &statuses, this });
    }
    if (_has(TwitterAccountMessagesGrowl)) {
        const TwitterDirectMessageList messages = _unNotifiedMessages();
        center.post(TwitterAccountGrowlForNewMessages { &messages, this });
    }
}

bool TwitterAccount::isAuthorOfStatus(const TwitterStatus& status) const
{
    return isSameName(status.fromUser(), m_username);
}

bool TwitterAccount::isAuthorOfDirectMessage(const TwitterDirectMessage& message) const
{
    return isSameName(message.sender(), m_username);
}

bool TwitterAccount::isMentionedInStatus(const TwitterStatus& status) const
{
    return KRAdditions::containsSubstring(status.text().toLower(), QString(u'@' + m_username.toLower()));
}
