// A page of new posts merged into a full timeline: uniquing, the user's filter, duplicates, sorting, the cut.

#include "foundation/KRClock.h"
#include "foundation/KRMainThreadObject.h"
#include "foundation/KRUserDefaults.h"
#include "model/records/TwitterUniquingTables.h"
#include "model/streams/TwitterAccountStream.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <ctime>

namespace {

constexpr int storedCount = 500;
constexpr int newCount = 200;
constexpr int authorCount = 60;

TwitterStatusPtr makeStatus(int number)
{
    const auto author = std::make_shared<TwitterUser>();
    author->setUserID(QString::number(number % authorCount));
    author->setUsername(QStringLiteral("Author%1").arg(number % authorCount));
    auto status = std::make_shared<TwitterStatus>();
    status->setStatusID(QString::number(number));
    status->setText(
        QStringLiteral("%1 the tide is out until four, so we walk around the head #coast @author%2 "
                       "http://example.org/tides/%1.html and are back for tea")
            .arg(number)
            .arg(number % authorCount));
    status->setFromUser(author);
    status->setDate(QDateTime(QDate(2026, 11, 1), QTime(0, 0), Qt::UTC).addSecs(number * 60LL));
    return status;
}

/// Newest first, as a service sends them.
TwitterStatusList makeStatuses(int first, int count)
{
    TwitterStatusList statuses;
    for (int number = first + count - 1; number >= first; --number)
        statuses.append(makeStatus(number));
    return statuses;
}

/// Seconds that this thread has computed: merging waits for nothing, so on an idle machine it takes as long,
/// and on a busy one the figure stays the same.
double computingTime()
{
    timespec time {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void merge200Into500(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state) {
        const auto stream
            = KRMakeMainThreadObject<TwitterTimelineStream>(std::make_shared<TwitterUniquingTables>());
        stream->addStatuses(makeStatuses(1, storedCount));
        const TwitterStatusList page = makeStatuses(storedCount + 1, newCount);
        const double start = computingTime();
        stream->addStatuses(page);
        state.SetIterationTime(computingTime() - start);
        if (stream->storedStatuses().size() != TwitterConcreteStatusesStream::statusesAfterCut)
            state.SkipWithError("the merged list has the wrong length");
    }
}
BENCHMARK(merge200Into500)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    // Terms that match nothing are the dear case: every post is searched for each of them.
    KRUserDefaults::standardUserDefaults().setStringList("filterTerms",
        { QStringLiteral("spoiler"), QStringLiteral("giveaway"), QStringLiteral("match report") });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
