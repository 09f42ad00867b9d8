#include "toolkit/navigation/FadeyView.h"

#include "toolkit/images/KRGradient.h"
#include "toolkit/navigation/KRNavigationBarLook.h"

#include <QPainter>

FadeyView::FadeyView(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

FadeyView::~FadeyView() = default;

void FadeyView::paintEvent(QPaintEvent* /*event*/)
{
    static const KRGradient fade(KRColor::rgba(0, 0, 0, 1), KRColor::rgba(0, 0, 0, 0));
    QPixmap background(size() * devicePixelRatioF());
    background.setDevicePixelRatio(devicePixelRatioF());
    background.fill(Qt::transparent);
    QPainter backgroundPainter(&background);
    KRDrawNavigationBar(backgroundPainter, rect());
    backgroundPainter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    const QRectF area(rect());
    if (isRightToLeft())
        fade.drawFromPoint(backgroundPainter, area, area.topRight(), area.topLeft());
    else
        fade.drawFromPoint(backgroundPainter, area, area.topLeft(), area.topRight());
    backgroundPainter.end();
    QPainter(this).drawPixmap(0, 0, background);
}
