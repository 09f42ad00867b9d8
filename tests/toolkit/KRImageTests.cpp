#include "support/KRTest.h"
#include "toolkit/images/KRImage.h"

#include <QImage>
#include <QPainter>

namespace {

// Red caps of 2 at the left and right, green ones of 1 at the top and bottom between them, blue inside.
KRImage framedImage()
{
    return KRImage::imageWithDrawing({ 6, 4 }, [](QPainter& painter) {
        painter.fillRect(QRectF(0, 0, 6, 4), Qt::red);
        painter.fillRect(QRectF(2, 0, 2, 4), Qt::green);
        painter.fillRect(QRectF(2, 1, 2, 2), Qt::blue);
    }).stretchableImageWithLeftCapWidth(2, 1);
}

QImage drawn(const KRImage& image, QSize size, qreal scale, KRImage::Flipped flipped = KRImage::Flipped::Yes)
{
    QImage canvas((QSizeF(size) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(scale);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    image.drawInContext(painter, QRectF(QPointF(), QSizeF(size)), flipped);
    return canvas;
}

TEST(KRImageTests, CapsKeepTheirSizeAtEveryScale)
{
    for (const qreal scale : { 1.0, 1.25, 1.5, 2.0 }) {
        const QImage canvas = drawn(framedImage(), { 40, 20 }, scale);
        const int capWidth = qRound(2 * scale);
        const int capHeight = qRound(1 * scale);
        const int right = canvas.width() - 1;
        const int bottom = canvas.height() - 1;
        for (int x = 0; x <= right; ++x) {
            const bool inSideCap = x < capWidth || x > right - capWidth;
            EXPECT_EQ(canvas.pixelColor(x, bottom / 2), QColor(inSideCap ? Qt::red : Qt::blue))
                << x << ' ' << scale;
        }
        for (int y = 0; y <= bottom; ++y) {
            const bool inEndCap = y < capHeight || y > bottom - capHeight;
            EXPECT_EQ(canvas.pixelColor(right / 2, y), QColor(inEndCap ? Qt::green : Qt::blue))
                << y << ' ' << scale;
        }
    }
}

TEST(KRImageTests, CapsAreWholeWhereverThePictureStands)
{
    for (const qreal scale : { 1.0, 1.25, 1.5, 1.75, 2.0 }) {
        for (const bool mirrored : { false, true }) {
            for (int x = 0; x < 8; ++x) {
                QImage canvas(400, 40, QImage::Format_RGB32);
                canvas.setDevicePixelRatio(scale);
                canvas.fill(Qt::white);
                QPainter painter(&canvas);
                if (mirrored) {
                    painter.translate(150, 0);
                    painter.scale(-1, 1);
                }
                framedImage().drawInContext(painter, QRectF(x, 2, 101, 11), KRImage::Flipped::Yes);
                painter.end();
                const int y = qRound(7 * scale);
                int red = 0;
                int blue = 0;
                for (int column = 0; column < canvas.width(); ++column) {
                    red += canvas.pixelColor(column, y) == QColor(Qt::red);
                    blue += canvas.pixelColor(column, y) == QColor(Qt::blue);
                }
                EXPECT_EQ(red, 2 * qRound(2 * scale)) << x << ' ' << scale;
                EXPECT_NEAR(red + blue, 101 * scale, 0.75) << x << ' ' << scale;
            }
        }
    }
}

TEST(KRImageTests, OddSizesAndEmptyImagesAreDrawn)
{
    for (const QSize size : { QSize(1, 1), QSize(3, 1), QSize(1, 20), QSize(2, 2) }) {
        const QImage canvas = drawn(framedImage(), size, 1);
        for (int x = 0; x < size.width(); ++x)
            EXPECT_NE(canvas.pixelColor(x, 0), QColor(Qt::white)) << size.width() << 'x' << size.height();
    }
    EXPECT_EQ(drawn(KRImage(), { 4, 4 }, 1).pixelColor(1, 1), QColor(Qt::white));
}

TEST(KRImageTests, AnUnflippedContextTurnsThePictureOver)
{
    const KRImage image = KRImage::imageWithDrawing({ 4, 4 },
        [](QPainter& painter) { painter.fillRect(QRectF(0, 0, 4, 1), Qt::red); });
    EXPECT_EQ(drawn(image, { 4, 4 }, 1).pixelColor(1, 0), QColor(Qt::red));
    EXPECT_EQ(drawn(image, { 4, 4 }, 1, KRImage::Flipped::No).pixelColor(1, 3), QColor(Qt::red));
}

TEST(KRImageTests, NamedImagesComeFromTheResources)
{
    EXPECT_EQ(KRImage::imageNamed(QStringLiteral("toolkit/ScrollKnob.svg")).size(), QSizeF(11, 21));
    KRTestLog log;
    EXPECT_TRUE(KRImage::imageNamed(QStringLiteral("toolkit/None.svg")).isNull());
    EXPECT_TRUE(log.contains(QStringLiteral("toolkit/None.svg")));
}

} // namespace
