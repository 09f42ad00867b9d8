#pragma once

#include "api/TwitterCredentials.h"
#include "foundation/KRUserDefaults.h"
#include "services/TwitterServiceContext.h"
#include "support/KRTestLog.h"
#include "support/KRTestServer.h"
#include "support/KRTestWait.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRCallback.h"
#include "transport/KRHTTPConnection.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

struct TestCredentials final : TwitterCredentials {
    explicit TestCredentials(const QString& name = QStringLiteral("alice"),
        const QString& word = QStringLiteral("wonderland"))
        : m_username(name)
        , m_password(word)
    {
    }
    QString username() const override { return m_username; }
    QString password() const override { return m_password; }

private:
    QString m_username;
    QString m_password;
};

/// Receives results and remembers the last one.
template <class T>
struct TestReceiver {
    std::atomic<int> count = 0;
    std::optional<KRResult<T>> result;

    void received(KRResult<T> received)
    {
        result = std::move(received);
        ++count;
    }
};

/// Calls an operation with a callback and waits for its result, which may come once.
template <class T, class Operation>
KRResult<T> resultOf(Operation operation)
{
    const auto receiver = std::make_shared<TestReceiver<T>>();
    operation(Callback(receiver, &TestReceiver<T>::received));
    EXPECT_TRUE(KRWaitUntil([&] { return receiver->count > 0; }));
    // A second result would be on its way there.
    std::atomic<bool> passed = false;
    performOnSharedBackgroundThread([&] { passed = true; });
    EXPECT_TRUE(KRWaitUntil([&] { return passed.load(); }));
    EXPECT_EQ(receiver->count, 1);
    return receiver->result.value_or(errorWithDomain({}, 0, QStringLiteral("no result")));
}

/// A server that answers every request in the same way, until told otherwise, and the tables around it.
class ServicesFixture : public testing::Test {
protected:
    explicit ServicesFixture(KRTestCertificate certificate)
        : server([this](const auto& request, auto& connection) { _answer(request, connection); }, certificate)
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
    }
    ServicesFixture()
        : server([this](const auto& request, auto& connection) { _answer(request, connection); })
    {
    }

    void answer(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        std::scoped_lock guard(m_lock);
        m_status = status;
        m_body = body;
        m_headers = headers;
    }

    void setHost(const char* key, const QString& value)
    {
        context.hosts.setValueForKey(value, QLatin1String(key));
    }

private:
    void _answer(const KRTestServer::Request&, KRTestServer::Connection& connection)
    {
        std::scoped_lock guard(m_lock);
        connection.respond(m_status, m_body, m_headers);
    }

    std::mutex m_lock;
    int m_status = 200;
    QByteArray m_body;
    QByteArray m_headers;

protected:
    QTemporaryDir folder;
    KRUserDefaults defaults { folder.filePath(QStringLiteral("defaults.ini")) };
    TwitterServiceContext context { {}, &defaults };
    KRTestServer server;
};
