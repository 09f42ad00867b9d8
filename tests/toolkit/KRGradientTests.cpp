#include "support/KRTest.h"
#include "toolkit/images/KRGradient.h"

#include <QImage>
#include <QPainter>

namespace {

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
