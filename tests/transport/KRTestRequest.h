#pragma once

#include "support/KRTest.h"
#include "support/KRTestServer.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPConnection.h"
#include "transport/KRHTTPRequest.h"

/// Starts a request and waits for its end; counts the callbacks.
class KRTestRequest {
public:
    explicit KRTestRequest(const QUrl& url, const QString& method = u"GET"_s)
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

/// Believes the tests' own authority from now on.
inline void KRTestTrustAuthority(const QString& file = KRTestAuthorityFile())
{
    KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
    settings.extraCAFile = file;
    KRHTTPTransportSettings::setCurrent(settings);
}

/// What responses have posted to the main thread has run once the background thread is past them.
[[nodiscard]] inline bool KRTestSettle()
{
    std::atomic<bool> isPast = false;
    performOnSharedBackgroundThread([&] { isPast = true; });
    if (!KRWaitUntil([&] { return isPast.load(); }))
        return false;
    KRRunLoop::main().runPending();
    return true;
}

/// Calls an operation with a callback and waits for its result, which comes once.
template <class T, class Operation>
std::shared_ptr<KRTestReceiver<T>> KRTestReceive(Operation operation)
{
    const auto receiver = std::make_shared<KRTestReceiver<T>>();
    operation(Callback(receiver, &KRTestReceiver<T>::took));
    EXPECT_TRUE(KRWaitUntil([&] { return receiver->count > 0; }) && KRTestSettle());
    EXPECT_EQ(receiver->count, 1);
    if (!receiver->result)
        receiver->result.emplace(errorWithDomain({}, 0, u"no result"_s));
    return receiver;
}

/// A server that answers every request in the same way, until told otherwise.
class KRTestAnswers {
public:
    KRTestAnswers() = default;
    explicit KRTestAnswers(KRTestCertificate certificate)
        : server(m_handler, certificate)
    {
        KRTestTrustAuthority();
    }

    void answer(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        std::scoped_lock guard(m_lock);
        m_status = status;
        m_body = body;
        m_headers = headers;
    }

private:
    std::mutex m_lock;
    int m_status = 200;
    QByteArray m_body;
    QByteArray m_headers;
    KRTestServer::Handler m_handler = [this](const auto&, KRTestServer::Connection& connection) {
        std::scoped_lock guard(m_lock);
        connection.respond(m_status, m_body, m_headers);
    };

public:
    KRTestServer server { m_handler };
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
