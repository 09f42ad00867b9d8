#pragma once

#include "api/TwitterOperations.h"
#include "model/records/TwitterDirectMessage.h"

/// Lists of messages. Pages end before `sinceID` and begin at `maxID`. Any thread; the callback is
/// invoked on the shared background thread.
class TwitterDirectMessagesOperations final : public TwitterOperationsDelivering<TwitterDirectMessageList> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void directMessagesSinceID(const QString& sinceID, const QString& maxID, std::optional<int> page);
    void sentDirectMessagesSinceID(const QString& sinceID, const QString& maxID, std::optional<int> page);

private:
    void _directMessagesResponse(KRHTTPRequest& request);
};

/// Operations on one message.
class TwitterDirectMessageOperations final : public TwitterOperationsDelivering<TwitterDirectMessagePtr> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void sendToUsername(const QString& text, const QString& username);
    void sendToUserID(const QString& text, const QString& userID);

private:
    void _send(const QString& text, const QString& recipient);
    void _directMessageResponse(KRHTTPRequest& request);
};
