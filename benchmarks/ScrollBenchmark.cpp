// One step of scrolling through a full timeline of real cells, painting included; and a reload of it after
// one new post.

#include "app/PelinorTweetsListViewController.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"

#include <QApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
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

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRNotificationCenter center;
    PelinorDisplayPreferences preferences;
    KRTextHeightCache heights;
    Account account;
    QWidget window;
    PelinorTweetsListViewController controller { { defaults, center, preferences, heights }, account };
};

void scrollStep(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    List list;
    KRTableView& table = list.controller.tableView();
    std::vector<double> steps;
    int y = 0;
    for ([[maybe_unused]] auto iteration : state) {
        y += StepHeight;
        if (y > table.totalHeight() - table.height())
            y = 0;
        const auto start = Clock::now();
        table.scrollToPoint({ 0, y }, KRScrollView::Animated::No);
        QCoreApplication::processEvents();
        steps.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        state.SetIterationTime(steps.back() / 1000);
    }
    std::sort(steps.begin(), steps.end());
    state.counters["median_ms"] = steps[steps.size() / 2];
    state.counters["worst_ms"] = steps.back();
}
BENCHMARK(scrollStep)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(500);

void reloadAfterOneNewPost(benchmark::State& state)
{
    List list;
    int number = PostCount;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        TwitterStatusList rows = list.account.timeline->rows;
        rows.prepend(makePost(++number));
        list.account.timeline->rows = rows;
        state.ResumeTiming();
        list.controller.setStatuses(rows);
    }
}
BENCHMARK(reloadAfterOneNewPost)->Unit(benchmark::kMillisecond)->Iterations(50);

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
