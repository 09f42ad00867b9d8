// Keys pressed in the middle of a long text full of links, tags and names, one after the other: how long each of
// them takes until the window shows it, colours, backdrops, counter and the note for the disk included.

#include "api/TwitterServiceHostKeys.h"
#include "app/writing/PelinorComposeWindowController.h"
#include "app/writing/PelinorTextView.h"
#include "core/TwitterAccount.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "toolkit/transitions/KRMotion.h"
#include "transport/KRBackgroundThread.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <vector>

namespace {

// Processor time, for what else the machine does is not the window's.
double milliseconds()
{
    timespec time {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

struct Writing {
    explicit Writing(qsizetype length)
    {
        KRMotion::setEnabledByProgram(false);
        // Nobody is there to answer.
        TwitterServiceHosts hosts;
        hosts.setValueForKey(QStringLiteral("127.0.0.1:1"), QLatin1String(TwitterServiceHosts::RESTHostKey));
        twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, hosts, false, true });
        twitter->addAccount(TwitterAccount::accountWithUsername(QStringLiteral("alice"),
            QStringLiteral("secret"),
            twitter->accountContext()));
        controller = std::make_unique<PelinorComposeWindowController>(*twitter,
            defaults,
            std::make_shared<PelinorDraftStore>(directory.filePath(QStringLiteral("drafts")),
                directory.filePath(QStringLiteral("pictures"))));
        controller->setAccount(twitter->accounts().first());
        controller->showWindow();
        const QString piece = QStringLiteral(
            "Reading about tide tables; @marion have you seen http://example.org/notes/2026/tides.html "
            "yet? #walking 🌊 ");
        QTextCursor cursor(controller->textView().document());
        cursor.insertText(piece.repeated(length / piece.size() + 1).left(length));
        cursor.setPosition(int(length / 2));
        controller->textView().setTextCursor(cursor);
        QCoreApplication::processEvents();
    }

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRQtRunLoopDriver driver;
    std::shared_ptr<Twitter> twitter;
    std::unique_ptr<PelinorComposeWindowController> controller;
};

void keyPress(benchmark::State& state)
{
    Writing writing(state.range(0));
    const QString typed = QStringLiteral("see #tide and @marion ");
    std::vector<double> times;
    for ([[maybe_unused]] auto iteration : state) {
        const QString key = typed.at(qsizetype(times.size()) % typed.size());
        const double start = milliseconds();
        for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
            QKeyEvent event(type, 0, Qt::NoModifier, key);
            QCoreApplication::sendEvent(&writing.controller->textView(), &event);
        }
        QCoreApplication::processEvents();
        times.push_back(milliseconds() - start);
        state.SetIterationTime(times.back() / 1e3);
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["worst_ms"] = times.back();
}
BENCHMARK(keyPress)
    ->Arg(140)
    ->Arg(1000)
    ->Arg(5000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // No keyring: how long one takes is not the window's doing.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    KRBackgroundThread::stopShared();
    return 0;
}
