#pragma once

#include "core/TwitterAccount.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/KRTestRecords.h"
#include "support/KRTestLog.h"
#include "support/KRTestSite.h"
#include "support/KRTestWait.h"
#include "transport/KRHTTPConnection.h"

#include <gtest/gtest.h>

/// Keeps what a callback brings.
template <class T>
struct KRTestReceiver {
    std::atomic<int> count = 0;
    std::optional<KRResult<T>> result;
    void took(const KRResult<T>& value)
    {
        result.emplace(value);
        ++count;
    }
};

/// Counts what is posted about an object.
template <class Notification>
struct KRTestCounter {
    template <class Object>
    explicit KRTestCounter(const Object& object)
        : observation(
            KRNotificationCenter::defaultCenter().observe<Notification>([this](const auto&) { ++count; },
                object.get()))
    {
    }
    mutable int count = 0;
    KRObservation observation;
};

/// An account named "Alice" at a test's site.
class KRTestAccount : public testing::Test {
protected:
    KRTestAccount()
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        TwitterServiceHosts hosts;
        hosts.setValueForKey(m_site.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        hosts.setValueForKey(QStringLiteral("https://") + m_site.host(),
            QLatin1String(TwitterServiceHosts::searchHostKey));
        m_context = { std::make_shared<TwitterUniquingTables>(), hosts };
        m_account = makeAccount();
    }

    TwitterAccountPtr makeAccount() const
    {
        return TwitterAccount::accountWithUsername(QStringLiteral("Alice"), QStringLiteral("pw"), m_context);
    }

    static TwitterStatusPtr status(const QString& id, const QString& author, const QDateTime& date)
    {
        return KRTestStatus(id, KRTestUser({}, author), date, QStringLiteral("x"));
    }

    KRTestLog m_log;
    KRTestSite m_site;
    TwitterAccountContext m_context;
    TwitterAccountPtr m_account;
};
