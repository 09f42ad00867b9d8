#pragma once

#include "api/TwitterCredentials.h"
#include "foundation/KRUserDefaults.h"
#include "services/TwitterServiceContext.h"
#include "support/KRTest.h"
#include "transport/KRCallback.h"
#include "transport/KRTestRequest.h"

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

/// The result of an operation that is called with a callback.
template <class T, class Operation>
KRResult<T> resultOf(Operation operation)
{
    return *KRTestReceive<T>(operation)->result;
}

/// A server that answers every request in the same way, until told otherwise, and the tables around it.
class ServicesFixture : public testing::Test, protected KRTestAnswers {
protected:
    using KRTestAnswers::KRTestAnswers;

    void setHost(const char* key, const QString& value)
    {
        context.hosts.setValueForKey(value, QLatin1String(key));
    }

    QTemporaryDir folder;
    KRUserDefaults defaults { folder.filePath(QStringLiteral("defaults.ini")) };
    TwitterServiceContext context { {}, &defaults };
};
