// How long the heights of a full list's rows take, against a bare QTextLayout pass over the same texts.

#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRTextHeightCache.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int RowCount = 500;
constexpr int TextWidth = 286;

struct Row {
    QString text;
    KRActiveTextRanges ranges;
};

std::vector<Row> makeRows()
{
    const QString pieces[] = {
        QStringLiteral("Reading about tide tables before the walk tomorrow; "),
        QStringLiteral("@marion have you seen http://example.org/notes/2026/tides.html yet? "),
        QStringLiteral("the second half is where it gets good #walking #coast "),
        QStringLiteral("– or write to tides@example.org 🌊 "),
    };
    std::vector<Row> rows;
    for (int number = 0; number < RowCount; ++number) {
        QString text = QString::number(number) + u' ';
        for (int piece = number; text.size() < 140; ++piece)
            text += pieces[piece % 4];
        text.truncate(140);
        rows.push_back({ text, KRActiveTextRanges(text) });
    }
    return rows;
}

// All that any program must do to know how tall a text is.
qreal bareHeight(const QString& text, const QFont& font)
{
    QTextLayout layout(text, font);
    qreal height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(TextWidth);
        height += line.height();
    }
    layout.endLayout();
    return height;
}

double seconds(Clock::time_point from)
{
    return std::chrono::duration<double>(Clock::now() - from).count();
}

void rowHeights(benchmark::State& state)
{
    const std::vector<Row> rows = makeRows();
    const QFont font = KRStatusFont(KRStatusTextSize::Normal, {});
    double bare = 0;
    double ours = 0;
    for ([[maybe_unused]] auto iteration : state) {
        Clock::time_point start = Clock::now();
        for (const Row& row : rows)
            benchmark::DoNotOptimize(bareHeight(row.text, font));
        bare += seconds(start);
        start = Clock::now();
        KRTextHeightCache cache;
        for (const Row& row : rows) {
            benchmark::DoNotOptimize(cache.height(row.text, font, TextWidth, [&row] {
                return AttributedStringForStatus(row.text, row.ranges, KRStatusTextSize::Normal);
            }));
        }
        ours += seconds(start);
        state.SetIterationTime(seconds(start));
    }
    const auto iterations = double(state.iterations());
    state.counters["bare_ms"] = bare * 1000 / iterations;
    state.counters["ours_ms"] = ours * 1000 / iterations;
    state.counters["ratio"] = ours / bare;
}
BENCHMARK(rowHeights)->UseManualTime()->Unit(benchmark::kMillisecond);

// A list laid out again after one new post has come.
void rowHeightsAfterOneNewPost(benchmark::State& state)
{
    const std::vector<Row> rows = makeRows();
    const QFont font = KRStatusFont(KRStatusTextSize::Normal, {});
    KRTextHeightCache cache;
    const auto measure = [&](const Row& row) {
        benchmark::DoNotOptimize(cache.height(row.text, font, TextWidth, [&row] {
            return AttributedStringForStatus(row.text, row.ranges, KRStatusTextSize::Normal);
        }));
    };
    for (const Row& row : rows)
        measure(row);
    const int measuredBefore = cache.measuredCount();
    int number = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const QString text = QStringLiteral("new post %1, as long as most of them are").arg(++number);
        measure({ text, KRActiveTextRanges(text) });
        for (const Row& row : rows)
            measure(row);
    }
    state.counters["measured_per_reload"]
        = double(cache.measuredCount() - measuredBefore) / double(state.iterations());
}
BENCHMARK(rowHeightsAfterOneNewPost)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
