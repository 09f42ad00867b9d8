#pragma once

#include "api/TwitterAPI.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "transport/KRTestRequest.h"

struct TestCredentials final : TwitterCredentials {
    QString username() const override { return u"joe"_s; }
    QString password() const override { return u"secret"_s; }
};

/// An error of the program's own.
inline KRError KRTestError(const QString& text)
{
    return errorWithDomain(QStringLiteral("com.kestrin.pelinor"), -1, text);
}

/// A service on a TLS server of the test's own: it answers every request in the same way, until told
/// otherwise.
class TwitterAPIFixture : public testing::Test, protected KRTestAnswers {
protected:
    TwitterAPIFixture()
        : KRTestAnswers(KRTestCertificate::Good)
    {
        hosts.setValueForKey(server.host() + u"/api"_s, u"RESTHost"_s);
    }

    /// What an operation sent with the callback delivers.
    template <class T, class Send>
    KRResult<T> received(Send send)
    {
        const auto receiver = KRTestReceive<T>(send);
        EXPECT_FALSE(receiver->wasOnMainThread);
        return *receiver->result;
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
        answer(200, KRTestSite::realAnswer(name + u".body.xml"_s));
        return resultOf<T>(operation);
    }

    TwitterServiceHosts hosts;
};
