#include "KRRatioBenchmark.h"
#include "model/records/TwitterStatus.h"

#include <QFile>

#include <libxml/parser.h>

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

} // namespace
