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

QImage takeScreenshot(const QString& name, const QStringList& options)
{
    const QString file = screenshotFile(name);
    QFile::remove(file);
    const int exitCode = QProcess::execute(QStringLiteral(TOOLKIT_GALLERY),
        QStringList { QStringLiteral("--screenshot"), file } + options);
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
                QStringList options { QStringLiteral("--page"), QString::fromLatin1(page) };
                options << QStringLiteral("--scale") << QString::fromLatin1(scale);
                options << QStringLiteral("--depth") << QStringLiteral("3");
                options << QStringLiteral("--focus") << QStringLiteral("1");
                if (dark)
                    options << QStringLiteral("--dark");
                const QString name = QStringLiteral("%1-%2%3").arg(QString::fromLatin1(page),
                    QString::fromLatin1(scale),
                    dark ? QStringLiteral("-dark") : QString());
                const QImage image = takeScreenshot(name, options);
                EXPECT_EQ(image.size(), (QSizeF(1000, 700) * QByteArray(scale).toDouble()).toSize())
                    << name.toStdString();
                EXPECT_GT(colorCount(image), 40) << name.toStdString();
                EXPECT_NE(image, light) << name.toStdString();
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
            { QStringLiteral("--page"),
                QStringLiteral("transitions"),
                QStringLiteral("--transition"),
                QString::number(code),
                QStringLiteral("--time"),
                QStringLiteral("176") });
        pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), 8);
}

TEST(GalleryTests, RightToLeftProgramsAreMirrored)
{
    const QStringList options { QStringLiteral("--page"),
        QStringLiteral("navigation"),
        QStringLiteral("--depth"),
        QStringLiteral("5") };
    const QImage leftToRight = takeScreenshot(QStringLiteral("navigation-ltr"), options);
    const QImage rightToLeft
        = takeScreenshot(QStringLiteral("navigation-rtl"), options + QStringList(QStringLiteral("--rtl")));
    // The dark column changes sides.
    EXPECT_EQ(leftToRight.pixel(2, 600), rightToLeft.pixel(997, 600));
    EXPECT_NE(leftToRight.pixel(997, 600), rightToLeft.pixel(997, 600));
}

} // namespace
