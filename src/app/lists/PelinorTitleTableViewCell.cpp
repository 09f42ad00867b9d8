#include "app/lists/PelinorTitleTableViewCell.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorProfileImage.h"
#include "text/render/KRActiveTextStyle.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int TitleSize = 11;
constexpr int DetailSize = 10;
constexpr int HeadingHeight = 30;
constexpr int LowHeight = 36;
constexpr int HighHeight = 62;
constexpr int Margin = 16;
constexpr int PictureRight = 73;
constexpr int DotSide = 10;
constexpr int SelectionMarkWidth = 3;

QFont titleFont(int size, QFont::Weight weight = QFont::Normal)
{
    QFont font = KRMessageFont(size);
    font.setWeight(weight);
    return font;
}

} // namespace

PelinorTitleTableViewCell::PelinorTitleTableViewCell(KRNotificationCenter& notifications)
    : KRTableViewCell(identifier())
    , m_notifications(notifications)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

PelinorTitleTableViewCell::~PelinorTitleTableViewCell() = default;

QString PelinorTitleTableViewCell::identifier()
{
    return QStringLiteral("PelinorTitleTableViewCell");
}

int PelinorTitleTableViewCell::heightForContent(const Content& content)
{
    if (content.isHeading || content.isNote)
        return HeadingHeight;
    return content.hasUser || !content.detail.isEmpty() ? HighHeight : LowHeight;
}

QString PelinorTitleTableViewCell::accessibleNameForContent(const Content& content)
{
    QStringList parts { content.title.simplified() };
    if (content.isFresh)
        parts.append(tr("new"));
    for (const QString& part : { content.detail.simplified(), content.date }) {
        if (!part.isEmpty())
            parts.append(part);
    }
    return parts.join(QStringLiteral(", "));
}

void PelinorTitleTableViewCell::setContent(const Content& content)
{
    m_content = content;
    m_fillMenu = nullptr;
    m_dragged = nullptr;
    if (content.user) {
        m_userObservation = m_notifications.observe<TwitterUserDidUpdateNotification>(
            [this](const TwitterUserDidUpdateNotification&) { update(); },
            content.user.get());
    } else {
        m_userObservation.invalidate();
    }
    setAccessibleName(accessibleNameForContent(content));
    update();
}

bool PelinorTitleTableViewCell::activate()
{
    // A copy: the handler may destroy the cell.
    const auto activated = m_activated;
    if (!activated || m_content.isHeading || m_content.isNote)
        return false;
    activated();
    return true;
}

QStringList PelinorTitleTableViewCell::actionNames() const
{
    QStringList names;
    if (m_fillMenu) {
        QMenu menu;
        m_fillMenu(menu);
        for (const QAction* const action : menu.actions())
            names.append(action->text());
    }
    return names;
}

void PelinorTitleTableViewCell::performAction(const QString& name)
{
    if (!m_fillMenu)
        return;
    QMenu menu;
    m_fillMenu(menu);
    for (QAction* const action : menu.actions()) {
        if (action->text() == name) {
            action->trigger();
            return;
        }
    }
}

void PelinorTitleTableViewCell::contextMenuEvent(QContextMenuEvent* event)
{
    if (!m_fillMenu)
        return;
    auto* const menu = new QMenu(window());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    m_fillMenu(*menu);
    menu->popup(event->globalPos());
}

void PelinorTitleTableViewCell::mousePressEvent(QMouseEvent* event)
{
    m_pressedAt = event->position().toPoint();
    m_isDragged = false;
    KRTableViewCell::mousePressEvent(event);
}

void PelinorTitleTableViewCell::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    const bool isFar = (position - m_pressedAt).manhattanLength() >= QApplication::startDragDistance();
    if (!m_dragged || !event->buttons().testFlag(Qt::LeftButton) || (!m_isDragged && !isFar))
        return;
    m_isDragged = true;
    m_dragged(position.y());
}

void PelinorTitleTableViewCell::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (std::exchange(m_isDragged, false)) {
        // A copy: the handler may destroy the cell.
        if (const auto dropped = m_dragged)
            dropped(std::nullopt);
    } else if (rect().contains(event->position().toPoint())) {
        activate();
    }
}

void PelinorTitleTableViewCell::paintEvent(QPaintEvent* /*event*/)
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    const bool isQuiet = m_content.isHeading || m_content.isNote;
    const bool isSelected = selected() && !isQuiet;
    QPainter painter(this);
    painter.fillRect(rect(), isSelected ? colors.selectedBackground : colors.background);
    // Everything is placed from left to right, and mirrored where one reads the other way.
    const auto mirrored = [this](const QRect& frame) {
        return isRightToLeft() ? QRect({ width() - frame.x() - frame.width(), frame.y() }, frame.size())
                               : frame;
    };
    if (isSelected)
        painter.fillRect(mirrored({ 0, 0, SelectionMarkWidth, height() }), colors.selectionMark);
    const qreal hairline = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), colors.separator);

    int left = Margin;
    if (m_content.hasUser) {
        PelinorProfileImage::draw(painter,
            mirrored({ 6, (height() - PelinorProfileImage::Side) / 2, 52, 52 }),
            m_content.user ? m_content.user->profileImage() : nullptr,
            colors);
        left = PictureRight;
    }
    int right = width() - Margin;
    // What others wrote is read in its own direction.
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    const bool hasDetail = !m_content.detail.isEmpty();
    const QRect line = hasDetail ? QRect(0, 10, width(), 20) : rect();
    if (!m_content.date.isEmpty()) {
        painter.setFont(titleFont(DetailSize - 1));
        painter.setPen(colors.secondaryText);
        const int width = painter.fontMetrics().horizontalAdvance(m_content.date);
        painter.drawText(mirrored({ right - width, line.y(), width, line.height() }),
            int(Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine),
            m_content.date);
        right -= width + Margin / 2;
    }
    if (m_content.isFresh) {
        const QRect dot = mirrored({ right - DotSide, line.center().y() - DotSide / 2, DotSide, DotSide });
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.selectionMark);
        painter.drawEllipse(dot);
        right -= DotSide + Margin / 2;
    }
    painter.setFont(isQuiet
            ? titleFont(DetailSize, m_content.isNote ? QFont::Normal : QFont::DemiBold)
            : titleFont(TitleSize, m_content.hasUser || m_content.isFresh ? QFont::DemiBold : QFont::Normal));
    painter.setPen(isQuiet ? colors.secondaryText : colors.name);
    const auto drawLine = [&](const QString& text, const QRect& frame) {
        const auto side = isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
        painter.drawText(mirrored(frame),
            int(Qt::AlignVCenter | side | Qt::AlignAbsolute | Qt::TextSingleLine),
            painter.fontMetrics().elidedText(text.simplified(), Qt::ElideRight, frame.width()));
    };
    drawLine(m_content.title, { left, line.y(), right - left, line.height() });
    if (!hasDetail)
        return;
    painter.setFont(titleFont(DetailSize));
    painter.setPen(colors.secondaryText);
    drawLine(m_content.detail, { left, 31, width() - Margin - left, 20 });
}
