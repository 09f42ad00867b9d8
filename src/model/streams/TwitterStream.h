#pragma once

#include "foundation/KRError.h"
#include "model/records/TwitterStatus.h"

class TwitterDummyMissingStatus;

/// Whatever loads from both ends and tells of it: streams of statuses, and those of direct messages.
class TwitterLoadingStream {
public:
    TwitterLoadingStream() = default;
    TwitterLoadingStream(const TwitterLoadingStream&) = delete;
    TwitterLoadingStream& operator=(const TwitterLoadingStream&) = delete;
    virtual ~TwitterLoadingStream() = default;
};

/// The list of a stream changed, or its end was reached. Posted on the main thread. Streams of direct
/// messages post it too; `object` tells who.
struct TwitterStreamDidUpdateNotification {
    static constexpr char name[] = "TwitterStreamDidUpdateNotification";
    const TwitterLoadingStream* object = nullptr;
};

/// A load failed. Posted on the thread that delivers the response: the background thread, or the main one
/// when there was nobody to ask for and nothing was sent.
struct TwitterStreamErrorNotification {
    static constexpr char name[] = "TwitterStreamErrorNotification";
    const TwitterLoadingStream* object = nullptr;
    KRError error;
};

/// An ordered list of statuses, newest first, that grows at both ends. This base only says what a stream can
/// be asked; its operations do nothing but log that. Main thread.
class TwitterStream : public TwitterLoadingStream {
public:
    virtual void loadOlder();
    virtual void loadNewer();
    /// Opens a list again that ended because an older page could not be loaded, and asks for that page; nothing
    /// happens otherwise. Streams that cannot fail so need not have it.
    virtual void loadOlderAgain() { }
    /// Loads what is missing where the row stands; nothing happens while that is on its way, or for a row
    /// that the stream no longer shows. Streams without such rows need not have it.
    virtual void loadMissing(const TwitterDummyMissingStatus& /*row*/) { }
    virtual void setStatuses(const TwitterStatusList& statuses);
    /// The post is gone from the service. Streams that keep none need not have it.
    virtual void removeStatus(const TwitterStatus& /*status*/) { }
    [[nodiscard]] virtual TwitterStatusList statuses() const;
};
