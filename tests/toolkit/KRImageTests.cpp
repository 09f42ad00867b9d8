#include "support/KRTest.h"
#include "toolkit/images/KRGradient.h"
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
                EXPECT_EQ(canvas.pixelColor(qRound(80 * scale), qRound(2.1 * scale)), QColor(Qt::green));
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
    EXPECT_EQ(KRImage::imageNamed(u"toolkit/ScrollKnob.svg"_s).size(), QSizeF(11, 21));
    KRTestLog log;
    EXPECT_TRUE(KRImage::imageNamed(u"toolkit/None.svg"_s).isNull());
    EXPECT_TRUE(log.contains(u"toolkit/None.svg"_s));
}

TEST(KRGradientTests, ColoursRunFromEdgeToEdgeAtEveryScale)
{
    const KRGradient gradient({ { 0, KRColor::rgba(1, 0, 0, 1) },
        { 0.5, KRColor::rgba(1, 1, 1, 1) },
        { 1, KRColor::rgba(0, 0, 1, 1) } });
    EXPECT_EQ(gradient.colorAtPosition(-1), KRColor::rgba(1, 0, 0, 1));
    EXPECT_EQ(gradient.colorAtPosition(0.75), KRColor::rgba(0.5F, 0.5F, 1, 1));
    EXPECT_EQ(gradient.colorAtPosition(2), KRColor::rgba(0, 0, 1, 1));

    for (const qreal scale : { 1.0, 1.25, 1.5, 2.0 }) {
        for (const auto direction : { KRGradient::Direction::Down, KRGradient::Direction::Right }) {
            QImage canvas(QSize(80, 80) * scale, QImage::Format_RGB32);
            canvas.setDevicePixelRatio(scale);
            canvas.fill(Qt::black);
            QPainter painter(&canvas);
            gradient.drawInRect(painter, { 0, 0, 80, 80 }, direction);
            painter.end();
            for (int pixel = 0; pixel < canvas.width(); ++pixel) {
                const bool down = direction == KRGradient::Direction::Down;
                const QColor drawn = canvas.pixelColor(down ? 3 : pixel, down ? pixel : 3);
                const KRColor expected = gradient.colorAtPosition((pixel + 0.5) / canvas.width());
                EXPECT_NEAR(drawn.redF(), expected.red, 0.02) << pixel << ' ' << scale;
                EXPECT_NEAR(drawn.blueF(), expected.blue, 0.02) << pixel << ' ' << scale;
            }
        }
    }
}

} // namespace
