#pragma once

#include "app/PelinorAppDelegate.h"
#include "app/window/PelinorMainWindowController.h"
#include "core/Twitter.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "toolkit/transitions/KRMotion.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPConnection.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <ctime>
#include <functional>

/// The whole program in this process, with accounts of one site that keep a search each: five streams an
/// account. Without motion, and without a heartbeat of its own. Needs a QApplication and a home from
/// KRBenchmarkHome.
class KRBenchmarkProgram {
public:
    KRBenchmarkProgram(const QString& host, const QString& caFile, int accountCount)
    {
        KRMotion::setEnabledByProgram(false);
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = caFile;
        KRHTTPTransportSettings::setCurrent(settings);
        TwitterServiceHosts hosts;
        hosts.setValueForKey(host, QLatin1String(TwitterServiceHosts::RESTHostKey));
        hosts.setValueForKey(QStringLiteral("https://") + host,
            QLatin1String(TwitterServiceHosts::searchHostKey));
        twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, hosts, false, true });
        for (int number = 1; number <= accountCount; ++number) {
            const QString name = QStringLiteral("reader%1").arg(number);
            const auto context = twitter->accountContext();
            auto account = TwitterAccount::accountWithUsername(name, QStringLiteral("secret"), context);
            auto search = std::make_shared<TwitterSearch>(context.tables, context.hosts);
            search->setQuery(QStringLiteral("what-%1-likes").arg(name));
            account->addSavedSearch(search);
            twitter->addAccount(account);
        }
        delegate = std::make_unique<PelinorAppDelegate>(*twitter, defaults);
        delegate->applicationDidFinishLaunching();
    }
    KRBenchmarkProgram(const KRBenchmarkProgram&) = delete;
    KRBenchmarkProgram& operator=(const KRBenchmarkProgram&) = delete;
    ~KRBenchmarkProgram()
    {
        delegate.reset();
        twitter.reset();
        KRRunLoop::main().clear();
    }

    PelinorMainWindowController& window() { return *delegate->mainWindowController(); }

    /// Whether every stream has at least so many posts or messages.
    [[nodiscard]] bool hasInEveryStream(qsizetype count) const
    {
        const QList<TwitterAccountPtr>& accounts = twitter->accounts();
        return std::all_of(accounts.begin(), accounts.end(), [count](const TwitterAccountPtr& account) {
            const auto& messages = account->directMessagesManager();
            return account->timelineStream()->storedStatuses().size() >= count
                && account->repliesStream()->storedStatuses().size() >= count
                && account->savedSearches().first()->stream()->storedStatuses().size() >= count
                && messages->receivedStream()->messages().size() >= count
                && messages->sentStream()->messages().size() >= count;
        });
    }

    /// One turn of the event loop, which waits for something to happen: an input of the user's would wait as
    /// long. The processor time it took on this thread, in milliseconds.
    static double turn()
    {
        const double before = milliseconds();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return milliseconds() - before;
    }
    /// Turns until the condition holds, for a minute at most; whether it does.
    static bool waitUntil(const std::function<bool()>& condition)
    {
        QTimer pulse;
        pulse.start(200);
        QElapsedTimer timer;
        timer.start();
        while (!condition() && timer.elapsed() < 60'000)
            turn();
        return condition();
    }
    static void rest(int time)
    {
        QElapsedTimer timer;
        timer.start();
        waitUntil([&] { return timer.elapsed() > time; });
    }
    // Processor time, for what else the machine does is not the program's.
    static double milliseconds()
    {
        timespec time {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRQtRunLoopDriver driver;
    std::shared_ptr<Twitter> twitter;
    std::unique_ptr<PelinorAppDelegate> delegate;
};

/// A home of its own for the process, and no keyring: how long one takes is not the program's doing, and the
/// user's own is not to be touched. The first thing in main().
class KRBenchmarkHome {
public:
    KRBenchmarkHome()
    {
        for (const char* name : { "HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME" })
            qputenv(name, m_directory.path().toUtf8());
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    KRBenchmarkHome(const KRBenchmarkHome&) = delete;
    KRBenchmarkHome& operator=(const KRBenchmarkHome&) = delete;
    ~KRBenchmarkHome() { KRBackgroundThread::stopShared(); }

private:
    QTemporaryDir m_directory;
};
