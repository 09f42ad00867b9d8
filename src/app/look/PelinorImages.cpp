#include "app/look/PelinorImages.h"

#include "foundation/KRLog.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <utility>

namespace {

KRImage loadImage(const QString& name, const QColor& color)
{
    QFile file(QStringLiteral(":/app/%1.svg").arg(name));
    const auto renderer = std::make_shared<QSvgRenderer>();
    const bool isRead = file.open(QIODevice::ReadOnly);
    const QByteArray drawing
        = isRead ? file.readAll().replace("currentColor", color.name().toLatin1()) : QByteArray();
    if (!isRead || !renderer->load(drawing)) {
        KRLog(QStringLiteral("ERROR: no image named %1").arg(name));
        return {};
    }
    const QSizeF size = renderer->defaultSize();
    return KRImage::imageWithDrawing(size,
        [renderer, size](QPainter& painter) { renderer->render(&painter, QRectF(QPointF(), size)); });
}

// Draws the vectors at whatever size is asked for.
class ImageIconEngine final : public QIconEngine {
public:
    explicit ImageIconEngine(KRImage image)
        : m_image(std::move(image))
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        // Whoever draws next, a button its text, finds the painter as it was.
        const qreal opacity = painter->opacity();
        if (mode == QIcon::Disabled)
            painter->setOpacity(opacity * DisabledOpacity);
        m_image.drawInContext(*painter, rect, KRImage::Flipped::Yes);
        painter->setOpacity(opacity);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new ImageIconEngine(m_image); }

private:
    static constexpr qreal DisabledOpacity = 0.4;

    KRImage m_image;
};

} // namespace

const KRImage& PelinorImages::named(const QString& name)
{
    return named(name, Qt::black);
}

const KRImage& PelinorImages::named(const QString& name, const QColor& color)
{
    static QHash<std::pair<QString, QRgb>, KRImage> images;
    const auto key = std::pair(name, color.rgb());
    const auto known = images.constFind(key);
    return known != images.cend() ? *known : *images.insert(key, loadImage(name, color));
}

QIcon PelinorImages::icon(const QString& name, const QColor& color)
{
    return QIcon(new ImageIconEngine(named(name, color)));
}
