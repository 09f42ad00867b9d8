// The whole program with five accounts, whose five streams each are loaded from a site in this process: going
// from one list to another, and what a heartbeat costs the main thread.

#include "KRBenchmarkProgram.h"
#include "KRBenchmarkSite.h"
#include "app/PelinorApplication.h"
#include "app/lists/PelinorStatusListViewController.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

using Program = KRBenchmarkProgram;

constexpr int AccountCount = 5;
constexpr int StreamCount = 5 * AccountCount;
// Timelines and mentions.
constexpr int ListCount = 2 * AccountCount;
// A list that has been cut is one short of full.
constexpr int FullStream = 499;

/// Says when the list on top is painted.
class PaintWatch final : public QObject {
public:
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<PelinorStatusTableViewCell*>(receiver))
            m_isPainted = true;
        return false;
    }
    /// Processor time on this thread from the action to the painting, in milliseconds.
    double timeOf(const std::function<void()>& action)
    {
        m_isPainted = false;
        const double before = Program::milliseconds();
        action();
        for (int turns = 0; !m_isPainted && turns < 100; ++turns)
            QCoreApplication::processEvents();
        return m_isPainted ? Program::milliseconds() - before : -1;
    }

private:
    bool m_isPainted = false;
};

void switchTo500Rows(benchmark::State& state, bool isFirstVisit)
{
    KRBenchmarkSite site(FullStream + 1);
    Program program(site.host(), KRTestAuthorityFile(), AccountCount);
    PelinorMainWindowController& window = program.window();
    if (!Program::waitUntil([&] { return program.hasInEveryStream(FullStream); })) {
        state.SkipWithError("the streams did not fill");
        return;
    }
    Program::rest(500);
    PaintWatch watch;
    qApp->installEventFilter(&watch);
    // Through every account's timeline and mentions, and back again.
    const auto switchTab = [&] {
        if (window.sideTabs().selectedAccountTab() == PelinorMainWindowController::TimelineTab)
            window.selectReplies();
        else
            window.selectTimeline();
    };
    std::vector<std::function<void()>> steps;
    for (int i = 0; i < ListCount - 1; ++i)
        steps.push_back(i % 2 == 0 ? std::function<void()>(switchTab) : [&] { window.selectNextAccount(); });
    if (!isFirstVisit) {
        for (const auto& step : steps)
            watch.timeOf(step);
        steps.clear();
        for (int i = 0; i < ListCount - 1; ++i)
            steps.push_back(
                i % 2 == 0 ? std::function<void()>(switchTab) : [&] { window.selectPreviousAccount(); });
    }
    std::vector<double> times;
    for ([[maybe_unused]] auto iteration : state) {
        times.push_back(watch.timeOf(steps[times.size()]));
        state.SetIterationTime(times.back() / 1000);
        const auto* const list = window.topList();
        if (!list || list->statuses().size() <= FullStream) {
            state.SkipWithError("the list is not full");
            return;
        }
        // The avatars come.
        Program::rest(100);
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["worst_ms"] = times.back();
    if (times.front() < 0)
        state.SkipWithError("a list was not painted");
}
BENCHMARK_CAPTURE(switchTo500Rows, firstVisit, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(ListCount - 1);
BENCHMARK_CAPTURE(switchTo500Rows, again, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(ListCount - 1);

// Every account's turn comes two seconds after the one before, and its search's three seconds after that.
void heartbeat(benchmark::State& state)
{
    constexpr int PostsOfAPage = 200;
    KRBenchmarkSite site(PostsOfAPage);
    Program program(site.host(), KRTestAuthorityFile(), AccountCount);
    const auto pagesHaveCome
        = [&](int count) { return Program::waitUntil([&] { return site.pageCount() >= count; }); };
    // Lists that are full already: that is what there is to merge with.
    int pages = StreamCount;
    bool works = pagesHaveCome(pages);
    while (works && !program.hasInEveryStream(2 * PostsOfAPage)) {
        pages += StreamCount;
        program.twitter->heartbeat();
        works = pagesHaveCome(pages);
        Program::rest(500);
    }
    std::vector<double> turns;
    for ([[maybe_unused]] auto iteration : state) {
        double total = 0;
        pages += StreamCount;
        program.twitter->heartbeat();
        QElapsedTimer quiet;
        QTimer pulse;
        pulse.start(500);
        quiet.start();
        while (quiet.elapsed() < 1000) {
            turns.push_back(Program::turn());
            total += turns.back();
            if (site.pageCount() < pages)
                quiet.restart();
        }
        state.SetIterationTime(total / 1000);
    }
    works = works && site.pageCount() >= pages;
    state.counters["stall_ms"] = *std::max_element(turns.begin(), turns.end());
    if (!works)
        state.SkipWithError("the pages did not come");
}
BENCHMARK(heartbeat)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

} // namespace

int main(int argc, char** argv)
{
    const KRBenchmarkHome home;
    const PelinorApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
