#include "model/streams/TwitterUserStream.h"

#include <algorithm>

QString TwitterUserStream::_userID() const
{
    const TwitterUserPtr user = m_user.lock();
    return user ? user->userID() : QString();
}

void TwitterUserTimelineStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.userTimelineForUserID(_userID(), newestStatusID(), {}, pageCount, {});
}

void TwitterUserTimelineStream::_requestOlder(TwitterStatusesOperations& request)
{
    request.userTimelineForUserID(_userID(), {}, oldestStatusID(), pageCount, {});
}

void TwitterUserFavoritesStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.favoritesForUserID(_userID(), 0);
}

void TwitterUserFavoritesStream::_requestOlder(TwitterStatusesOperations& request)
{
    m_page = std::max(m_page, 1);
    request.favoritesForUserID(_userID(), m_page);
    ++m_page;
}
