#include "support/KRTest.h"
#include "text/KRArrayAdditions.h"
#include "text/KRDataAdditions.h"
#include "text/KRDateAdditions.h"
#include "text/KRParameters.h"
#include "text/KRStringAdditions.h"
#include "text/TwitterAdditions.h"

#include <QRegularExpression>

using namespace KRAdditions;

namespace {

TEST(StringAdditions, URLEncoding)
{
    EXPECT_EQ(URLEncodedString(u"AZaz09~-._ +a b&c=é/:*'!\t\x7f😀"_s),
        u"AZaz09~-._+%2Ba+b%26c%3D%C3%A9%2F%3A%2A%27%21%09%7F%F0%9F%98%80"_s);
    EXPECT_EQ(URLEncodedString(QString(u"ab\0cd"_s)), u"ab"_s);
    EXPECT_EQ(URLEncodedString(-12), u"-12"_s);
}

TEST(StringAdditions, ParametersKeepTheirOrderAndLeaveOutWhatIsAbsent)
{
    KRParameters parameters;
    EXPECT_EQ(URLParameterString(parameters), QString());
    parameters.add("since_id"_L1, u"42"_s)
        .add("max_id"_L1, QString())
        .add("empty"_L1, u""_s)
        .add("count"_L1, 200)
        .add("page"_L1, std::nullopt)
        .add("a&b"_L1, u"ü =1"_s);
    EXPECT_EQ(URLParameterString(parameters), u"since_id=42&empty=&count=200&a%26b=%C3%BC+%3D1"_s);
}

TEST(StringAdditions, UnescapingEntities)
{
    const std::pair<QString, QString> cases[] = {
        { u"a &lt; b &gt; c &amp; d &quot;e&quot; &apos;f&apos;"_s, u"a < b > c & d \"e\" 'f'"_s },
        { u"&amp;amp;"_s, u"&amp;"_s },
        { u"&amp;lt;"_s, u"<"_s },
        { u"&amp;quot;"_s, u"&quot;"_s },
        { u"&#39; &nbsp; &LT; & ;"_s, u"&#39; &nbsp; &LT; & ;"_s },
        { u"no entity"_s, u"no entity"_s },
    };
    for (const auto& [input, expected] : cases)
        EXPECT_EQ(stringByUnescapingXMLEntities(input), expected);
}

TEST(StringAdditions, SearchAndComparison)
{
    EXPECT_TRUE(containsSubstring(u"Hello", u"ell") && !containsSubstring(u"Hello", u"ELL"));
    EXPECT_TRUE(containsSubstringIgnoringCase(u"GRÜSSE", u"grü"));
    EXPECT_FALSE(containsSubstring(u"Hello", u"") || containsSubstringIgnoringCase(u"Hello", u""));
    EXPECT_TRUE(caseInsensitiveCompare(u"Bob", u"bOB") == 0);
    EXPECT_TRUE(caseInsensitiveCompare(u"Alice", u"bob") < 0);
    EXPECT_TRUE(caseInsensitiveCompare(u"a_b", u"a") > 0);
    EXPECT_EQ(TwitterAdditions::canonicalTwitterUsername(u"JoeUser"_s), u"joeuser"_s);
    EXPECT_EQ(TwitterAdditions::canonicalTwitterStatusID(u"0042"_s), u"0042"_s);
}

TEST(StringAdditions, DigestsAndCodes)
{
    EXPECT_EQ(stringByRot13ingString(u"AMNZ amnz 19 éß"_s), u"NZAM nzam 19 éß"_s);
    EXPECT_EQ(kr_sha1Digest(u"abc"_s), u"a9993e364706816aba3e25717850c26c9cd0d89d"_s);
    EXPECT_EQ(kr_sha1Digest(QByteArray()), u"da39a3ee5e6b4b0d3255bfef95601890afd80709"_s);
    EXPECT_EQ(base64EncodedString(u"jörg:geheim"_s), u"asO2cmc6Z2VoZWlt"_s);
    EXPECT_EQ(Base64_encode("Man", 3), "TWFu");
    EXPECT_EQ(Base64_encode("Man", 2), "TWE=");
    EXPECT_EQ(Base64_encode("Man", 1), "TQ==");
    EXPECT_EQ(Base64_encode("Man", 0), "TWFu");
    EXPECT_TRUE(Base64_encode(nullptr, 3).isNull());

    static const QRegularExpression form(
        u"^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"_s);
    const QString first = GUID();
    EXPECT_TRUE(form.match(first).hasMatch()) << qPrintable(first);
    EXPECT_NE(first, GUID());
}

TEST(DataAdditions, UTF8)
{
    EXPECT_EQ(UTF8String("Zażółć 😀"), u"Zażółć 😀"_s);
    EXPECT_FALSE(UTF8String(QByteArray()).isNull());
    for (const char* bytes : { "\xff", "a\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf5\x80\x80\x80" })
        EXPECT_TRUE(UTF8String(bytes).isNull());
}

TEST(DataAdditions, GzipRoundTrips)
{
    QByteArray noise;
    for (quint32 i = 0, state = 1; i < 300000; ++i) {
        state = state * 1664525 + 1013904223;
        noise.append(static_cast<char>(state >> 24));
    }
    for (const QByteArray& bytes : { QByteArray("x"), QByteArray(1000000, 'a'), noise }) {
        const QByteArray deflated = gzipDeflate(bytes);
        EXPECT_TRUE(deflated.startsWith("\x1f\x8b"));
        EXPECT_EQ(gzipInflate(deflated), bytes);
        EXPECT_EQ(gzipInflate(deflated, bytes.size()), bytes);
        EXPECT_EQ(gzipInflate(deflated, bytes.size() - 1), std::nullopt);
        EXPECT_EQ(gzipInflate(deflated.chopped(1)), std::nullopt);
        EXPECT_EQ(gzipInflate(deflated.first(deflated.size() / 2)), std::nullopt);
    }
    EXPECT_EQ(gzipDeflate(QByteArray()), QByteArray());
    EXPECT_EQ(gzipInflate(QByteArray()), QByteArray());
    EXPECT_EQ(gzipInflate("not compressed"), std::nullopt);
    // qCompress writes a zlib stream behind four bytes of length.
    EXPECT_EQ(gzipInflate(qCompress("zlib").mid(4)), "zlib");
}

TEST(DateAdditions, BothFormsAreReadAndOnlyTheirOwn)
{
    const QDateTime expected(QDate(2008, 8, 27), QTime(13, 8, 45), Qt::UTC);
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Wed Aug 27 13:08:45 +0000 2008"), expected);
    EXPECT_EQ(dateValueFromJSONTwitterDate(u"Wed, 27 Aug 2008 13:08:45 +0000"), expected);
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Sun Aug 27 13:08:45 +0000 2008"), expected);
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Wed Aug 27 18:38:45 +0530 2008"), expected);
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Thu Aug 28 13:07:45 +2359 2008"), expected);
    EXPECT_EQ(dateValueFromJSONTwitterDate(u"Wed, 27 Aug 2008 05:08:45 -0800"), expected);
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Fri Feb 29 00:00:00 +0000 2008").date(), QDate(2008, 2, 29));
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Mon Jan 1 00:00:00 +0100 2018"),
        QDateTime(QDate(2017, 12, 31), QTime(23, 0), Qt::UTC));
    EXPECT_EQ(dateValueFromHTTPLikeDate(u"Wed Dec 31 23:59:59 +0000 1969").toMSecsSinceEpoch(), -1000);

