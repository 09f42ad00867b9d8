#include "Portrait.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace localservice {

namespace {

// Everything is drawn on a sheet of 240 × 240 and scaled to the size asked for.
constexpr double sheet = 240;

std::string pngOf(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

class PortraitPainter {
public:
    PortraitPainter(QImage& image, const Portrait& portrait)
        : m_portrait(portrait)
        , m_painter(&image)
        , m_skin(QRgb(portrait.skin))
        , m_hair(QRgb(portrait.hair))
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.scale(image.width() / sheet, image.height() / sheet);
        m_painter.setPen(Qt::NoPen);
    }

    void draw()
    {
        drawBackground();
        drawHairBehind();
        drawShoulders();
        drawHead();
        drawBeard();
        drawFace();
        drawHairInFront();
        drawExtras();
    }

private:
    [[nodiscard]] bool has(PortraitExtra extra) const { return (m_portrait.extras & extra) != 0; }

    void ellipse(const QColor& color, double x, double y, double width, double height)
    {
        m_painter.setBrush(color);
        m_painter.drawEllipse(QPointF(x, y), width, height);
    }

    void path(const QColor& color, const QPainterPath& path)
    {
        m_painter.setBrush(color);
        m_painter.drawPath(path);
    }

    void drawBackground()
    {
        QLinearGradient gradient(0, 0, sheet, sheet);
        gradient.setColorAt(0, QColor(QRgb(m_portrait.sky)));
        gradient.setColorAt(1, QColor(QRgb(m_portrait.ground)));
        m_painter.fillRect(QRectF(0, 0, sheet, sheet), gradient);
        QColor light(Qt::white);
        light.setAlpha(38);
        ellipse(light, 52, 44, 96, 96);
        ellipse(light, 205, 150, 70, 70);
    }

    void drawHairBehind()
    {
        QPainterPath shape;
        switch (m_portrait.style) {
        case HairStyle::Long:
            shape.addRoundedRect(QRectF(58, 48, 124, 158), 60, 60);
            break;
        case HairStyle::Scarf:
            shape.addEllipse(QPointF(120, 108), 74, 82);
            shape.addRoundedRect(QRectF(62, 120, 116, 100), 50, 50);
            break;
        case HairStyle::Curly:
            for (int i = 0; i < 11; ++i) {
                const double angle = 3.5 * i / 10.0 - 0.18;
                shape.addEllipse(QPointF(120 - 62 * std::cos(angle), 102 - 58 * std::sin(angle)), 26, 26);
            }
            shape.setFillRule(Qt::WindingFill);
            break;
        case HairStyle::Bun:
            shape.addEllipse(QPointF(120, 32), 27, 25);
            break;
        default:
            return;
        }
        shape.setFillRule(Qt::WindingFill);
        path(m_hair, shape);
    }

    void drawShoulders()
    {
        const QColor clothes(QRgb(m_portrait.clothes));
        QPainterPath body;
        body.moveTo(22, 240);
        body.cubicTo(26, 184, 72, 176, 120, 176);
        body.cubicTo(168, 176, 214, 184, 218, 240);
        path(clothes, body);
        if (m_portrait.style == HairStyle::Scarf)
            return;
        path(m_skin.darker(112), [] {
            QPainterPath neck;
            neck.addRoundedRect(QRectF(98, 138, 44, 58), 20, 20);
            return neck;
        }());
        QPainterPath collar;
        collar.moveTo(88, 180);
        collar.quadTo(120, 224, 152, 180);
        collar.lineTo(160, 186);
        collar.quadTo(120, 244, 80, 186);
        path(clothes.lighter(122), collar);
    }

    void drawHead()
    {
        if (m_portrait.style != HairStyle::Scarf) {
            ellipse(m_skin.darker(106), 65, 112, 11, 15);
            ellipse(m_skin.darker(106), 175, 112, 11, 15);
        }
        ellipse(m_skin, 120, 108, 54, 62);
    }

    void drawBeard()
    {
        if (!has(Beard))
            return;
        QPainterPath beard;
        beard.moveTo(66, 112);
        beard.cubicTo(66, 196, 174, 196, 174, 112);
        beard.cubicTo(164, 142, 146, 128, 120, 130);
        beard.cubicTo(94, 128, 76, 142, 66, 112);
        path(m_hair, beard);
    }

    void drawFace()
    {
        const QColor ink(0x2b, 0x23, 0x2b);
        ellipse(ink, 99, 108, 5.5, 6.5);
        ellipse(ink, 141, 108, 5.5, 6.5);
        ellipse(Qt::white, 101, 106, 1.8, 1.8);
        ellipse(Qt::white, 143, 106, 1.8, 1.8);
        if (has(Blush)) {
            QColor blush(0xe8, 0x5a, 0x6a, 90);
            ellipse(blush, 86, 126, 10, 7);
            ellipse(blush, 154, 126, 10, 7);
        }
        m_painter.setBrush(Qt::NoBrush);
        m_painter.setPen(QPen(m_skin.darker(135), 3.2, Qt::SolidLine, Qt::RoundCap));
        m_painter.drawArc(QRectF(112, 112, 14, 14), 200 * 16, 120 * 16);
        m_painter.setPen(QPen(m_hair.darker(120), 4, Qt::SolidLine, Qt::RoundCap));
        m_painter.drawArc(QRectF(88, 90, 22, 14), 40 * 16, 100 * 16);
        m_painter.drawArc(QRectF(130, 90, 22, 14), 40 * 16, 100 * 16);
        m_painter.setPen(QPen(QColor(0xa8, 0x3c, 0x46), 4, Qt::SolidLine, Qt::RoundCap));
        m_painter.drawArc(QRectF(102, 122, 36, 26), 205 * 16, 130 * 16);
        m_painter.setPen(Qt::NoPen);
    }

    void drawHairInFront()
    {
        QPainterPath shape;
        switch (m_portrait.style) {
        case HairStyle::Short:
        case HairStyle::Bun:
            shape.moveTo(64, 104);
            shape.cubicTo(58, 24, 182, 24, 176, 104);
            shape.cubicTo(168, 74, 150, 70, 120, 70);
            shape.cubicTo(90, 70, 72, 74, 64, 104);
            break;
        case HairStyle::Side:
        case HairStyle::Long:
            shape.moveTo(62, 118);
            shape.cubicTo(52, 22, 188, 22, 178, 118);
            shape.cubicTo(172, 84, 160, 72, 142, 64);
            shape.cubicTo(124, 90, 84, 84, 62, 118);
            break;
        case HairStyle::Curly:
            for (int i = 0; i < 6; ++i)
                shape.addEllipse(QPointF(76 + 17.5 * i, i % 2 ? 58 : 66), 20, 18);
            shape.setFillRule(Qt::WindingFill);
            break;
        case HairStyle::Scarf:
            shape.addEllipse(QPointF(120, 104), 74, 80);
            shape.addEllipse(QPointF(120, 110), 46, 54);
            break;
        case HairStyle::Cap:
            drawCap();
            return;
        case HairStyle::Spiky:
            shape.moveTo(62, 104);
            for (int i = 0; i < 6; ++i) {
                shape.lineTo(66 + 20.0 * i, i % 2 ? 18 : 32);
                shape.lineTo(80 + 20.0 * i, 54);
            }
            shape.lineTo(178, 104);
            shape.cubicTo(166, 68, 74, 68, 62, 104);
            break;
        case HairStyle::None:
            return;
        }
        path(m_hair, shape);
    }

    void drawCap()
    {
        const QColor cloth(QRgb(m_portrait.clothes));
        QPainterPath crown;
        crown.moveTo(64, 84);
        crown.cubicTo(64, 22, 176, 22, 176, 84);
        path(cloth.darker(115), crown);
        QPainterPath brim;
        brim.addRoundedRect(QRectF(58, 76, 142, 15), 8, 8);
        path(cloth.darker(150), brim);
        ellipse(cloth.lighter(125), 120, 38, 7, 5);
    }

    void drawExtras()
    {
        if (has(Moustache)) {
            QPainterPath moustache;
            moustache.moveTo(120, 126);
            moustache.cubicTo(106, 120, 94, 128, 86, 142);
            moustache.cubicTo(104, 144, 114, 138, 120, 134);
            moustache.cubicTo(126, 138, 136, 144, 154, 142);
            moustache.cubicTo(146, 128, 134, 120, 120, 126);
            path(m_hair, moustache);
        }
        if (has(Earrings)) {
            ellipse(QColor(0xf4, 0xc5, 0x42), 65, 132, 5, 7);
            ellipse(QColor(0xf4, 0xc5, 0x42), 175, 132, 5, 7);
        }
        if (has(Glasses)) {
            QColor lens(Qt::white);
            lens.setAlpha(70);
            m_painter.setBrush(lens);
            m_painter.setPen(QPen(QColor(0x33, 0x2f, 0x3d), 4.5));
            m_painter.drawRoundedRect(QRectF(80, 94, 36, 30), 13, 13);
            m_painter.drawRoundedRect(QRectF(124, 94, 36, 30), 13, 13);
            m_painter.drawLine(QPointF(116, 106), QPointF(124, 106));
            m_painter.setPen(Qt::NoPen);
        }
    }

    const Portrait& m_portrait;
    QPainter m_painter;
    QColor m_skin;
    QColor m_hair;
};

} // namespace

std::string drawnPortrait(const Portrait& portrait, int size)
{
    QImage image(size, size, QImage::Format_RGB32);
    PortraitPainter(image, portrait).draw();
    return pngOf(image);
}

std::string drawnSilhouette(int size)
{
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(QColor(0xc3, 0xcd, 0xd9));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / sheet, size / sheet);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xf2, 0xf5, 0xf8));
    painter.drawEllipse(QPointF(120, 96), 48, 52);
    painter.drawEllipse(QPointF(120, 238), 90, 78);
    painter.end();
    return pngOf(image);
}

} // namespace localservice
