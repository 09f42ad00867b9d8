// A full timeline of real cells: one step of scrolling through it, painting included; a reload of it after
// one new post; and ten seconds in which nothing happens.

#include "app/lists/PelinorListFakes.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "toolkit/KRTableViewDocumentView.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <vector>

namespace {

constexpr int PostCount = 500;
constexpr int StepHeight = 40;

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
            stream->posts.append(makePost(number));
        stream->isAtEnd = true;
        window.resize(1000, 800);
        controller.tableView().setParent(&window);
        controller.tableView().setFrame(window.rect());
        window.show();
        controller.viewWillAppear(false);
        QCoreApplication::processEvents();
    }

    KRQtRunLoopDriver driver;
    FakeSurroundings surroundings;
    std::shared_ptr<FakeStream> stream = std::make_shared<FakeStream>(surroundings.center);
    QWidget window;
    FakeTimeline controller { surroundings, stream };
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
        TwitterStatusList rows = list.stream->posts;
        rows.prepend(makePost(++number));
        list.stream->posts = rows;
        const double start = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        list.controller.setStatuses(list.stream->statuses());
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
