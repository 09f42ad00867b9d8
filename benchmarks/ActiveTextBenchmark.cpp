#include "KRRatioBenchmark.h"
#include "text/KRActiveTextRanges.h"

#include <QStringList>

#include <array>
#include <unicode/uregex.h>

using namespace Qt::StringLiterals;

namespace {

// 200 posts of 140 characters: half of them plain, the rest with what people put into posts.
QStringList posts()
{
    const QStringList pieces { u"the weather is nice today and I am going for a walk"_s,
        u"@carol did you see http://example.org/path/to/page?x=1 yesterday"_s,
        u"reading #books about #history, slowly but with joy"_s,
        u"Zażółć gęślą jaźń i pies — 日本語テキスト 😀 ok"_s,
        u"lunch was 12:30, costs 3.50 and it was (almost) worth it."_s,
        u"write to jane.doe@mail.example.com or @bob about it"_s,
        u"$AAPL is up, $IBM is down, what do I know"_s,
        u"nothing much to say about this, just typing along here"_s };
    QStringList texts;
    for (int i = 0; i < 200; ++i) {
        QString text;
        for (int k = 0; text.size() < 140; ++k)
            text += pieces[i % 2 == 0 ? (k % 2 == 0 ? 0 : 7) : (i / 2 + k * 3) % pieces.size()] + u' ';
        texts.append(text.left(140));
    }
    return texts;
}

// The five patterns, each searched for in every text by ICU alone.
class BarePasses {
public:
    BarePasses()
    {
        UErrorCode error = U_ZERO_ERROR;
        const char16_t* const patterns[]
            = { KRLinkRegex, KRHashTagRegex, KRTwitterUsernameRegex, KRStockSymbolRegex, KREmailRegex };
        for (size_t i = 0; i < m_expressions.size(); ++i)
            m_expressions[i] = uregex_open(patterns[i], -1, 0, nullptr, &error);
    }
    BarePasses(const BarePasses&) = delete;
    BarePasses& operator=(const BarePasses&) = delete;
    ~BarePasses()
    {
        for (URegularExpression* expression : m_expressions)
            uregex_close(expression);
    }

    int run(const QStringList& texts)
    {
        int matches = 0;
        for (const QString& text : texts) {
            for (URegularExpression* expression : m_expressions) {
                UErrorCode error = U_ZERO_ERROR;
                uregex_setText(expression,
                    QStringView(text).utf16(),
                    static_cast<int32_t>(text.size()),
                    &error);
                while (uregex_findNext(expression, &error))
                    ++matches;
            }
        }
        return matches;
    }

private:
    std::array<URegularExpression*, 5> m_expressions {};
};

void activeRangesOf200Posts(benchmark::State& state)
{
    const QStringList texts = posts();
    BarePasses barePasses;
    KRRunBesideYardstick(
        state,
        [&] {
            for (const QString& text : texts)
                benchmark::DoNotOptimize(KRActiveTextRanges(text));
        },
        [&] { benchmark::DoNotOptimize(barePasses.run(texts)); });
}
BENCHMARK(activeRangesOf200Posts)->UseManualTime()->Unit(benchmark::kMicrosecond);

// What the compose window does at each key, with a draft that plain patterns cannot cope with at all.
void hostileDraft(benchmark::State& state)
{
    const QString draft
        = QString(5000, u'a') + u"://((( "_s + QString(u"a-"_s).repeated(2500) + u"://((( a@"_s;
    for (auto _ : state)
        benchmark::DoNotOptimize(KRActiveTextRanges(draft));
}
BENCHMARK(hostileDraft)->Unit(benchmark::kMillisecond);

} // namespace
