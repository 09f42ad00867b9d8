#include "KRRatioBenchmark.h"
#include "model/records/TwitterStatus.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <libxml/parser.h>
#include <yajl/yajl_parse.h>

namespace {

QByteArray pageOf200Statuses()
{
    QFile file(QStringLiteral(PELINOR_TEST_DATA "/gnu-social/home_timeline.count_200.body.xml"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// libxml2 alone: the hooks are there and do nothing.
void bareSAXPass(const QByteArray& page)
{
    xmlSAXHandler handler {};
    handler.startElement = [](void*, const xmlChar*, const xmlChar**) {};
    handler.endElement = [](void*, const xmlChar*) {};
    handler.characters = [](void*, const xmlChar*, int) {};
    benchmark::DoNotOptimize(
        xmlSAXUserParseMemory(&handler, nullptr, page.constData(), static_cast<int>(page.size())));
}

void statusesOfAPageOf200(benchmark::State& state)
{
    const QByteArray page = pageOf200Statuses();
    if (TwitterStatus::statusesWithXML(page).isError()) {
        state.SkipWithError("the page cannot be read");
        return;
    }
    KRRunBesideYardstick(
        state,
        [&] { benchmark::DoNotOptimize(TwitterStatus::statusesWithXML(page)); },
        [&] { bareSAXPass(page); });
}
BENCHMARK(statusesOfAPageOf200)->UseManualTime()->Unit(benchmark::kMillisecond);

// A page of 100 results made of a real site's, each with an ID of its own.
QByteArray pageOf100Results(const QString& name)
{
    QFile file(QStringLiteral(PELINOR_TEST_DATA "/gnu-social/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonDocument answer = QJsonDocument::fromJson(file.readAll());
    const QString resultsKey = QStringLiteral("results");
    const QJsonArray results = answer.isArray() ? answer.array() : answer.object()[resultsKey].toArray();
    QJsonArray page;
    for (int i = 0; i < 100; ++i) {
        QJsonObject result = results[i % results.size()].toObject();
        result[QStringLiteral("id")] = QString::number(1000 - i);
        page.append(result);
    }
    if (answer.isArray())
        return QJsonDocument(page).toJson(QJsonDocument::Compact);
    QJsonObject pageWithResults = answer.object();
    pageWithResults[resultsKey] = page;
    return QJsonDocument(pageWithResults).toJson(QJsonDocument::Compact);
}

// yajl alone: the hooks are there and do nothing.
void bareTokenizerPass(const QByteArray& page)
{
    static constexpr auto nothing = [](void*) { return 1; };
    static constexpr auto text = [](void*, const unsigned char*, size_t) { return 1; };
    static constexpr yajl_callbacks callbacks { nothing,
        [](void*, int) { return 1; },
        nullptr,
        nullptr,
        [](void*, const char*, size_t) { return 1; },
        text,
        nothing,
        text,
        nothing,
        nothing,
        nothing };
    const yajl_handle handle = yajl_alloc(&callbacks, nullptr, nullptr);
    benchmark::DoNotOptimize(yajl_parse(handle,
        reinterpret_cast<const unsigned char*>(page.constData()),
        static_cast<size_t>(page.size())));
    yajl_free(handle);
}

void statusesOf100SearchResults(benchmark::State& state, const QString& name)
{
    const QByteArray page = pageOf100Results(name);
    const auto statuses = TwitterStatus::statusesWithSearchJSON(page);
    if (statuses.isError() || statuses.value().size() != 100) {
        state.SkipWithError("the results cannot be read");
        return;
    }
    KRRunBesideYardstick(
        state,
        [&] { benchmark::DoNotOptimize(TwitterStatus::statusesWithSearchJSON(page)); },
        [&] { bareTokenizerPass(page); });
}
BENCHMARK_CAPTURE(statusesOf100SearchResults, classic, QStringLiteral("search_classic.word.body.json"))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(statusesOf100SearchResults, full, QStringLiteral("search.word.body.json"))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
