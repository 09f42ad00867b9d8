// Takes a picture of every page, for people to look at, and checks what a program can tell of them.

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSet>

#include <gtest/gtest.h>

namespace {

QString screenshotFile(const QString& name)
{
    QDir().mkpath(QStringLiteral(GALLERY_SCREENSHOTS));
    return QDir(QStringLiteral(GALLERY_SCREENSHOTS)).filePath(name + QStringLiteral(".png"));
}

/// With options that are words with spaces between them.
QImage takeScreenshot(const QString& name, const QString& options)
{
    const QString file = screenshotFile(name);
    QFile::remove(file);
    const int exitCode = QProcess::execute(QStringLiteral(TOOLKIT_GALLERY),
        QStringList { QStringLiteral("--screenshot"), file } + options.split(u' '));
    EXPECT_EQ(exitCode, 0) << name.toStdString();
    return QImage(file);
}

qsizetype colorCount(const QImage& image)
{
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3)
            colors.insert(image.pixel(x, y));
    }
    return colors.size();
}

TEST(GalleryTests, EveryPageIsDrawnAtEveryScaleInBothColourSchemes)
{
    for (const char* page : { "table", "navigation", "transitions", "images", "text" }) {
        for (const char* scale : { "1", "1.25", "1.5", "2" }) {
            QImage light;
            for (const bool dark : { false, true }) {
                const QLatin1String what(page);
                const QLatin1String size(scale);
                const QImage image = takeScreenshot(
                    QStringLiteral("%1-%2%3").arg(what, size, QLatin1String(dark ? "-dark" : "")),
                    QStringLiteral("--page %1 --scale %2 --depth 3 --focus 1%3")
                        .arg(what, size, QLatin1String(dark ? " --dark" : "")));
                EXPECT_EQ(image.size(), (QSizeF(1000, 700) * QByteArray(scale).toDouble()).toSize())
                    << page << scale;
                EXPECT_GT(colorCount(image), 40) << page << scale;
                EXPECT_NE(image, light) << page << scale;
                light = image;
            }
        }
    }
}

TEST(GalleryTests, EveryTransitionIsSeenHalfway)
{
    QSet<QByteArray> pictures;
    for (int code = 1; code <= 8; ++code) {
        const QImage image = takeScreenshot(QStringLiteral("transition-%1").arg(code),
            QStringLiteral("--page transitions --transition %1 --time 176").arg(code));
        pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), 8);
}

} // namespace
