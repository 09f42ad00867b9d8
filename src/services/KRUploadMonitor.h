#pragma once

#include "transport/KRHTTPRequest.h"

#include <memory>
#include <mutex>

/// How far an upload has come.
struct KRUploadProgress {
    qint64 sent = 0;
    qint64 total = 0;
};

/// Watches one upload for whoever waits for it, and ends it. Any thread.
class KRUploadMonitor {
public:
    /// Invoked on the shared background thread, as often as something was sent.
    explicit KRUploadMonitor(KRCallback<KRUploadProgress> progress)
        : m_progress(std::move(progress))
    {
    }

    /// The file goes no further, and whoever uploads it gets an error.
    void cancel();

    /// Before the request starts.
    void watch(const std::shared_ptr<KRHTTPRequest>& request);

private:
    const KRCallback<KRUploadProgress> m_progress;
    std::mutex m_lock;
    std::weak_ptr<KRHTTPRequest> m_request;
    bool m_isCancelled = false;
};
