#include "app/people/PelinorUserDetails.h"

#include "transport/KRProxy.h"

PelinorUserDetails::PelinorUserDetails(TwitterAccountPtr account, TwitterUserPtr user, QString loadUsername)
    : m_account(std::move(account))
    , m_loadUsername(std::move(loadUsername))
{
    if (user)
        _take(user);
}

PelinorUserDetails::~PelinorUserDetails()
{
    dissociateWeakProxy(this);
}

QString PelinorUserDetails::username() const
{
    return m_user ? m_user->username() : m_loadUsername;
}

bool PelinorUserDetails::isMe() const
{
    return username().compare(m_account->username(), Qt::CaseInsensitive) == 0;
}

void PelinorUserDetails::_take(const TwitterUserPtr& user)
{
    m_user = user;
    m_userObservation = KRNotificationCenter::defaultCenter().observe<TwitterUserDidUpdateNotification>(
        [this](const TwitterUserDidUpdateNotification&) { _changed(); },
        user.get());
}

void PelinorUserDetails::load()
{
    if (std::exchange(m_isLoaded, true))
        return;
    m_error.reset();
    // What search results know of a person is not enough; everybody else may have changed.
    const auto callback
        = Callback(weakMainThreadProxy(shared_from_this()), &PelinorUserDetails::userResponse);
    if (m_user && !m_user->userID().isNull())
        m_account->requestUserWithID(m_user->userID(), callback);
    else
        m_account->requestUserWithUsername(username(), callback);
    if (m_user)
        _loadFriendships();
}

void PelinorUserDetails::userResponse(const KRResult<TwitterUserPtr>& response)
{
    const bool wasUnknown = m_user == nullptr;
    if (!response.isError())
        _take(response.value());
    else if (wasUnknown)
        m_error = response.error();
    m_isLoaded = !response.isError();
    if (wasUnknown && m_user)
        _loadFriendships();
    _changed();
}

void PelinorUserDetails::_loadFriendships()
{
    if (isMe())
        return;
    TwitterUserPtr me = m_account->user();
    if (!me) {
        me = std::make_shared<TwitterUser>();
        me->setUsername(m_account->username());
    }
    const auto proxy = weakMainThreadProxy(shared_from_this());
    m_account->checkIfUserFollows(*me, *m_user, Callback(proxy, &PelinorUserDetails::followingResponse));
    m_account->checkIfUserFollows(*m_user, *me, Callback(proxy, &PelinorUserDetails::followsMeResponse));
}

void PelinorUserDetails::followingResponse(const KRResult<bool>& response)
{
    if (response.isError() || m_following != Following::Unknown)
        return;
    m_following = response.value() ? Following::Yes : Following::No;
    _changed();
}

void PelinorUserDetails::followsMeResponse(const KRResult<bool>& response)
{
    m_followsMe = !response.isError() && response.value();
    _changed();
}

void PelinorUserDetails::toggleFollowing()
{
    if (m_following != Following::Yes && m_following != Following::No)
        return;
    const bool follows = m_following == Following::No;
    m_following = Following::Changing;
    m_followError.reset();
    const auto callback
        = Callback(weakMainThreadProxy(shared_from_this()), &PelinorUserDetails::followResponse, follows);
    if (follows)
        m_account->follow(*m_user, callback);
    else
        m_account->stopFollowing(*m_user, callback);
    _changed();
}

void PelinorUserDetails::followResponse(const KRResult<TwitterUserPtr>& response, bool follows)
{
    if (response.isError())
        m_followError = response.error();
    m_following = response.isError() == follows ? Following::No : Following::Yes;
    _changed();
}

void PelinorUserDetails::_changed()
{
    // Whoever hears of it may let go of the screen.
    const auto self = weak_from_this().lock();
    if (m_didChange)
        m_didChange();
}