    // A good date with one part replaced by another.
    const QString good = u"Wed Aug 27 13:08:45 +0000 2008"_s;
    ASSERT_TRUE(dateValueFromHTTPLikeDate(good).isValid());
    const QString faults
        = u"Wed Aug=Wed  Aug|Wed=Foo|Aug=aug|27=32|Wed Aug 27=Thu Feb 30|27=0|27=٢٧|13=24|13=1|"
          ":08=:60|:45=:60|+=|+0000=+0060|+0000=+2400|+0000=UTC|2008=08|2008=20081|2008=2008 |Wed= Wed"_s;
    for (const QString& fault : faults.split(u'|')) {
        const QString text = QString(good).replace(fault.section(u'=', 0, 0), fault.section(u'=', 1));
        EXPECT_NE(text, good);
        EXPECT_FALSE(dateValueFromHTTPLikeDate(text).isValid()) << qPrintable(text);
    }
    EXPECT_FALSE(dateValueFromHTTPLikeDate(u"").isValid());
    EXPECT_FALSE(dateValueFromHTTPLikeDate(u"Wed, 27 Aug 2008 13:08:45 +0000").isValid());
    EXPECT_FALSE(dateValueFromJSONTwitterDate(u"Wed Aug 27 13:08:45 +0000 2008").isValid());
    EXPECT_FALSE(dateValueFromJSONTwitterDate(u"Wed 27 Aug 2008 13:08:45 +0000").isValid());
    EXPECT_TRUE(isAfter(expected, expected.addMSecs(-1)) && !isAfter(expected, expected));
    EXPECT_TRUE(isBefore(expected, expected.addMSecs(1)) && !isBefore(expected, expected));
    EXPECT_TRUE(isBefore(QDateTime(), expected) && !isAfter(QDateTime(), QDateTime()));
}

