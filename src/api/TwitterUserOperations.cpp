#include "api/TwitterUserOperations.h"

#include "api/TwitterAnswers.h"
#include "foundation/KRLog.h"

using namespace Qt::StringLiterals;

void TwitterUsersOperations::friendsForUsername(const QString& username, std::optional<int> page)
{
    _requirePerson(username);
    GET(u"statuses/friends.xml"_s,
        KRParameters().add("screen_name"_L1, username).add("page"_L1, page),
        _handler(&TwitterUsersOperations::_usersResponse));
}

void TwitterUsersOperations::friendsForUserID(const QString& userID, std::optional<int> page)
{
    _requirePerson(userID);
    GET(u"statuses/friends.xml"_s,
        KRParameters().add("user_id"_L1, userID).add("page"_L1, page),
        _handler(&TwitterUsersOperations::_usersResponse));
}

void TwitterUsersOperations::followersForUsername(const QString& username, std::optional<int> page)
{
    _requirePerson(username);
    GET(u"statuses/followers.xml"_s,
        KRParameters().add("screen_name"_L1, username).add("page"_L1, page),
        _handler(&TwitterUsersOperations::_usersResponse));
}

void TwitterUsersOperations::followersForUserID(const QString& userID, std::optional<int> page)
{
    _requirePerson(userID);
    GET(u"statuses/followers.xml"_s,
        KRParameters().add("user_id"_L1, userID).add("page"_L1, page),
        _handler(&TwitterUsersOperations::_usersResponse));
}

void TwitterUsersOperations::_usersResponse(KRHTTPRequest& request)
{
    _invokeCallback(TwitterAnswers::parsed(request, &TwitterUser::usersWithXML));
}

void TwitterUserOperations::userWithUsername(const QString& username)
{
    _requirePerson(username);
    GET(u"users/show.xml"_s,
        KRParameters().add("screen_name"_L1, username),
        _handler(&TwitterUserOperations::_userResponse));
}

void TwitterUserOperations::userWithID(const QString& userID)
{
    _requirePerson(userID);
    GET(u"users/show.xml"_s,
        KRParameters().add("user_id"_L1, userID),
        _handler(&TwitterUserOperations::_userResponse));
}

void TwitterUserOperations::followUsername(const QString& username)
{
    _requireAuthentication("followUsername:");
    _requirePerson(username);
    _follow(KRParameters().add("screen_name"_L1, username));
}

void TwitterUserOperations::followUserID(const QString& userID)
{
    _requireAuthentication("followUserID:");
    _requirePerson(userID);
    _follow(KRParameters().add("user_id"_L1, userID));
}

void TwitterUserOperations::_follow(const KRParameters& query)
{
    POST(u"friendships/create.xml?%1"_s.arg(KRAdditions::URLParameterString(query)),
        QByteArray(),
        _handler(&TwitterUserOperations::_userResponse));
}

void TwitterUserOperations::unfollowUsername(const QString& username)
{
    _requireAuthentication("unfollowUsername:");
    _unfollow(username);
}

void TwitterUserOperations::unfollowUserID(const QString& userID)
{
    _requireAuthentication("unfollowUserID:");
    _unfollow(userID);
}

void TwitterUserOperations::_unfollow(const QString& nameOrID)
{
    _requirePerson(nameOrID);
    POST(u"friendships/destroy/%1.xml"_s.arg(nameOrID),
        QByteArray(),
        _handler(&TwitterUserOperations::_userResponse));
}

void TwitterUserOperations::_userResponse(KRHTTPRequest& request)
{
    KRResult<TwitterUserPtr> user = TwitterAnswers::parsed(request, &TwitterUser::userWithXML);
    if (!user.isError() && user.value()->userID().isNull() && user.value()->username().isNull()) {
        KRLog(u"NO USER NIL"_s);
        user = TwitterAnswers::errorForMissingRecord(request);
    }
    _invokeCallback(std::move(user));
}
