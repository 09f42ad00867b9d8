#pragma once

#include "api/TwitterOperations.h"
#include "model/records/TwitterStatus.h"

/// Timelines. Pages end before `sinceID` and begin at `maxID`. Any thread; the callback is
/// invoked on the shared background thread.
class TwitterStatusesOperations final : public TwitterOperationsDelivering<TwitterStatusList> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void friendsTimelineSinceID(const QString& sinceID,
        const QString& maxID,
        std::optional<int> count,
        std::optional<int> page);
    void repliesSinceID(const QString& sinceID, const QString& maxID, std::optional<int> page);
    void userTimelineForUsername(const QString& username,
        const QString& sinceID,
        const QString& maxID,
        std::optional<int> count,
        std::optional<int> page);
    void userTimelineForUserID(const QString& userID,
        const QString& sinceID,
        const QString& maxID,
        std::optional<int> count,
        std::optional<int> page);
    void publicTimeline();
    void favoritesForUsername(const QString& username, std::optional<int> page);
    void favoritesForUserID(const QString& userID, std::optional<int> page);

private:
    void _statusesResponse(KRHTTPRequest& request);
};

/// Operations on one status.
class TwitterStatusOperations final : public TwitterOperationsDelivering<TwitterStatusPtr> {
public:
    using TwitterOperationsDelivering::TwitterOperationsDelivering;

    void statusWithID(const QString& statusID);
    void update(const QString& text, const QString& inReplyToStatusID);
    void destroyStatus(const QString& statusID);
    /// Make the status a favourite, or take that back, for callers who want to know whether it worked. The
    /// group without results has the same operations for those who do not.
    void createFavorite(const QString& statusID);
    void destroyFavorite(const QString& statusID);

private:
    void _statusResponse(KRHTTPRequest& request);
};
