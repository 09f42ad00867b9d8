#pragma once

#include "foundation/KRRunLoop.h"

#include <QByteArray>
#include <QHash>

#include <chrono>
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

/// What kind of transfer waits for a place: in this order they get the next free one.
enum class KRTransferKind {
    /// Posts and other things that change something at the server. People wait for these.
    Command,
    /// Reading.
    Data,
    /// Pictures, which have an allowance of their own beside.
    Picture,
};

/// Which places a transfer takes, and how long it waits for one.
struct KRTransferTerms {
    /// The server, with its port.
    QByteArray host;
    KRTransferKind kind = KRTransferKind::Data;
    std::chrono::seconds longestWait { 0 };
};

/// libcurl's multi interface behind two waits: for sockets, and for a wake-up from another thread. Everything
/// but wakeUp() is the background thread's.
class KRTransferEngine {
public:
    KRTransferEngine();
    KRTransferEngine(const KRTransferEngine&) = delete;
    KRTransferEngine& operator=(const KRTransferEngine&) = delete;
    // Lives as long as its thread, which is as long as the process.
    ~KRTransferEngine() = delete;

    /// A handle with default options, ready to be set up and started.
    [[nodiscard]] CURL* takeHandle();
    /// Starts a handle as soon as its server has a place for it; the engine keeps the transfer until it has
    /// ended. One that finds no place in its time ends as if the server had not answered.
    void start(CURL* handle, std::shared_ptr<KRTransfer> transfer, KRTransferTerms terms);

    /// Moves every transfer on and tells those that ended.
    void moveOn();
    /// Waits for the next event, at most the given time (without one, until there is an event or a wake-up).
    void wait(std::optional<KRRunLoop::Duration> limit);
    /// Ends a wait that is under way, or the next one. Any thread.
    void wakeUp();
    /// Drops all transfers without telling them, when the thread ends: nothing moves afterwards.
    void dropAll();

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Transfer {
        std::shared_ptr<KRTransfer> transfer;
        KRTransferTerms terms;
    };
    struct Waiting {
        CURL* handle = nullptr;
        Transfer transfer;
        TimePoint deadline;
    };
    struct Places {
        int taken = 0;
        int takenByPictures = 0;
    };

    void _tellEnded();
    void _endOverdue();
    void _end(CURL* handle, const std::shared_ptr<KRTransfer>& transfer, int code);
    [[nodiscard]] bool _hasPlaceFor(const KRTransferTerms& terms) const;
    void _begin(CURL* handle, Transfer transfer);
    void _giveBack(const KRTransferTerms& terms);
    void _beginWaiting();
    void _recycle(CURL* handle);

    const KRCurlLibrary& m_curl;
    CURLM* m_multi;
    std::unordered_map<CURL*, Transfer> m_transfers;
    // Commands first, pictures last, each kind in the order of asking.
    std::vector<Waiting> m_waiting;
    QHash<QByteArray, Places> m_places;
    std::vector<CURL*> m_idleHandles;
};
