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

#include <future>
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
        TwitterServiceHosts hosts = hostsWith(server.host());
        namespace Keys = TwitterServiceHostKeys;
        for (const char* key : { Keys::YFrogAPIHost,
                 Keys::TwitPicAPIHost,
                 Keys::TwitlongerAPIHost,
                 Keys::TinyURLAPIHost,
                 Keys::IsGdAPIHost })
            hosts.setValueForKey(QStringLiteral("https://%1/%2/").arg(server.host(), QLatin1String(key)),
                QLatin1String(key));
        twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, hosts, false });
        _signIn(twitter->accountContext());
    }

    static TwitterServiceHosts hostsWith(const QString& host)
    {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(host, QLatin1String(TwitterServiceHosts::RESTHostKey));
        return hosts;
    }
    /// Another account in the place of this one.
    void useSite(const TwitterSite& site)
    {
        twitter->removeAccount(account);
        _signIn(twitter->accountContextForSite(site));
    }
    void answer(const QByteArray& path, Handler handler)
    {
        std::scoped_lock guard(m_lock);
        m_handlers[path] = std::move(handler);
    }
    void answer(const QByteArray& path, int status, const QByteArray& body)
    {
        answer(path, KRTestServer::always(status, body));
    }
    /// The requests to the path, in order.
    QList<KRTestServer::Request> requestsTo(const QByteArray& path) const
    {
        QList<KRTestServer::Request> found = server.requests();
        found.removeIf([&](const auto& request) { return !request.target.startsWith(path); });
        return found;
    }
    QString fileWith(const QString& name, const QByteArray& content) const
    {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    /// From a handler: has it done before the answer goes out.
    static void runOnMainThread(const std::function<void()>& what)
    {
        std::promise<void> done;
        KRRunLoop::main().post([&] {
            what();
            done.set_value();
        });
        done.get_future().wait();
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
    void _signIn(const TwitterAccountContext& context)
    {
        account = TwitterAccount::accountWithUsername(QStringLiteral("alice"),
            QStringLiteral("wonderland"),
            context);
        twitter->addAccount(account);
    }
    void _answer(const KRTestServer::Request& request, KRTestServer::Connection& connection)
    {
        Handler handler = KRTestServer::always(200, "<nothing/>");
        {
            std::scoped_lock guard(m_lock);
            if (const auto found = m_handlers.find(request.target.split('?').first());
                found != m_handlers.end())
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
