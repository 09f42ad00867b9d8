#include "support/KRTest.h"
#include "text/KRActiveTextRanges.h"

#include <future>
#include <random>
#include <unicode/uregex.h>

using namespace KRAdditions;

namespace {

// What the patterns say, found the plain way: the whole pattern searched for from match to match.
KRRangeList plainMatches(const QString& text, const char16_t* pattern)
{
    UErrorCode error = U_ZERO_ERROR;
    URegularExpression* expression = uregex_open(pattern, -1, 0, nullptr, &error);
    uregex_setText(expression, QStringView(text).utf16(), static_cast<int32_t>(text.size()), &error);
    KRRangeList ranges;
    int32_t position = 0;
    while (uregex_find(expression, position, &error)) {
        const int32_t start = uregex_start(expression, 0, &error);
        position = uregex_end(expression, 0, &error);
        ranges.append({ start, position - start });
    }
    EXPECT_TRUE(U_SUCCESS(error)) << u_errorName(error);
    uregex_close(expression);
    return ranges;
}

const char16_t* const patterns[]
    = { KRLinkRegex, KRHashTagRegex, KRTwitterUsernameRegex, KRStockSymbolRegex, KREmailRegex };

TEST(ActiveText, SpansOfEachKind)
{
    static_assert(std::u16string_view(KRLinkRegex).size() == 171);
    using Kind = const KRRangeList& (KRActiveTextRanges::*)() const;
    const Kind links = &KRActiveTextRanges::links;
    const struct {
        Kind kind;
        QString text;
        // Separated by spaces.
        QString spans;
    } cases[] = {
        { links, u"Visit http://example.com/a_(b)."_s, u"http://example.com/a_(b)"_s },
        { links, u"See www.example.com, then"_s, u"www.example.com"_s },
        { links, u"x http://a"_s, u""_s },
        { links, u"(http://example.com)"_s, u"http://example.com"_s },
        { links, u"svn+ssh://host/x"_s, u"ssh://host/x"_s },
        { links, u"http://😀 http://😀😀"_s, u"http://😀😀"_s },
        { links, u"a-1-b://xy _c-d://xy 1e://xy é://xy f-://xy"_s, u"a-1-b://xy d://xy"_s },
        { links, u"wwww.xy.z www x www.(( ).www.ab"_s, u"www.ab"_s },
        { links, u"http://a.b\thttps://c.d\nftp://e.f"_s, u"http://a.b https://c.d ftp://e.f"_s },
        { links, u"http://((((( a://b(c)d://ef"_s, u"a://b(c) d://ef"_s },
        { &KRActiveTextRanges::usernames, u"@bob's me@bob @_x9 @über"_s, u"@bob @_x9"_s },
        { &KRActiveTextRanges::hashtags, u"#1 #über a#b"_s, u"#1 #über"_s },
        { &KRActiveTextRanges::stockSymbols, u"$AAPL, $toolong x$IBM"_s, u"$AAPL $toolo"_s },
        { &KRActiveTextRanges::emailAddresses,
            u"write to a.b+c@mail.example.com now, or x@y@example.org, é@example.org"_s,
            u"a.b+c@mail.example.com y@example.org"_s },
        // The five lists one after the other.
        { &KRActiveTextRanges::activeRanges,
            u"a@b.com $IBM @bob #tag http://example.org/#faq"_s,
            u"http://example.org/#faq #tag #faq @bob $IBM a@b.com"_s },
        { &KRActiveTextRanges::activeRanges, u""_s, u""_s },
        { &KRActiveTextRanges::activeRanges, QString(), u""_s },
    };
    for (const auto& test : cases) {
        const KRActiveTextRanges ranges(test.text);
        QStringList spans;
        for (const KRRange& range : (ranges.*test.kind)())
            spans.append(KRSubstring(test.text, range));
        EXPECT_EQ(spans.join(u' '), test.spans) << qPrintable(test.text);
    }
}

TEST(ActiveText, KindOfAWholeString)
{
    const std::pair<const char16_t*, KRActiveStringType> cases[] = {
        { u"http://example.org", KRActiveStringTypeLink },
        { u"#tag", KRActiveStringTypeHashtag },
        { u"@bob", KRActiveStringTypeUsername },
        { u"$IBM", KRActiveStringTypeStockSymbol },
        { u"bob@example.org", KRActiveStringTypeEmailAddress },
        { u"hello", KRActiveStringTypeNone },
        { u"@bob hi", KRActiveStringTypeNone },
        { u"@bob@example", KRActiveStringTypeNone },
        { u"", KRActiveStringTypeNone },
    };
    for (const auto& [text, type] : cases)
        EXPECT_EQ(activeStringType(text), type) << qPrintable(QString::fromUtf16(text));
}

TEST(ActiveText, FindsExactlyWhatThePatternsSay)
{
    QStringList pieces = u"a|z|A|Z|0|9|-|_|.|,|(|)|#|@|$|://|www.|w|:|/| "
                         u"|\n|\t|é|\u0301|\u200d|\u00ad|😀|[|`|+|&|日本|http://|x.org|"
                         u"ab@c.de|#t|$IBM"_s.split(u'|');
    pieces += { QString(QChar(0xD83D)), QString(QChar(0xDE00)) };
    std::mt19937 random(20261122);
    std::uniform_int_distribution<qsizetype> pick(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(0, 30);
    for (int round = 0; round < 10000; ++round) {
        QString text = u""_s;
        for (int i = length(random); i > 0; --i)
            text += pieces[pick(random)];
        for (const char16_t* pattern : patterns) {
            ASSERT_EQ(arrayOfRangesForRegex(text, pattern), plainMatches(text, pattern))
                << text.toUtf8().toPercentEncoding().constData() << ' '
                << qPrintable(QString::fromUtf16(pattern));
        }
    }
}

TEST(ActiveText, HostileTextsEnd)
{
    // Each of these keeps the plain patterns busy from seconds to years.
    const qsizetype length = 10000;
    for (const QString& text : { QString(length, u'a'),
             QString(u"a-"_s).repeated(length / 2) + u"a://(((("_s,
             QString(length, u'a') + u"://("_s,
             QString(length, u'a') + u" @"_s,
             QString(length, u'@'),
             u"a@"_s + QString(u"a."_s).repeated(length / 2) + u"1"_s,
             u"www."_s + QString(length, u'('),
             QString(u"www.("_s).repeated(length / 5),
             QString(u"://"_s).repeated(length / 3),
             u"#"_s + QString(length, u'a') }) {
        const bool holdsOne = text.startsWith(u'#') || text.startsWith(u"www.(w");
        EXPECT_EQ(KRActiveTextRanges(text).activeRanges().size(), holdsOne) << qPrintable(text.left(9));
    }
}

TEST(ActiveText, ABadPatternIsLoggedAndMatchesNothing)
{
    KRTestLog log;
    EXPECT_TRUE(arrayOfRangesForRegex(u"text", u"(").isEmpty());
    EXPECT_TRUE(log.contains(u"REGEX ERROR "_s));
    EXPECT_EQ(arrayOfRangesForRegex(u"xaxbx", u"[ab]?"),
        (KRRangeList { { 0, 0 }, { 1, 1 }, { 2, 0 }, { 3, 1 }, { 4, 0 }, { 5, 0 } }));
}

TEST(ActiveText, SeveralThreadsSearchAtOnce)
{
    const QString text = u"@bob sees http://example.org/ #now $IBM a@b.org"_s;
    const KRRangeList expected = KRActiveTextRanges(text).activeRanges();
    std::vector<std::future<int>> searches;
    for (int thread = 0; thread < 4; ++thread) {
        searches.push_back(std::async(std::launch::async, [&] {
            int agreed = 0;
            for (int i = 0; i < 200; ++i)
                agreed += KRActiveTextRanges(text).activeRanges() == expected;
            return agreed;
        }));
    }
    for (auto& search : searches)
        EXPECT_EQ(search.get(), 200);
}

} // namespace
