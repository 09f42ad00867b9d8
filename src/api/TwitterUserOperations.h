#pragma once

#include "api/TwitterOperations.h"
#include "model/records/TwitterUser.h"

/// Lists of people. Any thread; the callback is invoked on the shared background thread.
class TwitterUsersOperations final : public TwitterOperationsDelivering<TwitterUserList> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void friendsForUsername(const QString& username, std::optional<int> page);
    void friendsForUserID(const QString& userID, std::optional<int> page);
    void followersForUsername(const QString& username, std::optional<int> page);
    void followersForUserID(const QString& userID, std::optional<int> page);

private:
    void _usersResponse(KRHTTPRequest& request);
};

/// Operations on one person.
class TwitterUserOperations final : public TwitterOperationsDelivering<TwitterUserPtr> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void userWithUsername(const QString& username);
    void userWithID(const QString& userID);
    void followUsername(const QString& username);
    void followUserID(const QString& userID);
    void unfollowUsername(const QString& username);
    void unfollowUserID(const QString& userID);

private:
    void _follow(const KRParameters& query);
    void _unfollow(const QString& nameOrID);
    void _userResponse(KRHTTPRequest& request);
};
