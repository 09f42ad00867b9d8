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
        m_text = QStringLiteral("Reading about tide tables; @marion have you seen "
                                "http://example.org/notes/2026/tides.html yet? #walking 🌊 ");
        m_text = m_text.repeated(length / m_text.size() + 1).left(length);
    }

    /// The text as it was, and the cursor in the middle of it.
    void begin()
    {
        controller->textView().setPlainText(m_text);
        QTextCursor cursor(controller->textView().document());
        cursor.setPosition(int(m_text.size() / 2));
        controller->textView().setTextCursor(cursor);
        QCoreApplication::processEvents();
    }

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRQtRunLoopDriver driver;
    std::shared_ptr<Twitter> twitter;
    std::unique_ptr<PelinorComposeWindowController> controller;

private:
    QString m_text;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Each key is pressed once a round, and counts with the median of its rounds: the worst of all would say how busy
// the machine is.
void keyPress(benchmark::State& state)
{
    Writing writing(state.range(0));
    const QString typed = QStringLiteral("see #tide and @marion at http://example.org/tide ").repeated(2);
    std::vector<std::vector<double>> times(typed.size());
    for ([[maybe_unused]] auto iteration : state) {
        double total = 0;
        writing.begin();
        for (qsizetype place = 0; place < typed.size(); ++place) {
            const double start = milliseconds();
            for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
                QKeyEvent event(type, 0, Qt::NoModifier, typed.mid(place, 1));
                QCoreApplication::sendEvent(&writing.controller->textView(), &event);
            }
            QCoreApplication::processEvents();
            times[place].push_back(milliseconds() - start);
            total += times[place].back();
        }
        state.SetIterationTime(total / double(typed.size()) / 1e3);
    }
    std::vector<double> medians;
    for (const std::vector<double>& key : times)
        medians.push_back(median(key));
    state.counters["median_ms"] = median(medians);
    state.counters["worst_ms"] = *std::max_element(medians.begin(), medians.end());
}
BENCHMARK(keyPress)
    ->Arg(140)
    ->Arg(1000)
    ->Arg(5000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

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
