#include "support/KRTest.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRColorConversion.h"
#include "text/render/KRTextHeightCache.h"

#include <QFontInfo>
#include <QGuiApplication>

#include <cmath>

namespace {

KRAttributedString status(const QString& text, const KRActiveTextStyle& style = {})
{
    return AttributedStringForStatus(text, KRActiveTextRanges(text), KRStatusTextSize::Normal, style);
}

QString describe(const KRAttributedString& attributedString)
{
    QStringList parts;
    for (const KRAttributedString::Run& run : attributedString.runs())
        parts.append(KRSubstring(attributedString.text(), run.range) + u'='
            + KRQColor(run.attributes.foreground).name());
    return parts.join(u'|');
}

TEST(KRAttributedStringTests, SpansHaveTheColoursOfTheirKinds)
{
    const std::pair<QStringView, QStringView> cases[] = {
        { u"nothing here", u"" },
        { u"see http://example.org/a now", u"http://example.org/a=#0066cc" },
        { u"#tag @name $SYM a@example.org",
            u"#tag=#808080|@name=#0066cc|$SYM=#0066cc|a@example.org=#0066cc" },
        // The hashtag inside the link is drawn over it, and the link goes on behind it.
        { u"http://example.org/#faq", u"http://example.org/=#0066cc|#faq=#808080" },
        { u"http://example.org/$AB/x", u"http://example.org/=#0066cc|$AB=#0066cc|/x=#0066cc" },
        { u"", u"" },
    };
    for (const auto& [text, runs] : cases)
        EXPECT_EQ(describe(status(text.toString())), runs.toString());
}

TEST(KRAttributedStringTests, LaterAttributesReplaceEarlierOnes)
{
    KRAttributedString text(u"abcdef"_s, QFont());
    KRAddAttributesToAttributedStringForRanges(text, { { 1, 0, 0, 1 } }, { { 0, 4 }, { 5, 100 }, { 77, 2 } });
    KRAddAttributesToAttributedStringForRanges(text, { { 0, 0, 1, 1 } }, { { 2, 3 } });
    EXPECT_EQ(describe(text), u"ab=#ff0000|cde=#0000ff|f=#ff0000"_s);
}

TEST(KRAttributedStringTests, ThePreferenceDecidesTheSizeInProportionToTheDesktops)
{
    const QFont usual = QGuiApplication::font();
    for (const int desktop : { 8, 13, 26 }) {
        QFont font = usual;
        font.setPixelSize(desktop);
        QGuiApplication::setFont(font);
        const double standard = std::max(desktop, 13);
        for (const auto& [preference, size] : std::map<int,
                 int> { { 0, 12 }, { 1, 13 }, { 2, 14 }, { 5, 12 }, { 10, 11 }, { 11, 10 }, { -1, 12 } }) {
            const KRActiveTextStyle style { preference, {} };
            const auto pixels = [&](KRStatusTextSize textSize) {
                return AttributedStringForStatus(u"x"_s, {}, textSize, style).font().pixelSize();
            };
            EXPECT_EQ(pixels(KRStatusTextSize::Normal), std::lround(standard * size / 12)) << preference;
            EXPECT_EQ(pixels(KRStatusTextSize::Enlarged), std::lround(standard * (size + 3) / 12));
            EXPECT_EQ(AttributedStringForMessage(u"x"_s, {}, style).font().pixelSize(), standard);
        }
    }
    QGuiApplication::setFont(usual);
}

TEST(KRAttributedStringTests, TheDirectionIsThatOfTheAuthorsOwnWords)
{
    const std::pair<QStringView, Qt::LayoutDirection> cases[] = {
        { u"hello", Qt::LeftToRight },
        { u"مرحبا", Qt::RightToLeft },
        { u"@name مرحبا", Qt::RightToLeft },
        { u"http://example.org/ #tag שלום", Qt::RightToLeft },
        { u"12 🎉 hello שלום", Qt::LeftToRight },
        { u"@name", Qt::LayoutDirectionAuto },
        { u"", Qt::LayoutDirectionAuto },
    };
    for (const auto& [text, direction] : cases)
        EXPECT_EQ(status(text.toString()).direction(), direction) << text.toString().toStdString();
}

TEST(KRAttributedStringTests, HeightsAreMeasuredOnceForEachTextFontAndWidth)
{
    KRTextHeightCache cache;
    const auto height = [&](const QString& text, KRStatusTextSize size, int width) {
        return cache.height(text, KRStatusFont(size, {}), width, [&] {
            return AttributedStringForStatus(text, KRActiveTextRanges(text), size);
        });
    };
    const QString text = u"some words that need more than one line at a small width"_s;
    const int narrow = height(text, KRStatusTextSize::Normal, 100);
    EXPECT_GT(narrow, height(text, KRStatusTextSize::Normal, 300));
    EXPECT_LT(narrow, height(text, KRStatusTextSize::Enlarged, 100));
    height(u"other"_s, KRStatusTextSize::Normal, 100);
    EXPECT_EQ(cache.measuredCount(), 4);
    EXPECT_EQ(height(text, KRStatusTextSize::Normal, 100), narrow);
    EXPECT_EQ(cache.measuredCount(), 4);
}

} // namespace
