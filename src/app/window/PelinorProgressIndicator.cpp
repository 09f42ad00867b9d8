#include "app/window/PelinorProgressIndicator.h"

#include "app/look/PelinorWindowColors.h"
#include "toolkit/transitions/KRMotion.h"

#include <QPainter>

namespace {

constexpr int Spokes = 12;
constexpr auto StepDuration = std::chrono::milliseconds(80);
constexpr qreal InnerRadius = 3.5;
constexpr qreal OuterRadius = 6.5;
constexpr qreal SpokeWidth = 1.4;
constexpr qreal FaintestSpoke = 0.15;

} // namespace

PelinorProgressIndicator::PelinorProgressIndicator(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("progressIndicator"));
    setAccessibleName(tr("Loading"));
    setFixedSize(Side, Side);
    hide();
}

PelinorProgressIndicator::~PelinorProgressIndicator() = default;

void PelinorProgressIndicator::startAnimation()
{
    if (std::exchange(m_isAnimating, true))
        return;
    show();
    if (!KRMotion::isEnabled())
        return;
    m_timer = KRRunLoop::main().scheduleTimer(StepDuration, KRRunLoop::Repeats::Yes, [this] {
        m_step = (m_step + 1) % Spokes;
        update();
    });
}

void PelinorProgressIndicator::stopAnimation()
{
    m_isAnimating = false;
    m_timer.invalidate();
    hide();
}

void PelinorProgressIndicator::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect().center() + QPointF(0.5, 0.5));
    painter.rotate(360.0 * m_step / Spokes);
    const QColor color = PelinorWindowColors::forPalette(palette()).stripText;
    for (int spoke = 0; spoke < Spokes; ++spoke) {
        QColor faded = color;
        faded.setAlphaF(float(FaintestSpoke + (1 - FaintestSpoke) * spoke / (Spokes - 1)));
        painter.setPen(QPen(faded, SpokeWidth, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -InnerRadius), QPointF(0, -OuterRadius));
        painter.rotate(360.0 / Spokes);
    }
}
