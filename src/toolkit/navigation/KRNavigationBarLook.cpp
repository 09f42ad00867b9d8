#include "toolkit/navigation/KRNavigationBarLook.h"

#include "toolkit/images/KRGradient.h"

#include <QPainter>

namespace {

// From the top of the bar to the step.
constexpr int StepHeight = 12;
constexpr double LineOpacity = 0.35;

KRColor grey(float value)
{
    return KRColor::rgba(value, value, value, 1);
}

} // namespace

void KRDrawNavigationBar(QPainter& painter, const QRect& rect)
{
    static const KRGradient upper(grey(0.70F), grey(0.66F));
    static const KRGradient lower(grey(0.62F), grey(0.57F));
    const QRect upperRect(rect.x(), rect.y(), rect.width(), StepHeight);
    upper.drawInRect(painter, upperRect, KRGradient::Direction::Down);
    lower.drawInRect(painter, rect.adjusted(0, StepHeight, 0, 0), KRGradient::Direction::Down);
    painter.fillRect(QRectF(rect.x(), rect.y() + rect.height() - 1, rect.width(), 1),
        QColor::fromRgbF(0, 0, 0, float(LineOpacity)));
}
