#pragma once

#include "api/TwitterAPI.h"
#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"

/// What a stream asks of the account whose credentials it loads with. Main thread.
class TwitterStreamAccount {
public:
    TwitterStreamAccount() = default;
    TwitterStreamAccount(const TwitterStreamAccount&) = delete;
    TwitterStreamAccount& operator=(const TwitterStreamAccount&) = delete;
    virtual ~TwitterStreamAccount() = default;

    /// A request with the account's credentials, to be sent one operation.
    [[nodiscard]] virtual std::shared_ptr<TwitterStatusesOperations> authenticatedRequest(
        KRCallback<TwitterStatusList> callback)
        = 0;
    [[nodiscard]] virtual std::shared_ptr<TwitterDirectMessagesOperations> authenticatedRequest(
        KRCallback<TwitterDirectMessageList> callback)
        = 0;
    /// Whose posts are "mine".
    [[nodiscard]] virtual bool isAuthorOfStatus(const TwitterStatus& status) const = 0;
    [[nodiscard]] virtual bool isAuthorOfDirectMessage(const TwitterDirectMessage& message) const = 0;
    /// The known record with this ID, or null.
    [[nodiscard]] virtual TwitterStatusPtr cachedStatusWithID(const QString& statusID) const = 0;
    /// Asks the service, without credentials first. The callback is invoked on the main thread.
    virtual void requestStatusWithID(const QString& statusID, KRCallback<TwitterStatusPtr> callback) = 0;
};
