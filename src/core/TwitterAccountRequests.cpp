#include "core/TwitterAccount.h"
#include "foundation/KRLog.h"

using namespace Qt::StringLiterals;

std::shared_ptr<TwitterStatusesOperations> TwitterAccount::authenticatedRequest(
    KRCallback<TwitterStatusList> callback)
{
    return accountRequest(std::move(callback));
}

std::shared_ptr<TwitterDirectMessagesOperations> TwitterAccount::authenticatedRequest(
    KRCallback<TwitterDirectMessageList> callback)
{
    return accountRequest(std::move(callback));
}

void TwitterAccount::verifyCredentials(KRCallback<bool> callback)
{
    accountRequest(std::move(callback))->verifyCredentials();
}

void TwitterAccount::update(const QString& text,
    const QString& inReplyToStatusID,
    KRCallback<TwitterStatusPtr> callback)
{
    accountRequest(Callback(shared_from_this(), &TwitterAccount::didUpdate, std::move(callback)))
        ->update(text, inReplyToStatusID);
}

void TwitterAccount::didUpdate(const KRResult<TwitterStatusPtr>& response,
    const KRCallback<TwitterStatusPtr>& callback)
{
    // On the background thread: the stream is made, asked and owned on the main one.
    if (!response.isError())
        mainThreadProxy(shared_from_this()).perform(&TwitterAccount::_loadNewerTimeline);
    callback.invoke(response);
}

void TwitterAccount::_loadNewerTimeline()
{
    timelineStream()->loadNewer();
}

void TwitterAccount::sendDirectMessage(const QString& text,
    const TwitterUser& user,
    KRCallback<TwitterDirectMessagePtr> callback)
{
    const auto request
        = accountRequest(Callback(shared_from_this(), &TwitterAccount::didMessage, std::move(callback)));
    // Somebody known from search results alone has no ID yet.
    if (user.userID().isNull())
        request->sendToUsername(text, user.username());
    else
        request->sendToUserID(text, user.userID());
}

void TwitterAccount::didMessage(const KRResult<TwitterDirectMessagePtr>& response,
    const KRCallback<TwitterDirectMessagePtr>& callback)
{
    // On the background thread, as after a post.
    if (!response.isError())
        mainThreadProxy(shared_from_this()).perform(&TwitterAccount::_refreshMessages);
    callback.invoke(response);
}

void TwitterAccount::_refreshMessages()
{
    directMessagesManager()->refresh();
}

void TwitterAccount::follow(const TwitterUser& user, KRCallback<TwitterUserPtr> callback)
{
    accountRequest(std::move(callback))->followUserID(user.userID());
}

void TwitterAccount::stopFollowing(const TwitterUser& user, KRCallback<TwitterUserPtr> callback)
{
    accountRequest(std::move(callback))->unfollowUserID(user.userID());
}

void TwitterAccount::checkIfUserFollows(const TwitterUser& user,
    const TwitterUser& other,
    KRCallback<bool> callback)
{
    accountRequest(Callback(shared_from_this(), &TwitterAccount::followingStatus, std::move(callback)))
        ->userIDFollowsUserID(user.userID(), other.userID());
}

void TwitterAccount::followingStatus(const KRResult<bool>& response, const KRCallback<bool>& callback)
{
    callback.invoke(response);
}

void TwitterAccount::addStatusToFavorites(const TwitterStatusPtr& status)
{
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
    request(Callback(mainThreadProxy(shared_from_this()),
                &TwitterAccount::unauthenticatedUserForUsernameResponse,
                UserLookup { username, std::move(callback) }))
        ->userWithUsername(username);
}

void TwitterAccount::requestUserWithID(const QString& userID, KRCallback<TwitterUserPtr> callback)
{
    request(Callback(mainThreadProxy(shared_from_this()),
                &TwitterAccount::unauthenticatedUserForIDResponse,
                UserLookup { userID, std::move(callback) }))
        ->userWithID(userID);
}

void TwitterAccount::requestStatusWithID(const QString& statusID, KRCallback<TwitterStatusPtr> callback)
{
    request(Callback(mainThreadProxy(shared_from_this()),
                &TwitterAccount::unauthenticatedStatusResponse,
                StatusLookup { statusID, std::move(callback) }))
        ->statusWithID(statusID);
}

void TwitterAccount::unauthenticatedUserForUsernameResponse(const KRResult<TwitterUserPtr>& response,
    const UserLookup& lookup)
{
    if (!response.isError()) {
        _finishLookup(response, lookup);
        return;
    }
    KRLog(u"couldn't load user unathenticated... trying authenticated"_s);
    accountRequest(Callback(mainThreadProxy(shared_from_this()),
                       &TwitterAccount::authenticatedUserForUsernameResponse,
                       lookup))
        ->userWithUsername(lookup.key);
}

void TwitterAccount::unauthenticatedUserForIDResponse(const KRResult<TwitterUserPtr>& response,
    const UserLookup& lookup)
{
    if (!response.isError()) {
        _finishLookup(response, lookup);
        return;
    }
    KRLog(u"couldn't load user unathenticated... trying authenticated"_s);
    accountRequest(Callback(mainThreadProxy(shared_from_this()),
                       &TwitterAccount::authenticatedUserForIDResponse,
                       lookup))
        ->userWithID(lookup.key);
}

void TwitterAccount::unauthenticatedStatusResponse(const KRResult<TwitterStatusPtr>& response,
    const StatusLookup& lookup)
{
    if (!response.isError()) {
        _finishLookup(response, lookup);
        return;
    }
    accountRequest(
        Callback(mainThreadProxy(shared_from_this()), &TwitterAccount::authenticatedStatusResponse, lookup))
        ->statusWithID(lookup.key);
}

void TwitterAccount::authenticatedUserForUsernameResponse(const KRResult<TwitterUserPtr>& response,
    const UserLookup& lookup)
{
    if (response.isError())
        KRLog(u"couldn't load user at all..."_s);
    _finishLookup(response, lookup);
}

void TwitterAccount::authenticatedUserForIDResponse(const KRResult<TwitterUserPtr>& response,
    const UserLookup& lookup)
{
    if (response.isError())
        KRLog(u"couldn't load user at all..."_s);
    _finishLookup(response, lookup);
}

void TwitterAccount::authenticatedStatusResponse(const KRResult<TwitterStatusPtr>& response,
    const StatusLookup& lookup)
{
    _finishLookup(response, lookup);
}

void TwitterAccount::_finishLookup(const KRResult<TwitterUserPtr>& response, const UserLookup& lookup)
{
    if (response.isError()) {
        lookup.callback.invoke(response.error());
        return;
    }
    if (!response.value())
        KRLog(u"BAD"_s);
    lookup.callback.invoke(m_context.tables->definitiveUser(response.value()));
}

void TwitterAccount::_finishLookup(const KRResult<TwitterStatusPtr>& response, const StatusLookup& lookup)
{
    if (response.isError()) {
        lookup.callback.invoke(response.error());
        return;
    }
    if (!response.value())
        KRLog(u"BAD"_s);
    lookup.callback.invoke(m_context.tables->definitiveStatus(response.value()));
}

// --- The account's own user

TwitterUserPtr TwitterAccount::user()
{
    if (!m_user && !m_loadingUser) {
        m_loadingUser = true;
        requestUserWithUsername(m_username,
            Callback(mainThreadProxy(shared_from_this()), &TwitterAccount::myUserResponse));
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
