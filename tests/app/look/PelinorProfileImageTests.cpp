#include "app/look/PelinorProfileImage.h"

#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

QByteArray pictureData(QSize size, const char* format = "PNG")
{
    QImage image(size, QImage::Format_RGB32);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor(0xE8, 0x8D, 0x67));
    gradient.setColorAt(1, QColor(0x3D, 0x6B, 0x99));
    QPainter painter(&image);
    painter.fillRect(image.rect(), gradient);
    painter.end();
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return data;
}

// Few bytes, and more pixels than anyone wants to decode.
QByteArray hugePicture()
{
    QImage image(5000, 4000, QImage::Format_Mono);
    image.fill(0);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return data;
}

TEST(PelinorProfileImageTests, DecodesWithinItsLimits)
{
    const auto image = [](const QByteArray& data) {
        const TwitterProfileImagePtr made = CreateRoundedProfileImage(data);
        return made ? static_cast<const PelinorProfileImage&>(*made).image() : QImage();
    };
    for (const QSize size :
        { QSize(48, 48), QSize(1, 1), QSize(400, 30), QSize(30, 400), QSize(1000, 1000) }) {
        const QImage rounded = image(pictureData(size));
        ASSERT_EQ(rounded.size(), QSize(104, 104)) << size.width();
        EXPECT_EQ(rounded.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(rounded.pixelColor(9, 9).alpha(), 0) << "the corners are round";
        EXPECT_EQ(rounded.pixelColor(52, 9).alpha(), 255);
        EXPECT_EQ(rounded.pixelColor(52, 52).alpha(), 255);
        EXPECT_NEAR(rounded.pixelColor(52, 52).red(), 0x92, 4) << "the middle of the picture";
    }
    EXPECT_FALSE(image(pictureData({ 60, 60 }, "JPG")).isNull());
    const QByteArray whole = pictureData({ 300, 300 });
    for (const QByteArray& bad : { QByteArray(),
             QByteArray("<html></html>"),
             whole.left(40),
             QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='50' height='50'/>"),
             pictureData({ 60, 60 }, "PPM"),
             hugePicture(),
             pictureData({ 2, 4000 }),
             QByteArray(9 * 1024 * 1024, 'x') })
        EXPECT_TRUE(image(bad).isNull()) << bad.size();
}

} // namespace
