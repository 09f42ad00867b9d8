#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"

class TwitterAccount;

/// All of these are posted on the main thread.

/// Something of an account has changed: its user, its streams, or what counts as seen.
struct TwitterAccountDidUpdateNotification {
    static constexpr char name[] = "TwitterAccountDidUpdateNotification";
    const TwitterAccount* object;
};

/// Something that an account archives has changed; whoever keeps the account list saves it soon.
struct TwitterAccountArchiveDidChangeNotification {
    static constexpr char name[] = "TwitterAccountArchiveDidChangeNotification";
    const TwitterAccount* object;
};

/// What has come and was not yet announced. The list, which may be empty, is the object.
struct TwitterAccountGrowlForNewTimelineStatuses {
    static constexpr char name[] = "TwitterAccountGrowlForNewTimelineStatuses";
    const TwitterStatusList* object;
    const TwitterAccount* account;
};
struct TwitterAccountGrowlForNewMentionStatuses {
    static constexpr char name[] = "TwitterAccountGrowlForNewMentionStatuses";
    const TwitterStatusList* object;
    const TwitterAccount* account;
};
struct TwitterAccountGrowlForNewMessages {
    static constexpr char name[] = "TwitterAccountGrowlForNewMessages";
    const TwitterDirectMessageList* object;
    const TwitterAccount* account;
};
