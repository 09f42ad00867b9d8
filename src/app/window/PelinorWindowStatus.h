#pragma once

#include "foundation/KRError.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRRunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// What a window tells about the network: the last failure for a moment, and whether anything is under way. Failures and activity are announced on the background thread and
/// arrive here on the main one, to which the rest belongs.
class PelinorWindowStatus : public std::enable_shared_from_this<PelinorWindowStatus> {
public:
    /// So long after each failure whatever is on show is cleared.
    static constexpr KRRunLoop::Duration errorDuration = std::chrono::seconds(4);

    PelinorWindowStatus() = default;
    PelinorWindowStatus(const PelinorWindowStatus&) = delete;
    PelinorWindowStatus& operator=(const PelinorWindowStatus&) = delete;
    ~PelinorWindowStatus();

    /// Starts following what the center announces.
    static std::shared_ptr<PelinorWindowStatus> observing(KRNotificationCenter& notifications);

    const std::optional<KRError>& currentError() const { return m_currentError; }
    bool isNetworkActive() const { return m_isNetworkActive; }
    /// Called after every change; an empty function stops that.
    void setChangeHandler(std::function<void()> handler) { m_didChange = std::move(handler); }

    /// An error without a description clears the one on show: there would be nothing to read.
    void streamDidFail(const KRError& error);
    void clearErrors();

private:
    void networkActivityDidBegin();
    void networkActivityDidEnd();
    void _changed();

    std::optional<KRError> m_currentError;
    bool m_isNetworkActive = false;
    std::function<void()> m_didChange;
    std::vector<KRObservation> m_observations;
};
