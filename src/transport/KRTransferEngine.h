#pragma once

#include "foundation/KRRunLoop.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

using CURL = void;
using CURLM = void;
struct KRCurlLibrary;

/// One transfer that the engine carries; told once when it has ended.
class KRTransfer {
public:
    KRTransfer() = default;
    KRTransfer(const KRTransfer&) = delete;
    KRTransfer& operator=(const KRTransfer&) = delete;
    virtual ~KRTransfer() = default;

    /// The code is libcurl's. The handle is the engine's again afterwards.
    virtual void transferDidEnd(CURL* handle, int code) = 0;
};

/// libcurl's multi interface behind two waits: for sockets, and for a wake-up from another thread. Everything
/// but wakeUp() is the background thread's.
class KRTransferEngine {
public:
    KRTransferEngine();
    KRTransferEngine(const KRTransferEngine&) = delete;
    KRTransferEngine& operator=(const KRTransferEngine&) = delete;
    ~KRTransferEngine();

    /// A handle with default options, ready to be set up and started.
    [[nodiscard]] CURL* takeHandle();
    /// Starts a handle; the engine keeps the transfer until it has ended.
    void start(CURL* handle, std::shared_ptr<KRTransfer> transfer);

    /// Moves every transfer on and tells those that ended. Answers whether any did: that has usually brought
    /// new work, so the caller looks before it waits.
    bool moveOn();
    /// Waits for the next event, at most the given time (without one, until there is an event or a wake-up).
    void wait(std::optional<KRRunLoop::Duration> limit);
    /// Ends a wait that is under way, or the next one. Any thread.
    void wakeUp();
    /// Drops all transfers without telling them.
    void cancelAll();

private:
    bool _tellEnded();
    void _recycle(CURL* handle);

    const KRCurlLibrary& m_curl;
    CURLM* m_multi;
    std::unordered_map<CURL*, std::shared_ptr<KRTransfer>> m_transfers;
    std::vector<CURL*> m_idleHandles;
};
