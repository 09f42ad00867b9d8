#pragma once

#include "foundation/KRBlockingRunLoopDriver.h"
#include "support/KRTestWait.h"
#include "transport/KRHTTPRequest.h"

#include <atomic>
#include <memory>

/// Starts a request and waits for its end; counts the callbacks.
class KRTestRequest {
public:
    explicit KRTestRequest(const QUrl& url, const QString& method = QStringLiteral("GET"))
    {
        m_request->setUrl(url);
        m_request->setMethod(method);
    }

    KRHTTPRequest* operator->() { return m_request.get(); }
    const std::shared_ptr<KRHTTPRequest>& request() const { return m_request; }

    void start()
    {
        m_request->setResponseCallback(Callback(m_end, &End::response));
        m_request->startRequest();
    }
    [[nodiscard]] bool wait() const
    {
        return KRWaitUntil([this] { return m_end->count > 0; });
    }
    [[nodiscard]] bool run()
    {
        start();
        return wait();
    }
    [[nodiscard]] int callbackCount() const { return m_end->count; }
    /// The error's code; 0 without an error.
    [[nodiscard]] int errorCode() const { return m_request->error() ? m_request->error()->code : 0; }
    [[nodiscard]] QString errorText() const
    {
        return m_request->error() ? m_request->error()->description : QString();
    }

private:
    struct End {
        std::atomic<int> count = 0;
        void response(KRHTTPRequest&) { ++count; }
    };

    std::shared_ptr<End> m_end = std::make_shared<End>();
    std::shared_ptr<KRHTTPRequest> m_request = KRHTTPRequest::request();
};

/// Changes the transport's settings for as long as it lives.
class KRTestTransportSettings {
public:
    template <class Change>
    explicit KRTestTransportSettings(Change change)
    {
        KRHTTPTransportSettings settings = m_before;
        change(settings);
        KRHTTPTransportSettings::setCurrent(settings);
    }
    KRTestTransportSettings(const KRTestTransportSettings&) = delete;
    KRTestTransportSettings& operator=(const KRTestTransportSettings&) = delete;
    ~KRTestTransportSettings() { KRHTTPTransportSettings::setCurrent(m_before); }

private:
    KRHTTPTransportSettings m_before = KRHTTPTransportSettings::current();
};
