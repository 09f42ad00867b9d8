#include "toolkit/transitions/KRScreenshot.h"

#include <QWidget>

namespace {

// A screen four times as wide and high as today's; beyond it a picture costs more than it shows.
constexpr qint64 LargestPixelCount = qint64(15360) * 8640;

} // namespace

QPixmap CreateCGImageScreenshot(QWidget& view)
{
    const qreal scale = view.devicePixelRatioF();
    const QSizeF pixels = QSizeF(view.size()) * scale;
    if (view.size().isEmpty() || pixels.width() * pixels.height() > qreal(LargestPixelCount))
        return {};
    QPixmap image(pixels.toSize());
    image.setDevicePixelRatio(scale);
    // What shows through a view that fills no background of its own.
    image.fill(view.palette().color(QPalette::Window));
    view.render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}
