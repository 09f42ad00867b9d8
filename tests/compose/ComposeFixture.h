#pragma once

#include "api/TwitterServiceHostKeys.h"
#include "compose/PelinorPosting.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTestLog.h"
#include "support/KRTestServer.h"
#include "support/KRTestWait.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPConnection.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <map>

/// A site over TLS with the outside services in folders of their own, and an account there.
class ComposeFixture : public testing::Test {
protected:
    using Handler = KRTestServer::Handler;

    ComposeFixture()
        : server([this](const auto& request, auto& connection) { _answer(request, connection); },
            KRTestCertificate::Good)
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        TwitterServiceHosts hosts;
        hosts.setValueForKey(server.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        for (const char* key : { TwitterServiceHostKeys::YFrogAPIHost,
                 TwitterServiceHostKeys::TwitPicAPIHost,
                 TwitterServiceHostKeys::TwitlongerAPIHost,
                 TwitterServiceHostKeys::TinyURLAPIHost,
                 TwitterServiceHostKeys::IsGdAPIHost })
            hosts.setValueForKey(QStringLiteral("https://%1/%2/").arg(server.host(), QLatin1String(key)),
                QLatin1String(key));
        twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, hosts, false });
        account = TwitterAccount::accountWithUsername(QStringLiteral("alice"),
            QStringLiteral("wonderland"),
            twitter->accountContext());
        answer("/account/verify_credentials.xml", KRTestServer::always(200, "<nothing/>"));
        twitter->addAccount(account);
    }

    void answer(const QByteArray& path, Handler handler)
    {
        std::scoped_lock guard(m_lock);
        m_handlers[path] = std::move(handler);
    }
    /// The requests to the path, in order.
    QList<KRTestServer::Request> requestsTo(const QByteArray& path) const
    {
        QList<KRTestServer::Request> found;
        for (const KRTestServer::Request& request : server.requests()) {
            if (request.target.startsWith(path))
                found.append(request);
        }
        return found;
    }
    QString fileWith(const QString& name, const QByteArray& content) const
    {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    /// Answers that were under way have come, and what follows them has run.
    static void settle()
    {
        std::atomic<bool> isPast = false;
        performOnSharedBackgroundThread([&] { isPast = true; });
        ASSERT_TRUE(KRWaitUntil([&] { return isPast.load(); }));
        KRRunLoop::main().runPending();
    }

private:
    void _answer(const KRTestServer::Request& request, KRTestServer::Connection& connection)
    {
        Handler handler = KRTestServer::always(200, "<nothing/>");
        {
            std::scoped_lock guard(m_lock);
            const QByteArray path = request.target.split('?').first();
            if (const auto found = m_handlers.find(path); found != m_handlers.end())
                handler = found->second;
        }
        handler(request, connection);
    }

    std::mutex m_lock;
    std::map<QByteArray, Handler> m_handlers;

protected:
    KRTestLog log;
    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("pelinor.ini")) };
    std::shared_ptr<Twitter> twitter;
    TwitterAccountPtr account;
    KRTestServer server;
};
