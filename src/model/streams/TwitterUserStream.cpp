#include "model/streams/TwitterUserStream.h"

#include <algorithm>

KRResult<void> TwitterUserStream::_mayLoad() const
{
    const TwitterUserPtr one = user();
    if (!one || (one->userID().isNull() && one->username().isNull()))
        return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
            -1,
            QStringLiteral("There is nobody to load for"));
    return TwitterAccountStream::_mayLoad();
}

void TwitterUserTimelineStream::_requestNewer(TwitterStatusesOperations& request)
{
    _request(request, sinceID(), {});
}

void TwitterUserTimelineStream::_requestBelow(TwitterStatusesOperations& request, const QString& maxID)
{
    _request(request, {}, maxID);
}

void TwitterUserTimelineStream::_request(TwitterStatusesOperations& request,
    const QString& sinceID,
    const QString& maxID)
{
    const TwitterUserPtr one = user();
    if (one->userID().isNull())
        request.userTimelineForUsername(one->username(), sinceID, maxID, pageCount, {});
    else
        request.userTimelineForUserID(one->userID(), sinceID, maxID, pageCount, {});
}

void TwitterUserFavoritesStream::_requestNewer(TwitterStatusesOperations& request)
{
    _request(request, 0);
}

void TwitterUserFavoritesStream::_requestOlder(TwitterStatusesOperations& request)
{
    m_page = std::max(m_page, 1);
    _request(request, m_page);
    ++m_page;
}

void TwitterUserFavoritesStream::_request(TwitterStatusesOperations& request, int page)
{
    const TwitterUserPtr one = user();
    if (one->userID().isNull())
        request.favoritesForUsername(one->username(), page);
    else
        request.favoritesForUserID(one->userID(), page);
}
