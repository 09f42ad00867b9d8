#include "support/KRTest.h"
#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRActiveTextStyle.h"

#include <QImage>
#include <QPainter>

#include <gmock/gmock.h>

namespace {

constexpr qreal Unbounded = KRActiveTextRenderer::UnboundedHeight;

void setText(KRActiveTextRenderer& renderer, const QString& text, qreal width, qreal height = Unbounded)
{
    renderer.setContainerSize({ width, height });
    const KRActiveTextRanges ranges(text);
    renderer.setAttributedString(AttributedStringForStatus(text, ranges, KRStatusTextSize::Normal), ranges);
}

KRAttributedString styled(const QString& text)
{
    return AttributedStringForStatus(text, KRActiveTextRanges(text), KRStatusTextSize::Normal);
}

int heightOf(const QString& text, qreal width)
{
    return KRActiveTextRenderer::heightOfAttributedString(styled(text), width);
}

// The height at which the last drawn pixel lies.
int drawnHeight(const KRActiveTextRenderer& renderer, const QRectF& clip = {})
{
    QImage canvas(400, 400, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    renderer.drawAtPoint(painter, { 0, 0 }, clip);
    painter.end();
    for (int y = canvas.height() - 1; y >= 0; --y) {
        for (int x = 0; x < canvas.width(); ++x) {
            if (canvas.pixelColor(x, y) != QColor(Qt::white))
                return y + 1;
        }
    }
    return 0;
}

TEST(KRActiveTextRendererTests, HeightsGrowByWholeLines)
{
    const int line = heightOf(u"x"_s, 200);
    EXPECT_GT(line, 10);
    const std::map<QString, int> cases { { u"a\r\nb"_s, 2 },
        { u"a\rb\u2029c\u2028d"_s, 4 },
        { u"a\n\nb"_s, 3 },
        { {}, 1 } };
    for (const auto& [text, lines] : cases)
        EXPECT_NEAR(heightOf(text, 200), lines * line, lines) << lines;
    EXPECT_EQ(heightOf(u"some words to wrap"_s, 60.9), heightOf(u"some words to wrap"_s, 60));
    EXPECT_GT(heightOf(QString(100, u'w'), 200), 3 * line) << "a long word is broken";
    for (const qreal width : { -1e300, -50.0, 0.0, 0.5, 1e6, 1e300, qInf(), qQNaN() }) {
        const int height = heightOf(u"a bc"_s, width);
        EXPECT_TRUE(height >= line && height <= 5 * line) << width;
    }
}

TEST(KRActiveTextRendererTests, NoTextIsLogged)
{
    KRTestLog log;
    EXPECT_EQ(KRActiveTextRenderer::heightOfAttributedString({}, 100), 0);
    EXPECT_EQ(log.lines(), QStringList(u"-heightOfAttributedString: passed nil - this is VERY bad"_s));
    EXPECT_GT(KRActiveTextRenderer::heightOfAttributedString({ QString(), QFont() }, 100), 0);
}

TEST(KRActiveTextRendererTests, DrawsWhatFitsTheContainerAndTheClip)
{
    const QString text = u"one\ntwo\nthree\nfour"_s;
    const int line = heightOf(u"x"_s, 200);
    KRActiveTextRenderer renderer;
    setText(renderer, text, 200);
    EXPECT_GT(drawnHeight(renderer), 3 * line);
    EXPECT_LE(drawnHeight(renderer, { 0, 0, 200, line * 1.5 }), 2 * line + 1);
    setText(renderer, text, 200, line * 2.5);
    EXPECT_LE(drawnHeight(renderer), 2 * line + 1);
    EXPECT_EQ(renderer.text(), text);
    renderer.setContainerSize({ 200, line * 3.5 });
    EXPECT_GT(drawnHeight(renderer), 2 * line + 1) << "a new size lays the text out again";
    KRActiveTextRenderer empty;
    EXPECT_EQ(drawnHeight(empty), 0);
}

TEST(KRActiveTextRendererTests, SpansAreDrawnInTheirColoursAndInPlace)
{
    const auto draw = [](const QString& text, const KRActiveTextColors& colors) {
        KRActiveTextRenderer renderer;
        renderer.setContainerSize({ 200, Unbounded });
        const KRActiveTextRanges ranges(text);
        renderer.setAttributedString(
            AttributedStringForStatus(text, ranges, KRStatusTextSize::Normal, { 0, colors }),
            ranges);
        QImage canvas(200, 100, QImage::Format_RGB32);
        canvas.fill(Qt::white);
        QPainter painter(&canvas);
        painter.setPen(Qt::black);
        renderer.drawAtPoint(painter, { 0, 0 });
        return canvas;
    };
    const KRColor black = KRColor::rgba(0, 0, 0, 1);
    const KRColor red = KRColor::rgba(1, 0, 0, 1);
    for (const QString& text : { u"AV @ToTo, VA #tag fi $SYM and words http://example.org/ and"_s,
             u"שלום @name וגם #תג או עוד מילים בשורה"_s,
             u"@name"_s }) {
        const QImage plain = draw(text, { black, black, black, black });
        const QImage colored = draw(text, { red, red, red, red });
        bool hasRed = false;
        int differences = 0;
        for (int y = 0; y < plain.height(); ++y) {
            for (int x = 0; x < plain.width(); ++x) {
                const QColor pixel = colored.pixelColor(x, y);
                hasRed |= pixel.red() - pixel.green() > 100;
                // The same coverage, whatever the colour.
                differences += std::abs(pixel.green() - plain.pixelColor(x, y).green()) > 2;
            }
        }
        EXPECT_TRUE(hasRed);
        EXPECT_EQ(differences, 0) << text.toStdString();
    }
}

TEST(KRActiveTextRendererTests, FindsTheSpanUnderAPointInEveryDirection)
{
    const QString texts[] = {
        u"see http://example.org/#faq and @name or #tag"_s,
        u"שלום @name וגם http://example.org/#faq או #tag"_s,
        u"مرحبا #وسم من @name $SYM"_s,
        u"🎉🎉 @name 🎉 a@example.org\n\n$SYM"_s,
    };
    for (const QString& text : texts) {
        for (const qreal width : { 90.0, 300.0, 2000.0 }) {
            KRActiveTextRenderer renderer;
            setText(renderer, text, width);
            const KRActiveTextRanges ranges(text);
            ASSERT_FALSE(ranges.activeRanges().isEmpty());
            for (const KRRange& range : ranges.activeRanges()) {
                const QList<QRectF> rects = renderer.rectArrayForRange(range);
                ASSERT_FALSE(rects.isEmpty());
                for (const QRectF& rect : rects) {
                    EXPECT_GT(rect.width(), 0);
                    for (const qreal x : { rect.left() + 1, rect.center().x(), rect.right() - 1 }) {
                        const KRRange found = renderer.activeRangeAtPoint({ x, rect.center().y() });
                        ASSERT_NE(found.location, KRNotFound) << text.toStdString() << ' ' << width;
                        EXPECT_LE(found.location, range.location);
                        EXPECT_GE(found.end(), range.end()) << "a link wins over the hashtag in it";
                    }
                    const qsizetype caret = renderer.characterIndexAtPoint(rect.center());
                    EXPECT_TRUE(caret >= range.location && caret <= range.end());
                }
            }
            EXPECT_EQ(renderer.activeRangeAtPoint({ -3, 3 }).location, KRNotFound);
            EXPECT_EQ(renderer.activeRangeAtPoint({ 10, 5000 }).location, KRNotFound);
            EXPECT_EQ(renderer.activeRangeAtPoint({ 10, -1 }).location, KRNotFound);
        }
    }
}

TEST(KRActiveTextRendererTests, SpansKeepTheirOwnDirection)
{
    struct {
        QStringView text;
        // The first of these characters is drawn to the left of the second.
        QStringView left;
        QStringView right;
    } const cases[] = {
        { u"שלום @name וגם", u"@", u"name" },
        { u"@name مرحبا", u"@", u"name" },
        { u"مرحبا #tag و", u"#", u"tag" },
        { u"مرحبا #وسم و", u"وسم", u"#" },
        { u"hello #תג and", u"תג", u"#" },
        { u"שלום http://example.org/a/ או", u"http", u"/a/" },
        { u"שלום a.b@example.org!", u"a.b", u"example" },
        { u"see http://example.org/שלום/דף now", u"example", u"שלום" },
    };
    for (const auto& [text, left, right] : cases) {
        SCOPED_TRACE(text.toString().toStdString());
        KRActiveTextRenderer renderer;
        setText(renderer, text.toString(), 400);
        const auto rectOf = [&](QStringView part) {
            const QList<QRectF> rects = renderer.rectArrayForRange({ text.indexOf(part), part.size() });
            return rects.size() == 1 ? rects.first() : QRectF();
        };
        ASSERT_FALSE(rectOf(left).isEmpty());
        ASSERT_FALSE(rectOf(right).isEmpty());
        EXPECT_LT(rectOf(left).left(), rectOf(right).left());
        EXPECT_EQ(renderer.text(), text) << "nothing of this is in the text";
        const bool isRightToLeft = styled(text.toString()).direction() == Qt::RightToLeft;
        EXPECT_EQ(rectOf(text).right() > 390, isRightToLeft) << "lines begin at the reader's side";
    }
}

TEST(KRActiveTextRendererTests, ACaretGoesToTheNearestSideOfACharacter)
{
    KRActiveTextRenderer renderer;
    setText(renderer, u"mmmm\nnn"_s, 200);
    const QRectF second = renderer.rectArrayForRange({ 1, 1 }).first();
    EXPECT_EQ(renderer.characterIndexAtPoint({ second.left() + second.width() * 0.2, 3 }), 1);
    EXPECT_EQ(renderer.characterIndexAtPoint({ second.left() + second.width() * 0.8, 3 }), 2);
    EXPECT_EQ(renderer.characterIndexAtPoint({ -50, -50 }), 0);
    EXPECT_EQ(renderer.characterIndexAtPoint({ 5000, 5000 }), 7);
    EXPECT_TRUE(renderer.rectArrayForRange({ 3, 0 }).isEmpty());
    EXPECT_TRUE(renderer.rectArrayForRange({ 90, 4 }).isEmpty());
    EXPECT_EQ(renderer.rectArrayForRange({ 2, 100 }).size(), 2);
    EXPECT_EQ(KRActiveTextRenderer().characterIndexAtPoint({ 1, 1 }), 0);
}

// A long text is laid out in pieces; nothing of that may show.
TEST(KRActiveTextRendererTests, LongTextsWrapAsIfTheyWereShort)
{
    // Wide enough for one of these and too narrow for two.
    const QString line = u"@nameisnineteen1234 "_s;
    const QString text = line.repeated(1000);
    KRActiveTextRenderer renderer;
    const qreal width = heightOf(u"x"_s, 1) * 12;
    setText(renderer, text, width);
    const int lineHeight = heightOf(line, width);
    ASSERT_LT(lineHeight, heightOf(line.repeated(2), width));
    EXPECT_NEAR(heightOf(text, width), 1000 * lineHeight, 1000);
    const KRRangeList names = renderer.activeTextRanges().usernames();
    ASSERT_EQ(names.size(), 1000);
    for (const KRRange& name : names) {
        const QList<QRectF> rects = renderer.rectArrayForRange(name);
        ASSERT_EQ(rects.size(), 1) << name.location;
        EXPECT_EQ(rects.first().left(), 0);
        EXPECT_EQ(renderer.activeRangeAtPoint(rects.first().center()), name);
    }
}

// Each of these must come back at once; a layout that is quadratic in its text would not.
TEST(KRActiveTextRendererTests, EnormousTextsDoNotHang)
{
    constexpr int Length = 100000;
    const QString texts[] = {
        QString(Length, u'x'),
        u"http://a.b/#c "_s.repeated(Length / 14),
        u"http://example.org/"_s + QString(Length, u'x'),
        QString(Length, QChar(0x301)),
        u"שa"_s.repeated(Length / 2),
        u"👩‍👩‍👧"_s.repeated(Length / 8),
        QString(Length, u'\n'),
    };
    for (const QString& text : texts) {
        SCOPED_TRACE(text.left(12).toStdString());
        KRActiveTextRenderer renderer;
        setText(renderer, text, 300);
        EXPECT_LE(drawnHeight(renderer, { 0, 0, 400, 400 }), 400);
        for (const KRRange& range : renderer.activeTextRanges().links())
            EXPECT_FALSE(renderer.rectArrayForRange(range).isEmpty());
    }
}

} // namespace
