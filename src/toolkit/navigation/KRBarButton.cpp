#include "toolkit/navigation/KRBarButton.h"

#include "text/render/KRActiveTextStyle.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int FontSize = 10;
constexpr int SidePadding = 10;
constexpr int FieldHeight = 19;
constexpr int Radius = 4;
constexpr float HoverOpacity = 0.1F;
constexpr float PressedOpacity = 0.22F;
constexpr QColor FocusColor(0x0B, 0x4F, 0xA8);

} // namespace

KRBarButton::KRBarButton(const QString& text, QWidget* parent)
    : QAbstractButton(parent)
{
    setFont(KRMessageFont(FontSize));
    setText(text);
    setFocusPolicy(Qt::TabFocus);
    // The pointer shows without a button held.
    setAttribute(Qt::WA_Hover);
}

QString KRBarButton::_shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, width() - 2 * SidePadding);
}

QRect KRBarButton::fieldRect() const
{
    const int wide = fontMetrics().horizontalAdvance(_shownText()) + 2 * SidePadding;
    QRect field(0, 0, std::min(wide, width()), std::min(FieldHeight, height()));
    field.moveCenter(rect().center());
    return field;
}

QSize KRBarButton::sizeHint() const
{
    return { fontMetrics().horizontalAdvance(text()) + 2 * SidePadding, FieldHeight };
}

void KRBarButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF field = fieldRect();
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromRgbF(0, 0, 0, isDown() ? PressedOpacity : HoverOpacity));
        painter.drawRoundedRect(field, Radius, Radius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(FocusColor, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(field.adjusted(1, 1, -1, -1), Radius, Radius);
    }
    // The bar is light in all surroundings.
    painter.setPen(Qt::black);
    painter.drawText(rect(), int(Qt::AlignCenter | Qt::TextSingleLine), _shownText());
}
