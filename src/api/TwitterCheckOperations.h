#pragma once

#include "api/TwitterOperations.h"

/// Questions that are answered with yes or no. Any thread; the callback is invoked on the shared background
/// thread.
class TwitterCheckOperations final : public TwitterOperationsDelivering<bool> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    /// Whether the first follows the second.
    void usernameFollowsUsername(const QString& username, const QString& otherUsername);
    void userIDFollowsUserID(const QString& userID, const QString& otherUserID);
    /// True, or the error that tells why not.
    void verifyCredentials();

private:
    void _friendshipExists(const QString& nameOrID, const QString& other);
    void _friendshipExistsResponse(KRHTTPRequest& request);
    void _verifyCredentialsResponse(KRHTTPRequest& request);
};

/// Questions whose answer is delivered as the text it is. Threads as above.
class TwitterTextOperations final : public TwitterOperationsDelivering<QString> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void rateLimitStatus();

private:
    void _rateLimitResponse(KRHTTPRequest& request);
};
