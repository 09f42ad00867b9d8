#include "toolkit/images/KRImage.h"

#include "foundation/KRLog.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>

struct KRImage::Source {
    QSizeF size;
    DrawingFunction draw;
};

struct KRImage::Rendering {
    QSize size;
    qreal scale = 0;
    QPixmap pixmap;
};

namespace {

// A renderer's widest caps and stretched middle along one axis: where the three parts begin and end.
using Stops = std::array<qreal, 4>;

Stops sourceStops(qreal length, qreal cap)
{
    const qreal kept = std::clamp(cap, 0.0, length / 2);
    return { 0, kept, length - kept, length };
}

// In device pixels: parts meet on whole pixels, so that no seam shows between them.
Stops targetStops(qreal pixels, qreal cap, qreal scale)
{
    const qreal kept = std::min(std::round(cap * scale), std::floor(pixels / 2));
    return { 0, kept, pixels - kept, pixels };
}

} // namespace

KRImage KRImage::imageNamed(const QString& name)
{
    const QString path = QStringLiteral(":/") + name;
    const auto renderer = std::make_shared<QSvgRenderer>();
    if (!QFile::exists(path) || !renderer->load(path)) {
        KRLog(QStringLiteral("ERROR: no image named %1").arg(name));
        return {};
    }
    const QSizeF size = renderer->defaultSize();
    return imageWithDrawing(size,
        [renderer, size](QPainter& painter) { renderer->render(&painter, QRectF(QPointF(), size)); });
}

KRImage KRImage::imageWithDrawing(QSizeF size, DrawingFunction draw)
{
    KRImage image;
    image.m_source = std::make_shared<const Source>(Source { size, std::move(draw) });
    image.m_rendering = std::make_shared<Rendering>();
    return image;
}

KRImage KRImage::imageWithPixmap(const QPixmap& pixmap)
{
    const QSizeF size = pixmap.deviceIndependentSize();
    return imageWithDrawing(size, [pixmap, size](QPainter& painter) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(QRectF(QPointF(), size), pixmap, QRectF(pixmap.rect()));
    });
}

QSizeF KRImage::size() const
{
    return m_source ? m_source->size : QSizeF();
}

KRImage KRImage::stretchableImageWithLeftCapWidth(int leftCapWidth, int topCapHeight) const
{
    KRImage image = *this;
    image.m_rendering = std::make_shared<Rendering>();
    image.m_leftCapWidth = leftCapWidth;
    image.m_topCapHeight = topCapHeight;
    return image;
}

void KRImage::drawInContext(QPainter& painter, const QRectF& rect, Flipped flipped) const
{
    if (!m_source || rect.isEmpty() || m_source->size.isEmpty())
        return;
    const QTransform& transform = painter.deviceTransform();
    const qreal scale = std::max(std::abs(transform.m11()), std::abs(transform.m12()));
    painter.save();
    if (flipped == Flipped::No) {
        painter.translate(0, rect.top() + rect.bottom());
        painter.scale(1, -1);
    }
    if (transform.type() <= QTransform::TxScale)
        _drawOnWholePixels(painter, rect, scale);
    else
        painter.drawPixmap(rect, _rendering(_pixelSize(rect.size() * scale), scale), QRectF());
    painter.restore();
}

// Where the edges fall between two pixels of the screen, as they do at broken scales, they move to the
// closest whole one: a rendering is never resampled.
void KRImage::_drawOnWholePixels(QPainter& painter, const QRectF& rect, qreal scale) const
{
    const QTransform transform = painter.deviceTransform();
    const QRectF exact = transform.mapRect(rect);
    const QPointF topLeft(std::round(exact.left()), std::round(exact.top()));
    const QPointF bottomRight(std::round(exact.right()), std::round(exact.bottom()));
    const QPixmap pixmap
        = _rendering(_pixelSize({ bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y() }), scale);
    const bool isMirrored = transform.m11() < 0;
    const bool isOverturned = transform.m22() < 0;
    const QTransform pixels(isMirrored ? -1 : 1,
        0,
        0,
        isOverturned ? -1 : 1,
        isMirrored ? topLeft.x() + pixmap.width() : topLeft.x(),
        isOverturned ? topLeft.y() + pixmap.height() : topLeft.y());
    painter.setTransform(pixels * transform.inverted(), true);
    painter.drawPixmap(0, 0, pixmap);
}

QSize KRImage::_pixelSize(QSizeF size)
{
    return { std::max(1, int(std::round(size.width()))), std::max(1, int(std::round(size.height()))) };
}

QPixmap KRImage::_rendering(QSize pixels, qreal scale) const
{
    if (m_rendering->size == pixels && m_rendering->scale == scale)
        return m_rendering->pixmap;

    QPixmap pixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const Stops fromX = sourceStops(m_source->size.width(), m_leftCapWidth);
    const Stops fromY = sourceStops(m_source->size.height(), m_topCapHeight);
    const Stops toX = targetStops(pixels.width(), m_leftCapWidth, scale);
    const Stops toY = targetStops(pixels.height(), m_topCapHeight, scale);
    for (size_t column = 0; column < 3; ++column) {
        for (size_t line = 0; line < 3; ++line) {
            const QRectF from(QPointF(fromX[column], fromY[line]),
                QPointF(fromX[column + 1], fromY[line + 1]));
            const QRectF to(QPointF(toX[column], toY[line]), QPointF(toX[column + 1], toY[line + 1]));
            if (from.isEmpty() || to.isEmpty())
                continue;
            painter.save();
            painter.setClipRect(to);
            painter.translate(to.topLeft());
            painter.scale(to.width() / from.width(), to.height() / from.height());
            painter.translate(-from.topLeft());
            m_source->draw(painter);
            painter.restore();
        }
    }
    painter.end();
    *m_rendering = { pixels, scale, pixmap };
    return pixmap;
}
