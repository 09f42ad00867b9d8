#pragma once

#include "api/TwitterAPI.h"
#include "support/KRTestLog.h"
#include "support/KRTestServer.h"
#include "support/KRTestWait.h"
#include "transport/KRBackgroundThread.h"

#include <QFile>

#include <gtest/gtest.h>

/// Receives results and remembers the last one.
template <class T>
struct TestReceiver {
    std::atomic<int> count = 0;
    std::optional<KRResult<T>> result;
    std::atomic<bool> wasOnBackgroundThread = false;

    void received(KRResult<T> received)
    {
        result = std::move(received);
        wasOnBackgroundThread = KRBackgroundThread::isCurrentThread();
        ++count;
    }
};

struct TestCredentials final : TwitterCredentials {
    QString username() const override { return QStringLiteral("joe"); }
    QString password() const override { return QStringLiteral("secret"); }
};

/// A service on a TLS server of the test's own: it answers every request in the same way, until told
/// otherwise.
class TwitterAPIFixture : public testing::Test {
protected:
    TwitterAPIFixture()
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        hosts.setValueForKey(server.host() + QStringLiteral("/api"), QStringLiteral("RESTHost"));
    }

    void answer(int status, const QByteArray& body, const QByteArray& headers = "Content-Type: text/xml\r\n")
    {
        std::scoped_lock guard(m_lock);
        m_status = status;
        m_body = body;
        m_headers = headers;
    }

    /// The answer of a real site.
    static QByteArray realAnswer(const QString& name)
    {
        QFile file(QStringLiteral(PELINOR_TEST_DATA "/gnu-social/") + name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll();
    }

    /// What an operation sent with the callback delivers.
    template <class T, class Send>
    KRResult<T> received(Send send)
    {
        const auto receiver = std::make_shared<TestReceiver<T>>();
        send(Callback(receiver, &TestReceiver<T>::received));
        EXPECT_TRUE(KRWaitUntil([&] { return receiver->count > 0; }));
        EXPECT_EQ(receiver->count, 1);
        EXPECT_TRUE(receiver->wasOnBackgroundThread);
        return receiver->result.value_or(errorWithDomain({}, 0, QStringLiteral("no result")));
    }

    /// Sends one operation with the account and waits for its result.
    template <class T, class Operation>
    KRResult<T> resultOf(Operation operation)
    {
        return received<T>([&](KRCallback<T> callback) {
            operation(*TwitterAPI::authenticatedRequest(hosts, TestCredentials(), std::move(callback)));
        });
    }

    /// The same for the answer of a real site.
    template <class T, class Operation>
    KRResult<T> resultFrom(const QString& name, Operation operation)
    {
        answer(200, realAnswer(name + QStringLiteral(".body.xml")));
        return resultOf<T>(operation);
    }

    TwitterServiceHosts hosts;

private:
    std::mutex m_lock;
    int m_status = 200;
    QByteArray m_body;
    QByteArray m_headers;

protected:
    KRTestServer server { [this](const KRTestServer::Request&, KRTestServer::Connection& connection) {
                             std::scoped_lock guard(m_lock);
                             connection.respond(m_status, m_body, m_headers);
                         },
        KRTestCertificate::Good };
};
