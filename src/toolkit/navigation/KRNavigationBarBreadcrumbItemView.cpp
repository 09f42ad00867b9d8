#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"

#include "text/render/KRActiveTextStyle.h"
#include "toolkit/images/KRImage.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <utility>

namespace {

constexpr int ShownLength = 15;
constexpr double WidestTitle = 100;
constexpr int Padding = 30;
constexpr int TitleX = 10;
// Where the title's first line begins when it is as high as that; other fonts have the same middle.
constexpr int TitleTop = 7;
constexpr int TitleLineHeight = 13;
constexpr int DividerWidth = 11;
constexpr int DividerHeight = 26;
constexpr int FontSize = 10;
constexpr float EmbossedOpacity = 0.43F;
constexpr float TitleOpacity = 0.8F;
constexpr QColor FocusColor(0x0B, 0x4F, 0xA8);

const KRImage& dividerImage()
{
    static const KRImage image = KRImage::imageNamed(QStringLiteral("toolkit/BreadcrumbDivider.svg"));
    return image;
}

} // namespace

KRNavigationBarBreadcrumbItemView::KRNavigationBarBreadcrumbItemView(std::shared_ptr<KRNavigationItem> item)
    : m_navigationItem(std::move(item))
{
    setFocusPolicy(Qt::TabFocus);
    setText(m_navigationItem->title());
}

KRNavigationBarBreadcrumbItemView::~KRNavigationBarBreadcrumbItemView() = default;

void KRNavigationBarBreadcrumbItemView::setText(const QString& text)
{
    m_text = text;
    setAccessibleName(text);
    // Escaped: titles come from anywhere, and a tool tip would show the markup in them.
    setToolTip(shownTitle(text) == text ? QString() : text.toHtmlEscaped());
    update();
}

QString KRNavigationBarBreadcrumbItemView::shownTitle(const QString& title)
{
    if (title.size() <= ShownLength)
        return title;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, title);
    finder.setPosition(ShownLength);
    if (!finder.isAtBoundary())
        finder.toPreviousBoundary();
    return title.left(std::max(0, int(finder.position())));
}

int KRNavigationBarBreadcrumbItemView::widthForTitle(const QString& title)
{
    const QFontMetricsF metrics(attributesEmbossed(Embossed::No, false).font);
    return int(std::min(metrics.horizontalAdvance(shownTitle(title)), WidestTitle)) + Padding;
}

KRNavigationBarBreadcrumbItemView::Attributes
KRNavigationBarBreadcrumbItemView::attributesEmbossed(Embossed embossed, bool selected)
{
    QFont font = KRMessageFont(FontSize);
    font.setBold(true);
    if (embossed == Embossed::Yes)
        return { font, QColor::fromRgbF(1, 1, 1, EmbossedOpacity) };
    return { font, QColor::fromRgbF(0, 0, 0, selected ? 1 : TitleOpacity) };
}

void KRNavigationBarBreadcrumbItemView::_setSelected(bool selected)
{
    m_flags.selected = selected;
    update();
}

void KRNavigationBarBreadcrumbItemView::click()
{
    // A copy: the action may destroy the crumb.
    const auto action = m_action;
    if (action)
        action(*this);
}

void KRNavigationBarBreadcrumbItemView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    _setSelected(true);
}

void KRNavigationBarBreadcrumbItemView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPointer<KRNavigationBarBreadcrumbItemView> self(this);
    if (isSelected() && rect().contains(event->position().toPoint()))
        click();
    if (self)
        _setSelected(false);
}

void KRNavigationBarBreadcrumbItemView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event->isAutoRepeat())
            click();
        break;
    default:
        event->ignore();
    }
}

void KRNavigationBarBreadcrumbItemView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void KRNavigationBarBreadcrumbItemView::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    _setSelected(false);
}

// Drawing

void KRNavigationBarBreadcrumbItemView::_drawTitle(QPainter& painter, Embossed embossed, int top) const
{
    const Attributes look = attributesEmbossed(embossed, isSelected());
    const QFontMetrics metrics(look.font);
    const int y = top + (TitleLineHeight - metrics.height()) / 2;
    const QString title = metrics.elidedText(shownTitle(m_text),
        Qt::ElideRight,
        width() - TitleX - DividerWidth,
        Qt::TextSingleLine);
    painter.setFont(look.font);
    painter.setPen(look.color);
    // On the base line of the font that was asked for: letters that come from another one stand beside the
    // others, not higher or lower.
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    const int x = isRightToLeft() ? width() - TitleX - metrics.horizontalAdvance(title) : TitleX;
    painter.drawText(x, y + metrics.ascent(), title);
}

void KRNavigationBarBreadcrumbItemView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect divider(width() - DividerWidth, 0, DividerWidth, DividerHeight);
    if (isRightToLeft()) {
        painter.save();
        painter.translate(width(), 0);
        painter.scale(-1, 1);
        dividerImage().drawInContext(painter, divider, KRImage::Flipped::Yes);
        painter.restore();
    } else {
        dividerImage().drawInContext(painter, divider, KRImage::Flipped::Yes);
    }
    _drawTitle(painter, Embossed::Yes, TitleTop + 1);
    _drawTitle(painter, Embossed::No, TitleTop);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(FocusColor, 2));
        const QRectF inner = QRectF(QStyle::visualRect(layoutDirection(),
                                        rect(),
                                        QRect(3, 4, width() - 3 - DividerWidth, height() - 7)))
                                 .adjusted(1, 1, -1, -1);
        painter.drawRoundedRect(inner, 4, 4);
    }
}
