#include "core/TwitterAccount.h"
#include "foundation/KRLog.h"

#include <type_traits>

using namespace Qt::StringLiterals;

namespace {

/// What follows a sent post or message, for as long as the account is there. The answer passes through on the
/// background thread; streams are made, asked and owned on the main one.
template <class Record>
struct FollowUp {
    std::weak_ptr<TwitterAccount> account;
    void (TwitterAccount::*follow)();
    KRCallback<Record> callback;

    void didSend(const KRResult<Record>& response)
    {
        const TwitterAccountPtr alive = account.lock();
        if (alive && !response.isError())
            weakMainThreadProxy(alive).perform(follow);
        callback.invoke(response);
    }
};

template <class Record>
KRCallback<Record> followedUp(FollowUp<Record> parts)
{
    return Callback(std::make_shared<FollowUp<Record>>(std::move(parts)), &FollowUp<Record>::didSend);
}

/// Takes an answer to the main thread.
struct FollowingStatus {
    KRCallback<bool> callback;

    void followingStatus(const KRResult<bool>& response) { callback.invoke(response); }
};

/// One look-up: without credentials first, and with them when that failed and the account is still there.
template <class Record>
class Lookup : public std::enable_shared_from_this<Lookup<Record>> {
public:
    using Ask = void (*)(TwitterAPI::Operations<Record>& request, const QString& key);

    Lookup(const TwitterAccountPtr& account, QString key, Ask ask, KRCallback<Record> callback)
        : m_account(account)
        , m_tables(account->context().tables)
        , m_key(std::move(key))
        , m_ask(ask)
        , m_callback(std::move(callback))
    {
    }

    void begin(TwitterAccount& account)
    {
        m_ask(*account.request(
                  Callback(mainThreadProxy(this->shared_from_this()), &Lookup::unauthenticatedResponse)),
            m_key);
    }

private:
    static constexpr bool isForUsers = std::is_same_v<Record, TwitterUserPtr>;

    void unauthenticatedResponse(const KRResult<Record>& response)
    {
        const TwitterAccountPtr account = m_account.lock();
        if (!response.isError() || !account) {
            _finish(response);
            return;
        }
        if (isForUsers)
            KRLog(u"couldn't load user unathenticated... trying authenticated"_s);
        m_ask(*account->authenticatedRequest(
                  Callback(mainThreadProxy(this->shared_from_this()), &Lookup::authenticatedResponse)),
            m_key);
    }

    void authenticatedResponse(const KRResult<Record>& response)
    {
        if (isForUsers && response.isError())
            KRLog(u"couldn't load user at all..."_s);
        _finish(response);
    }

    void _finish(const KRResult<Record>& response)
    {
        if (response.isError()) {
            m_callback.invoke(response.error());
            return;
        }
        if (!response.value())
            KRLog(u"BAD"_s);
        if constexpr (isForUsers)
            m_callback.invoke(m_tables->definitiveUser(response.value()));
        else
            m_callback.invoke(m_tables->definitiveStatus(response.value()));
    }

    std::weak_ptr<TwitterAccount> m_account;
    std::shared_ptr<TwitterUniquingTables> m_tables;
    QString m_key;
    Ask m_ask;
    KRCallback<Record> m_callback;
};

template <class Record>
void lookUp(const TwitterAccountPtr& account,
    const QString& key,
    typename Lookup<Record>::Ask ask,
    KRCallback<Record> callback)
{
    std::make_shared<Lookup<Record>>(account, key, ask, std::move(callback))->begin(*account);
}

} // namespace

std::shared_ptr<TwitterStatusesOperations> TwitterAccount::authenticatedRequest(
    KRCallback<TwitterStatusList> callback)
{
    return TwitterAPI::authenticatedRequest(m_context.hosts, *this, std::move(callback));
}

std::shared_ptr<TwitterDirectMessagesOperations> TwitterAccount::authenticatedRequest(
    KRCallback<TwitterDirectMessageList> callback)
{
    return TwitterAPI::authenticatedRequest(m_context.hosts, *this, std::move(callback));
}

void TwitterAccount::verifyCredentials(KRCallback<bool> callback)
{
    authenticatedRequest(std::move(callback))->verifyCredentials();
}

void TwitterAccount::update(const QString& text,
    const QString& inReplyToStatusID,
    KRCallback<TwitterStatusPtr> callback)
{
    authenticatedRequest(followedUp<TwitterStatusPtr>(
                             { weak_from_this(), &TwitterAccount::_loadNewerTimeline, std::move(callback) }))
        ->update(text, inReplyToStatusID);
}

void TwitterAccount::_loadNewerTimeline()
{
    timelineStream()->loadNewer();
}

struct TwitterAccount::Destroying {
    TwitterStatusPtr status;
    KRCallback<TwitterStatusPtr> callback;
};

void TwitterAccount::destroyStatus(const TwitterStatusPtr& status, KRCallback<TwitterStatusPtr> callback)
{
    const auto destroying = std::make_shared<Destroying>(Destroying { status, std::move(callback) });
    authenticatedRequest<TwitterStatusPtr>(
        Callback(mainThreadProxy(shared_from_this()), &TwitterAccount::_didDestroy, destroying))
        ->destroyStatus(status->statusID());
}

