// A full timeline of real cells: one step of scrolling through it, painting included; a reload of it after
// one new post; and ten seconds in which nothing happens.

#include "app/lists/PelinorTweetsListViewController.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "toolkit/KRTableViewDocumentView.h"

#include <QApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <vector>

namespace {

constexpr int PostCount = 500;
constexpr int StepHeight = 40;

class Timeline final : public TwitterStream {
public:
    TwitterStatusList statuses() const override { return rows; }
    void setStatuses(const TwitterStatusList& statuses) override { rows = statuses; }
    void loadNewer() override { }
    void loadOlder() override { }

    TwitterStatusList rows;
};

class Account final : public PelinorListAccount {
public:
    QString username() const override { return QStringLiteral("me"); }
    bool isAuthorOfStatus(const TwitterStatus& status) const override
    {
        return status.statusID().endsWith(u'7');
    }
    std::shared_ptr<TwitterStream> timelineStream() override { return timeline; }
    void noteFreshTweets() override { }

    std::shared_ptr<Timeline> timeline = std::make_shared<Timeline>();
};

TwitterStatusPtr makePost(int number)
{
    static const QString pieces[] = {
        QStringLiteral("Reading about tide tables before the walk tomorrow; "),
        QStringLiteral("@marion have you seen http://example.org/notes/2026/tides.html yet? "),
        QStringLiteral("the second half is where it gets good #walking #coast "),
        QStringLiteral("– or write to tides@example.org 🌊 "),
    };
    static const TwitterUserPtr author = [] {
        auto user = std::make_shared<TwitterUser>();
        user->setUsername(QStringLiteral("marion"));
        user->setFullName(QStringLiteral("Marion Lindqvist"));
        return user;
    }();
    QString text = QString::number(number) + u' ';
    for (int piece = number; text.size() < 140; ++piece)
        text += pieces[piece % 4];
    text.truncate(140);
    auto post = std::make_shared<TwitterStatus>();
    post->setStatusID(QString::number(number));
    post->setText(text);
    post->setFromUser(author);
    post->setDate(KRNow().addSecs(-60 * (PostCount - number)));
    return post;
}

class List {
public:
    List()
    {
        for (int number = PostCount; number > 0; --number)
            account.timeline->rows.append(makePost(number));
        account.timeline->rows.append(std::make_shared<TwitterDummyEndOfStreamStatus>());
        window.resize(1000, 800);
        controller.tableView().setParent(&window);
        controller.tableView().setFrame(window.rect());
        window.show();
        controller.viewWillAppear(false);
        QCoreApplication::processEvents();
    }

    KRQtRunLoopDriver driver;
    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRNotificationCenter center;
    PelinorDisplayPreferences preferences;
    KRTextHeightCache heights;
    Account account;
    QWidget window;
    PelinorTweetsListViewController controller { { defaults, center, preferences, heights }, account };
};

// Processor time, for what else the machine does is not the list's.
double milliseconds(clockid_t clock)
{
    timespec time {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

void scrollStep(benchmark::State& state)
{
    List list;
    KRTableView& table = list.controller.tableView();
    std::vector<double> steps;
    int y = 0;
    qsizetype mostRowsOnScreen = 0;
    for ([[maybe_unused]] auto iteration : state) {
        y += StepHeight;
        if (y > table.totalHeight() - table.height())
            y = 0;
        const double start = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        table.scrollToPoint({ 0, y }, KRScrollView::Animated::No);
        QCoreApplication::processEvents();
        steps.push_back(milliseconds(CLOCK_THREAD_CPUTIME_ID) - start);
        state.SetIterationTime(steps.back() / 1000);
        mostRowsOnScreen = std::max(mostRowsOnScreen, table.visibleRange().length);
    }
    // Cells that wait for their next row included.
    const auto cells = table.documentView()->findChildren<PelinorStatusTableViewCell*>();
    std::sort(steps.begin(), steps.end());
    state.counters["cells_beyond_screen"] = double(cells.size() - mostRowsOnScreen);
    state.counters["median_ms"] = steps[steps.size() / 2];
    state.counters["worst_ms"] = steps.back();
}
BENCHMARK(scrollStep)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(500);

void reloadAfterOneNewPost(benchmark::State& state)
{
    List list;
    int number = PostCount;
    for ([[maybe_unused]] auto iteration : state) {
        TwitterStatusList rows = list.account.timeline->rows;
        rows.prepend(makePost(++number));
        list.account.timeline->rows = rows;
        const double start = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        list.controller.setStatuses(rows);
        state.SetIterationTime((milliseconds(CLOCK_THREAD_CPUTIME_ID) - start) / 1000);
    }
}
BENCHMARK(reloadAfterOneNewPost)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

void idle(benchmark::State& state)
{
    List list;
    QEventLoop loop;
    for ([[maybe_unused]] auto iteration : state) {
        // What the start has left to do is not idling.
        QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        loop.exec();
        const double before = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
        QTimer::singleShot(10000, &loop, &QEventLoop::quit);
        loop.exec();
        state.counters["processor_ms"] = milliseconds(CLOCK_PROCESS_CPUTIME_ID) - before;
    }
}
BENCHMARK(idle)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