TEST(DateAdditions, RelativeTime)
{
    KRManualClock clock;
    const std::pair<qint64, const char16_t*> cases[] = {
        { -5000, u"0 seconds ago" },
        { 0, u"0 seconds ago" },
        { 1999, u"1 second ago" },
        { 59999, u"59 seconds ago" },
        { 60000, u"1 minute ago" },
        { 3599000, u"59 minutes ago" },
        { 3600000, u"1 hour ago" },
        { 86400000, u"1 day ago" },
        { 365 * Q_INT64_C(86400000), u"365 days ago" },
    };
    for (const auto& [milliseconds, expected] : cases)
        EXPECT_EQ(relativeTimeAgoString(clock.now().addMSecs(-milliseconds)), QString::fromUtf16(expected));
}

// A record: ordered by one field, equal by another.
struct Record {
    int order;
    int identity;

    std::weak_ordering compare(const Record& other) const { return order <=> other.order; }
    bool isEqual(const Record& other) const { return identity == other.identity; }
    size_t hashValue() const { return static_cast<size_t>(identity); }
    int sumWith(int a, int b) const { return order + a + b; }
    bool isEven() const { return order % 2 == 0; }
};
using RecordPtr = std::shared_ptr<Record>;

QList<int> ordersOf(const QList<RecordPtr>& records)
{
    return mapFunction(records, &Record::order);
}

TEST(ArrayAdditions, SortingIsStableAndFollowsTheElementsOrder)
{
    EXPECT_EQ(sortedArray(QList<QString> { u"b"_s, u"C"_s, u"a"_s }),
        (QList<QString> { u"C"_s, u"a"_s, u"b"_s }));

    QList<RecordPtr> records;
    for (int i = 0; i < 40; ++i)
        records.append(std::make_shared<Record>(Record { i % 3, i }));
    const QList<RecordPtr> sorted = sortedArray(records);
    for (qsizetype i = 1; i < sorted.size(); ++i) {
        EXPECT_LE(sorted[i - 1]->order, sorted[i]->order);
        if (sorted[i - 1]->order == sorted[i]->order) {
            EXPECT_LT(sorted[i - 1]->identity, sorted[i]->identity);
        }
    }
}

TEST(ArrayAdditions, DuplicatesKeepTheirFirstPlace)
{
    EXPECT_EQ(arrayWithoutDuplicates(QList<QString> { u"b"_s, u"a"_s, u"b"_s, u"c"_s, u"a"_s }),
        (QList<QString> { u"b"_s, u"a"_s, u"c"_s }));
    const auto record = [](int order, int identity) {
        return std::make_shared<Record>(Record { order, identity });
    };
    EXPECT_EQ(ordersOf(arrayWithoutDuplicates(QList<RecordPtr> { record(1, 7), record(2, 8), record(3, 7) })),
        (QList<int> { 1, 2 }));
}

TEST(ArrayAdditions, MappingLeavesOutWhatIsNone)
{
    const QList<int> numbers { 1, 2, 3, 4 };
    const auto halfOfEven
        = [](int number) { return number % 2 == 0 ? std::optional(number / 2) : std::nullopt; };
    EXPECT_EQ(mapFunction(numbers, halfOfEven), (QList<int> { 1, 2 }));
    EXPECT_TRUE(mapFunction(numbers, [](int) { return RecordPtr(); }).isEmpty());
    EXPECT_TRUE(mapFunction(numbers, [](int) { return QString(); }).isEmpty());
    EXPECT_EQ(mapFunction(
                  numbers,
                  [](int number, int factor) { return number * factor; },
                  10),
        (QList<int> { 10, 20, 30, 40 }));

    const QList<RecordPtr> records { std::make_shared<Record>(Record { 1, 1 }),
        std::make_shared<Record>(Record { 2, 2 }) };
    EXPECT_EQ(mapFunction(records, &Record::sumWith, 10, 100), (QList<int> { 111, 112 }));
    EXPECT_EQ(ordersOf(filter(records, &Record::isEven)), (QList<int> { 2 }));
}

} // namespace
