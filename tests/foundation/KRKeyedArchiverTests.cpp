#include "foundation/KRKeyedArchiver.h"
#include "support/KRTest.h"

#include <QRandomGenerator>

namespace {

struct Point {
    int x = 0;
    void encodeWithCoder(KRKeyedArchiver& coder) const { coder.encodeInteger("x"_L1, x); }
};

QByteArray sampleArchive()
{
    KRKeyedArchiver archiver;
    archiver.encodeString("text"_L1, u"na\u00efve \U0001f600"_s);
    archiver.encodeString("absent"_L1, QString());
    archiver.encodeInteger("number"_L1, -5000000000);
    archiver.encodeDate("date"_L1, QDateTime(QDate(2026, 2, 28), QTime(23, 59, 59, 250), Qt::UTC));
    archiver.encodeURL("url"_L1, QUrl(u"https://example.org/a%20b?q=%26"_s));
    archiver.encodeData("data"_L1, QByteArray("\0\xff", 2));
    const Point one { 1 };
    const Point two { 2 };
    archiver.encodeObjects("points"_L1, QList<const Point*> { &one, &two });
    archiver.encodeObject("point"_L1, one);
    return archiver.archivedData();
}

} // namespace

TEST(KRKeyedArchiver, ReadsBackWhatItWroteAndNothingElse)
{
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(sampleArchive());
    ASSERT_FALSE(coder.isError());
    const KRKeyedUnarchiver& values = coder.value();
    EXPECT_EQ(values.decodeString("text"_L1), u"na\u00efve \U0001f600"_s);
    EXPECT_EQ(values.decodeInteger("number"_L1), -5000000000);
    EXPECT_EQ(values.decodeDate("date"_L1), QDateTime(QDate(2026, 2, 28), QTime(23, 59, 59, 250), Qt::UTC));
    EXPECT_EQ(values.decodeURL("url"_L1).toEncoded(), QByteArray("https://example.org/a%20b?q=%26"));
    EXPECT_EQ(values.decodeData("data"_L1), QByteArray("\0\xff", 2));
    ASSERT_EQ(values.decodeObjects("points"_L1).size(), 2);
    EXPECT_EQ(values.decodeObjects("points"_L1).at(1).decodeInteger("x"_L1), 2);
    EXPECT_EQ(values.decodeObject("point"_L1)->decodeInteger("x"_L1), 1);

    EXPECT_FALSE(values.contains("absent"_L1));
    EXPECT_TRUE(values.decodeString("absent"_L1).isNull() && values.decodeString("number"_L1).isNull());
    KRKeyedArchiver empty;
    empty.encodeString("text"_L1, u""_s);
    empty.encodeData("data"_L1, "");
    empty.encodeString("null"_L1, {});
    const auto restored = KRKeyedUnarchiver::unarchiverWithData(empty.archivedData());
    EXPECT_FALSE(restored.value().decodeString("text"_L1).isNull()) << "empty is not absent";
    EXPECT_FALSE(restored.value().decodeData("data"_L1).isNull());
    EXPECT_TRUE(restored.value().decodeString("null"_L1).isNull());
    EXPECT_EQ(values.decodeInteger("text"_L1), std::nullopt);
    EXPECT_FALSE(values.decodeDate("text"_L1).isValid() || values.decodeObject("text"_L1).has_value());
    EXPECT_TRUE(values.decodeObjects("point"_L1).isEmpty());
}

TEST(KRKeyedArchiver, RefusesEveryDamagedArchive)
{
    const auto isRefused
        = [](const QByteArray& data) { return KRKeyedUnarchiver::unarchiverWithData(data).isError(); };
    const QByteArray archive = sampleArchive();
    EXPECT_TRUE(isRefused({}) && isRefused("an old property list") && isRefused(archive + 'x'));
    for (qsizetype i = 0; i < archive.size(); ++i) {
        EXPECT_TRUE(isRefused(archive.first(i))) << i;
        QByteArray damaged = archive;
        damaged[i] = static_cast<char>(damaged.at(i) ^ 0x10);
        EXPECT_TRUE(isRefused(damaged)) << i;
    }
}