void TwitterAccount::_didDestroy(const KRResult<TwitterStatusPtr>& response,
    const std::shared_ptr<Destroying>& destroying)
{
    constexpr int gone = 404;
    if (response.isError() && response.error().code != gone) {
        destroying->callback.invoke(response);
        return;
    }
    const TwitterStatusPtr& status = destroying->status;
    timelineStream()->removeStatus(*status);
    repliesStream()->removeStatus(*status);
    KRNotificationCenter::defaultCenter().post(TwitterAccountDidDestroyStatusNotification { this, status });
    destroying->callback.invoke(KRResult<TwitterStatusPtr>(status));
}

void TwitterAccount::sendDirectMessage(const QString& text,
    const TwitterUser& user,
    KRCallback<TwitterDirectMessagePtr> callback)
{
    const auto request = authenticatedRequest(followedUp<TwitterDirectMessagePtr>(
        { weak_from_this(), &TwitterAccount::_refreshMessages, std::move(callback) }));
    if (user.userID().isNull())
        request->sendToUsername(text, user.username());
    else
        request->sendToUserID(text, user.userID());
}

void TwitterAccount::_refreshMessages()
{
    directMessagesManager()->refresh();
}

void TwitterAccount::follow(const TwitterUser& user, KRCallback<TwitterUserPtr> callback)
{
    const auto request = authenticatedRequest(std::move(callback));
    if (user.userID().isNull())
        request->followUsername(user.username());
    else
        request->followUserID(user.userID());
}

void TwitterAccount::stopFollowing(const TwitterUser& user, KRCallback<TwitterUserPtr> callback)
{
    const auto request = authenticatedRequest(std::move(callback));
    if (user.userID().isNull())
        request->unfollowUsername(user.username());
    else
        request->unfollowUserID(user.userID());
}

void TwitterAccount::checkIfUserFollows(const TwitterUser& user,
    const TwitterUser& other,
    KRCallback<bool> callback)
{
    const auto delivery = std::make_shared<FollowingStatus>(FollowingStatus { std::move(callback) });
    const auto request
        = authenticatedRequest(Callback(mainThreadProxy(delivery), &FollowingStatus::followingStatus));
    if (user.userID().isNull() || other.userID().isNull())
        request->usernameFollowsUsername(user.username(), other.username());
    else
        request->userIDFollowsUserID(user.userID(), other.userID());
}

void TwitterAccount::addStatusToFavorites(const TwitterStatusPtr& status)
{
    if (status->statusID().isNull())
        return;
    TwitterAPI::authenticatedRequest(m_context.hosts, *this)->favoriteStatusID(status->statusID());
    m_favoritesSet.insert(status->statusID());
}

bool TwitterAccount::isFavoriteStatus(const TwitterStatus& status) const
{
    return m_favoritesSet.contains(status.statusID());
}

// --- Look-ups

TwitterUserPtr TwitterAccount::cachedUserWithID(const QString& userID) const
{
    return m_context.tables->cachedUserWithID(userID);
}

TwitterUserPtr TwitterAccount::cachedUserWithUsername(const QString& username) const
{
    return m_context.tables->cachedUserWithUsername(username);
}

TwitterStatusPtr TwitterAccount::cachedStatusWithID(const QString& statusID) const
{
    return m_context.tables->cachedStatusWithID(statusID);
}

void TwitterAccount::requestUserWithUsername(const QString& username, KRCallback<TwitterUserPtr> callback)
{
    const auto ask
        = [](TwitterUserOperations& request, const QString& key) { request.userWithUsername(key); };
    lookUp<TwitterUserPtr>(shared_from_this(), username, ask, std::move(callback));
}

void TwitterAccount::requestUserWithID(const QString& userID, KRCallback<TwitterUserPtr> callback)
{
    const auto ask = [](TwitterUserOperations& request, const QString& key) { request.userWithID(key); };
    lookUp<TwitterUserPtr>(shared_from_this(), userID, ask, std::move(callback));
}

void TwitterAccount::requestStatusWithID(const QString& statusID, KRCallback<TwitterStatusPtr> callback)
{
    const auto ask = [](TwitterStatusOperations& request, const QString& key) { request.statusWithID(key); };
    lookUp<TwitterStatusPtr>(shared_from_this(), statusID, ask, std::move(callback));
}

// --- The account's own user

TwitterUserPtr TwitterAccount::user()
{
    if (!m_user && !m_loadingUser) {
        m_loadingUser = true;
        requestUserWithUsername(m_username,
            Callback(weakMainThreadProxy(shared_from_this()), &TwitterAccount::myUserResponse));
    }
    return m_user;
}

void TwitterAccount::myUserResponse(const KRResult<TwitterUserPtr>& response)
{
    m_loadingUser = false;
    if (response.isError()) {
        KRLog(u"Error loading user for account %1"_s.arg(m_username));
        return;
    }
    if (m_user) {
        KRLog(u"hrm, already have a user for account %1"_s.arg(m_username));
        return;
    }
    m_user = m_context.tables->definitiveUser(response.value());
    if (!m_user)
        return;
    m_userObservation = KRNotificationCenter::defaultCenter().observe<TwitterUserDidUpdateNotification>(
        [this](const auto&) { myUserDidUpdate(); },
        m_user.get());
    _postDidUpdate();
}

void TwitterAccount::myUserDidUpdate()
{
    _postDidUpdate();
}
