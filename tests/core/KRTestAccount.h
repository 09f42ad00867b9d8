#pragma once

#include "core/Twitter.h"
#include "foundation/KRUserDefaults.h"
#include "model/records/KRTestRecords.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "support/KRTestSite.h"
#include "support/KRTestWait.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPConnection.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// Keeps what a callback brings.
template <class T>
struct KRTestReceiver {
    std::atomic<int> count = 0;
    std::atomic<bool> wasOnMainThread = false;
    std::optional<KRResult<T>> result;
    void took(const KRResult<T>& value)
    {
        result.emplace(value);
        wasOnMainThread = KRRunLoop::isMainThread();
        ++count;
    }
};

/// Counts what is posted, about an object or at all.
template <class Notification>
struct KRTestCounter {
    KRTestCounter()
        : observation(
            KRNotificationCenter::defaultCenter().observe<Notification>([this](const auto&) { ++count; }))
    {
    }
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

/// A test's site, a root object that knows it, and an account named "Alice" that is in no list.
class KRTestAccount : public testing::Test {
protected:
    KRTestAccount()
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        m_hosts.setValueForKey(m_site.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        m_hosts.setValueForKey(QStringLiteral("https://") + m_site.host(),
            QLatin1String(TwitterServiceHosts::searchHostKey));
        m_twitter = makeTwitter();
        m_context = m_twitter->accountContext();
        m_account = makeAccount();
    }

    std::shared_ptr<Twitter> makeTwitter(bool runsHeartbeat = false)
    {
        return std::make_shared<Twitter>(TwitterEnvironment { &m_defaults, m_hosts, runsHeartbeat });
    }
    TwitterAccountPtr makeAccount(const QString& name = QStringLiteral("Alice")) const
    {
        return TwitterAccount::accountWithUsername(name, QStringLiteral("pw"), m_context);
    }
    void addAccounts(const QStringList& names)
    {
        for (const QString& name : names)
            m_twitter->addAccount(makeAccount(name));
    }
    TwitterSearchPtr makeSearch(const QString& query) const
    {
        auto search = std::make_shared<TwitterSearch>(m_context.tables, m_context.hosts);
        if (!query.isNull())
            search->setQuery(query);
        return search;
    }
    static TwitterStatusPtr status(const QString& id, const QString& author, const QDateTime& date)
    {
        return KRTestStatus(id, KRTestUser({}, author), date, QStringLiteral("x"));
    }
    /// Every list of the site is empty.
    void answerWithNothing()
    {
        for (const char* path : { "/statuses/home_timeline.xml",
                 "/statuses/replies.xml",
                 "/direct_messages.xml",
                 "/direct_messages/sent.xml" })
            m_site.answer(path, "<nothing/>");
        m_site.answer("/search.json", "{}");
    }
    /// Answers that were under way have come, and what they posted has run.
    static void settle()
    {
        std::atomic<bool> isPast = false;
        performOnSharedBackgroundThread([&] { isPast = true; });
        ASSERT_TRUE(KRWaitUntil([&] { return isPast.load(); }));
        KRRunLoop::main().runPending();
    }

    KRTestLog m_log;
    KRTestSite m_site;
    QTemporaryDir m_directory;
    KRUserDefaults m_defaults { m_directory.filePath(QStringLiteral("pelinor.ini")) };
    TwitterServiceHosts m_hosts;
    std::shared_ptr<Twitter> m_twitter;
    TwitterAccountContext m_context;
    TwitterAccountPtr m_account;
};
