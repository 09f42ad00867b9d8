#include "GalleryImagesPage.h"

#include "GalleryLook.h"
#include "toolkit/images/KRGradient.h"
#include "toolkit/images/KRImage.h"

#include <QPainter>
#include <QPainterPath>

#include <array>

namespace {

constexpr int Margin = 24;
constexpr int HeadingHeight = 30;

// A button of 24 × 24 points whose corners keep their shape.
KRImage buttonImage()
{
    return KRImage::imageWithDrawing({ 24, 24 }, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient fill(0, 0, 0, 24);
        fill.setColorAt(0, QColor(0x6D, 0xB3, 0xF2));
        fill.setColorAt(1, QColor(0x1E, 0x69, 0xDE));
        painter.setBrush(fill);
        painter.setPen(QPen(QColor(0x12, 0x3E, 0x86), 1));
        painter.drawRoundedRect(QRectF(0.5, 0.5, 23, 23), 8, 8);
    }).stretchableImageWithLeftCapWidth(10, 10);
}

// A frame whose corners differ, so that a cap in the wrong place would be seen.
KRImage frameImage()
{
    return KRImage::imageWithDrawing({ 32, 32 }, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0xF4, 0xD3, 0x8A));
        painter.drawRoundedRect(QRectF(0, 0, 32, 32), 10, 10);
        painter.setBrush(QColor(0xFF, 0xF7, 0xE6));
        painter.drawRoundedRect(QRectF(4, 4, 24, 24), 6, 6);
        painter.setBrush(QColor(0xC9, 0x54, 0x3F));
        painter.drawEllipse(QPointF(8, 8), 2.5, 2.5);
        painter.setBrush(QColor(0x3F, 0x7F, 0xC9));
        painter.drawEllipse(QPointF(24, 24), 2.5, 2.5);
    }).stretchableImageWithLeftCapWidth(14, 14);
}

class ImagesView final : public QWidget {
public:
    ImagesView() { setAccessibleName(QStringLiteral("Images and gradients")); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        // Samples and measures are the same for every reader.
        painter.setLayoutDirection(Qt::LeftToRight);
        const GalleryLook& look = GalleryLook::forPalette(palette());
        painter.fillRect(rect(), look.page);
        int y = Margin;
        y = _heading(painter, y, QStringLiteral("Corners keep their shape at any size"));
        y = _row(painter, y, m_button, { QSize(24, 24), { 37, 24 }, { 101, 24 }, { 233, 31 }, { 57, 57 } });
        y = _row(painter, y, m_frame, { QSize(32, 32), { 47, 71 }, { 129, 53 }, { 201, 37 }, { 33, 90 } });
        y = _heading(painter, y + 6, QStringLiteral("Smaller than the caps"));
        y = _row(painter, y, m_button, { QSize(19, 24), { 24, 13 }, { 11, 11 }, { 5, 24 }, { 3, 3 } });
        y = _heading(painter, y + 6, QStringLiteral("Scroller knobs"));
        y = _row(painter, y, m_knob, { QSize(11, 21), { 11, 60 }, { 11, 33 }, { 11, 90 }, { 11, 12 } });
        y = _heading(painter, y + 6, QStringLiteral("Gradients"));
        _gradients(painter, y);
    }

private:
    int _heading(QPainter& painter, int y, const QString& text) const
    {
        painter.setFont(GalleryLook::font(11, true));
        painter.setPen(GalleryLook::forPalette(palette()).text);
        painter.drawText(QRect(Margin, y, width() - 2 * Margin, 20),
            Qt::AlignVCenter | Qt::AlignLeading,
            text);
        return y + HeadingHeight;
    }

    int _row(QPainter& painter, int y, const KRImage& image, const std::array<QSize, 5>& sizes) const
    {
        painter.setFont(GalleryLook::font(8));
        painter.setPen(GalleryLook::forPalette(palette()).secondaryText);
        int x = Margin;
        int bottom = y;
        for (const QSize& size : sizes) {
            image.drawInContext(painter, QRectF(QPointF(x, y), size), KRImage::Flipped::Yes);
            const QString label = QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
            painter.drawText(QPoint(x, y + size.height() + 16), label);
            x += std::max(size.width(), painter.fontMetrics().horizontalAdvance(label)) + 24;
            bottom = std::max(bottom, y + size.height());
        }
        return bottom + 32;
    }

    void _gradients(QPainter& painter, int y) const
    {
        static const KRGradient twoColors(KRColor::rgba(0.95F, 0.6F, 0.25F, 1),
            KRColor::rgba(0.55F, 0.15F, 0.4F, 1));
        static const KRGradient threeColors({ { 0, KRColor::rgba(0.1F, 0.35F, 0.45F, 1) },
            { 0.5, KRColor::rgba(0.4F, 0.75F, 0.65F, 1) },
            { 1, KRColor::rgba(0.95F, 0.95F, 0.8F, 1) } });
        static const KRGradient clear(KRColor::rgba(0.5F, 0.5F, 0.55F, 1),
            KRColor::rgba(0.5F, 0.5F, 0.55F, 0));
        const QSizeF size(180, 56);
        twoColors.drawInRect(painter, { QPointF(Margin, y), size }, KRGradient::Direction::Down);
        threeColors.drawInRect(painter, { QPointF(Margin + 204, y), size }, KRGradient::Direction::Right);
        clear.drawInRect(painter, { QPointF(Margin + 408, y), size }, KRGradient::Direction::Right);
    }

    KRImage m_button = buttonImage();
    KRImage m_frame = frameImage();
    KRImage m_knob = KRImage::imageNamed(QStringLiteral("toolkit/ScrollKnob.svg"))
                         .stretchableImageWithLeftCapWidth(5, 10);
};

} // namespace

void GalleryImagesPage::loadView()
{
    setView(std::make_unique<ImagesView>());
}
