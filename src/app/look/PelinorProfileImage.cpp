#include "app/look/PelinorProfileImage.h"

#include "app/look/PelinorCellColors.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr qsizetype MostBytes = 8 * 1024 * 1024;
constexpr qint64 MostPixels = 4096 * 4096;
constexpr qint64 MostScaledPixels = 1024 * 1024;
// Pixels for a point: sharp up to a scale factor of 2.
constexpr int Scale = 2;

// What avatars come in. Other decoders that happen to be installed have no business with data from the
// network.
bool isUsualFormat(const QByteArray& format)
{
    static const QByteArrayList formats { "png", "jpeg", "gif", "webp", "bmp" };
    return formats.contains(format);
}

QImage decodedSquare(const QByteArray& data, int side)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!isUsualFormat(reader.format()) || size.isEmpty()
        || qint64(size.width()) * size.height() > MostPixels)
        return {};
    // Decoders that can read a picture smaller do; a picture much longer than wide must not grow by that.
    const QSize scaled = size.scaled(side, side, Qt::KeepAspectRatioByExpanding);
    if (qint64(scaled.width()) * scaled.height() > MostScaledPixels)
        return {};
    reader.setScaledSize(scaled);
    const QImage image = reader.read();
    return image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side);
}

QPainterPath roundedPicture(const QRectF& square)
{
    const qreal scale = square.width() / PelinorProfileImage::Side;
    const qreal inset = PelinorProfileImage::Inset * scale;
    const qreal radius = PelinorProfileImage::CornerRadius * scale;
    QPainterPath path;
    path.addRoundedRect(square.adjusted(inset, inset, -inset, -inset), radius, radius);
    return path;
}

void drawPlaceholder(QPainter& painter, const QRectF& square, const PelinorCellColors& colors)
{
    const QPainterPath outline = roundedPicture(square);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.fillPath(outline, colors.placeholder);
    painter.setClipPath(outline);
    painter.setBrush(colors.placeholderFigure);
    const QPointF centre = square.center();
    const qreal unit = square.width() / PelinorProfileImage::Side;
    painter.drawEllipse(centre - QPointF(0, 5 * unit), 9 * unit, 9 * unit);
    painter.drawEllipse(centre + QPointF(0, 24 * unit), 18 * unit, 17 * unit);
    painter.restore();
}

} // namespace

TwitterProfileImagePtr CreateRoundedProfileImage(const QByteArray& data)
{
    if (data.size() > MostBytes)
        return nullptr;
    constexpr int Pixels = PelinorProfileImage::Side * Scale;
    constexpr int InsetPixels = PelinorProfileImage::Inset * Scale;
    const QImage picture = decodedSquare(data, Pixels - 2 * InsetPixels);
    if (picture.isNull())
        return nullptr;
    QImage rounded(Pixels, Pixels, QImage::Format_ARGB32_Premultiplied);
    rounded.fill(Qt::transparent);
    QPainter painter(&rounded);
    painter.setRenderHint(QPainter::Antialiasing);
    QBrush brush(picture);
    brush.setTransform(QTransform::fromTranslate(InsetPixels, InsetPixels));
    painter.fillPath(roundedPicture(rounded.rect()), brush);
    painter.end();
    return std::make_shared<PelinorProfileImage>(rounded);
}

void PelinorProfileImage::draw(QPainter& painter,
    const QRectF& square,
    const TwitterProfileImagePtr& image,
    const PelinorCellColors& colors)
{
    if (image)
        drawPicture(painter, square, *image);
    else
        drawPlaceholder(painter, square, colors);
}

void PelinorProfileImage::drawPicture(QPainter& painter,
    const QRectF& square,
    const TwitterProfileImage& image)
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // This program's maker makes no other kind.
    painter.drawImage(square, static_cast<const PelinorProfileImage&>(image).image());
}
