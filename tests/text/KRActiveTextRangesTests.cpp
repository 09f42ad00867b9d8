#include "support/KRTestLog.h"
#include "text/KRActiveTextRanges.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <unicode/uregex.h>

using namespace KRAdditions;
using namespace Qt::StringLiterals;

namespace {

QStringList textsOf(const QString& text, const KRRangeList& ranges)
{
    QStringList texts;
    for (const KRRange& range : ranges)
        texts.append(KRSubstring(text, range));
    return texts;
}

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

TEST(ActiveText, Links)
{
    static_assert(std::u16string_view(KRLinkRegex).size() == 171);
    const struct {
        QString text = u""_s;
        QStringList links;
    } cases[] = {
        { u"Visit http://example.com/a_(b)."_s, { u"http://example.com/a_(b)"_s } },
        { u"See www.example.com, then"_s, { u"www.example.com"_s } },
        { u"x http://a"_s, {} },
        { u"(http://example.com)"_s, { u"http://example.com"_s } },
        { u"svn+ssh://host/x"_s, { u"ssh://host/x"_s } },
        { u"http://😀 http://😀😀"_s, { u"http://😀😀"_s } },
        { u"a-1-b://xy _c-d://xy 1e://xy é://xy f-://xy"_s, { u"a-1-b://xy"_s, u"d://xy"_s } },
        { u"wwww.xy.z www.x www.(( ).www.ab"_s, { u"www.ab"_s } },
        { u"http://a.b\thttps://c.d\nftp://e.f"_s, { u"http://a.b"_s, u"https://c.d"_s, u"ftp://e.f"_s } },
        { u"http://((((( a://b(c)d://ef"_s, { u"a://b(c)"_s, u"d://ef"_s } },
    };
    for (const auto& test : cases) {
        EXPECT_EQ(textsOf(test.text, KRActiveTextRanges(test.text).links()), test.links)
            << qPrintable(test.text);
    }
}

TEST(ActiveText, OtherKinds)
{
    const QString mentions = u"@bob's me@bob @_x9 @über"_s;
    EXPECT_EQ(textsOf(mentions, KRActiveTextRanges(mentions).usernames()),
        (QStringList { u"@bob"_s, u"@_x9"_s }));
    const QString hashtags = u"#1 #über a#b"_s;
    EXPECT_EQ(textsOf(hashtags, KRActiveTextRanges(hashtags).hashtags()),
        (QStringList { u"#1"_s, u"#über"_s }));
    const QString symbols = u"$AAPL, $toolong x$IBM"_s;
    EXPECT_EQ(textsOf(symbols, KRActiveTextRanges(symbols).stockSymbols()),
        (QStringList { u"$AAPL"_s, u"$toolo"_s }));
    const QString addresses = u"write to a.b+c@mail.example.com now, or x@y@example.org, é@example.org"_s;
    EXPECT_EQ(textsOf(addresses, KRActiveTextRanges(addresses).emailAddresses()),
        (QStringList { u"a.b+c@mail.example.com"_s, u"y@example.org"_s }));
}

TEST(ActiveText, ActiveRangesAreTheFiveListsInOrder)
{
    const QString text = u"a@b.com $IBM @bob #tag http://example.org/#faq"_s;
    EXPECT_EQ(textsOf(text, KRActiveTextRanges(text).activeRanges()),
        (QStringList { u"http://example.org/#faq"_s,
            u"#tag"_s,
            u"#faq"_s,
            u"@bob"_s,
            u"$IBM"_s,
            u"a@b.com"_s }));
    EXPECT_TRUE(KRActiveTextRanges(u"").activeRanges().isEmpty());
    EXPECT_TRUE(KRActiveTextRanges(QStringView()).activeRanges().isEmpty());
}

TEST(ActiveText, KindOfAWholeString)
{
    const struct {
        const char16_t* text;
        KRActiveStringType type;
    } cases[] = {
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
    for (const auto& test : cases)
        EXPECT_EQ(activeStringType(test.text), test.type) << qPrintable(QString::fromUtf16(test.text));
}

TEST(ActiveText, FindsExactlyWhatThePatternsSay)
{
    QStringList pieces = u"a|b|Z|7|-|_|.|,|(|)|#|@|$|://|www.|w|:|/| "
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
             u"#"_s + QString(length, u'a') })
        EXPECT_LE(KRActiveTextRanges(text).activeRanges().size(), length);
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
    std::array<bool, 4> agreed {};
    std::vector<std::thread> threads;
    for (bool& agrees : agreed) {
        threads.emplace_back([&] {
            agrees = true;
            for (int i = 0; i < 200; ++i)
                agrees = agrees && KRActiveTextRanges(text).activeRanges() == expected;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const bool agrees : agreed)
        EXPECT_TRUE(agrees);
}

} // namespace
