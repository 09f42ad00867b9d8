#pragma once

#include "api/TwitterOperations.h"

class TwitterDirectMessage;

/// Operations that deliver nothing: of one that failed, the log alone tells. Any thread.
class TwitterCommandOperations final : public TwitterOperations {
public:
    explicit TwitterCommandOperations(TwitterRequestContext context)
        : TwitterOperations(std::move(context))
    {
    }

    void favoriteStatusID(const QString& statusID);
    void unfavoriteStatusID(const QString& statusID);

    /// Sends nothing, which the log says: the services have no common way to do it.
    void destroyDirectMessage(const TwitterDirectMessage& message);

    /// These send nothing: the services the program meets offer them elsewhere or not at all.
    void updateProfileImage(const QByteArray& image);
    void
    updateProfileName(const QString& name, const QString& email, const QString& url, const QString& location);
    void blockUserID(const QString& userID);
    void blockUsername(const QString& username);
    void unblockUserID(const QString& userID);
    void unblockUsername(const QString& username);
    void enableNotificationsForUserID(const QString& userID);
    void enableNotificationsForUsername(const QString& username);
    void disableNotificationsForUserID(const QString& userID);
    void disableNotificationsForUsername(const QString& username);

private:
    void _ignoreResponse(KRHTTPRequest& request);
};
