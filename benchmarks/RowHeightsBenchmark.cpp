// How long the heights of a full list's rows take, against a bare QTextLayout pass over the same texts.

#include "KRRatioBenchmark.h"
#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRTextHeightCache.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
namespace {

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

void rowHeights(benchmark::State& state)
{
    const std::vector<Row> rows = makeRows();
    const QFont font = KRStatusFont(KRStatusTextSize::Normal, {});
    const auto ours = [&] {
        KRTextHeightCache cache;
        for (const Row& row : rows) {
            benchmark::DoNotOptimize(cache.height(row.text, font, TextWidth, [&row] {
                return AttributedStringForStatus(row.text, row.ranges, KRStatusTextSize::Normal);
            }));
        }
    };
    const auto bare = [&] {
        for (const Row& row : rows)
            benchmark::DoNotOptimize(bareHeight(row.text, font));
    };
    // The first pass of all loads fonts.
    bare();
    KRRunBesideYardstick(state, ours, bare);
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
