#include "app/lists/PelinorStatusTableViewCell.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorProfileImage.h"
#include "text/KRDateAdditions.h"
#include "text/render/KRTextHeightCache.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QHoverEvent>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int NamePointSize = 11;
constexpr int DatePointSize = 9;
constexpr int SelectionMarkWidth = 3;
constexpr int SpaceAfterName = 5;
constexpr qreal DimmedPictureOpacity = 0.55;
// What a pointer may miss a small button by.
constexpr int ButtonSlack = 5;
// The frames of name, date and text begin at different places; what is drawn in them on one line.
constexpr int NameInset = 2;
constexpr int OwnDateInset = 3;

QFont nameFont()
{
    QFont font = KRMessageFont(NamePointSize);
    font.setWeight(QFont::DemiBold);
    return font;
}

// Names come from the network: one line, whatever is in them.
QString singleLine(const QString& text)
{
    return text.simplified();
}

KRActiveTextStyle textStyle(int fontSizePreference, const KRActiveTextColors& colors = {})
{
    return { fontSizePreference, colors };
}

} // namespace

PelinorStatusTableViewCell::PelinorStatusTableViewCell(KRNotificationCenter& notifications)
    : KRTableViewCell(identifier())
    , m_notifications(notifications)
    , m_tracker(new KRActiveTextTracker(*this, m_text))
{
    m_tracker->setClickHandler([this](const QString& text, KRActiveStringType type) {
        if (m_delegate)
            m_delegate->pelinorCellClickedLink(*this, text, row(), type);
    });
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_Hover);
}

PelinorStatusTableViewCell::~PelinorStatusTableViewCell() = default;

QString PelinorStatusTableViewCell::identifier()
{
    return QStringLiteral("PelinorStatusTableViewCell");
}

int PelinorStatusTableViewCell::heightForStatus(const TwitterStatus& status,
    int tableWidth,
    PelinorStatusCellLayout layout,
    const PelinorDisplayPreferences& preferences,
    KRTextHeightCache& heights)
{
    const KRActiveTextStyle style = textStyle(preferences.statusCellFontSize);
    const int textWidth = PelinorStatusCellGeometry { tableWidth, layout.isMine }.textWidth();
    const int textHeight
        = heights.height(status.text(), KRStatusFont(layout.textSize, style), textWidth, [&] {
              return AttributedStringForStatus(status.text(),
                  status.activeTextRanges(),
                  layout.textSize,
                  style);
          });
    return std::max(PelinorStatusCellGeometry::MinimumHeight,
        textHeight + PelinorStatusCellGeometry::HeightBesideText);
}

void PelinorStatusTableViewCell::setStatus(const TwitterStatusPtr& status,
    PelinorStatusCellLayout layout,
    const PelinorDisplayPreferences& preferences)
{
    m_status = status;
    m_drawnAuthor.reset();
    m_layout = layout;
    m_fontSizePreference = preferences.statusCellFontSize;
    m_showsUserName = preferences.displayName == PelinorDisplayPreferences::DisplayUserName;
    m_dimsReadStatuses = preferences.dimPreviouslySelectedTweets;
    if (const TwitterUserPtr& user = status->fromUser()) {
        m_userObservation = m_notifications.observe<TwitterUserDidUpdateNotification>(
            [this](const TwitterUserDidUpdateNotification&) { _authorDidUpdate(); },
            user.get());
    } else {
        m_userObservation.invalidate();
    }
    m_date = KRAdditions::relativeTimeAgoString(status->date());
    _layOutText();
    _describeForAccessibility();
    update();
}

PelinorStatusTableViewCell::Author PelinorStatusTableViewCell::_author() const
{
    const TwitterUserPtr& user = m_status->fromUser();
    return user ? Author { user->username(), user->fullName(), user->profileImage() } : Author();
}

void PelinorStatusTableViewCell::_authorDidUpdate()
{
    // Every post that comes tells all of its author; little of that is new, and less of it is drawn.
    if (!m_drawnAuthor || *m_drawnAuthor != _author())
        update();
}

void PelinorStatusTableViewCell::updateDate()
{
    const QString date = KRAdditions::relativeTimeAgoString(m_status->date());
    if (date == m_date)
        return;
    m_date = date;
    _describeForAccessibility();
    update(_geometry().dateFrame());
}

PelinorStatusCellGeometry PelinorStatusTableViewCell::_geometry() const
{
    return { width(), m_layout.isMine };
}

const PelinorCellColors& PelinorStatusTableViewCell::_colors() const
{
    return PelinorCellColors::forPalette(palette());
}

void PelinorStatusTableViewCell::_layOutText()
{
    m_text.setContainerSize({ qreal(_geometry().textWidth()), KRActiveTextRenderer::UnboundedHeight });
    _setTextInTone(_tone());
    m_tracker->textDidChange(_geometry().textOrigin());
}

PelinorStatusTableViewCell::Tone PelinorStatusTableViewCell::_tone() const
{
    if (selected())
        return Tone::Selected;
    return m_dimsReadStatuses && m_status->isRead() ? Tone::Dimmed : Tone::Normal;
}

void PelinorStatusTableViewCell::_setTextInTone(Tone tone)
{
    const PelinorCellColors& colors = _colors();
    m_textTone = tone;
    m_text.setAttributedString(AttributedStringForStatus(m_status->text(),
                                   m_status->activeTextRanges(),
                                   m_layout.textSize,
                                   textStyle(m_fontSizePreference,
                                       tone == Tone::Selected     ? colors.selectedSpans
                                           : tone == Tone::Dimmed ? colors.dimmedSpans
                                                                  : colors.spans)),
        m_status->activeTextRanges());
}

QColor PelinorStatusTableViewCell::_inTone(const QColor& color) const
{
    return m_textTone == Tone::Dimmed ? _colors().dimmedText : color;
}

void PelinorStatusTableViewCell::setIsFavorite(bool isFavorite)
{
    if (std::exchange(m_isFavorite, isFavorite) == isFavorite)
        return;
    _describeForAccessibility();
    update();
}

void PelinorStatusTableViewCell::setIsHighlighted(bool isHighlighted)
{
    if (std::exchange(m_isHighlighted, isHighlighted) != isHighlighted)
        update();
}

// What the user does with it

/// An item of the menu, or a line between two of them.
struct PelinorStatusTableViewCell::MenuItem {
    const char* title = nullptr;
    Action action = nullptr;
    const char* name = nullptr;
};

std::vector<PelinorStatusTableViewCell::MenuItem> PelinorStatusTableViewCell::_menuItems() const
{
    using Delegate = PelinorCellDelegate;
    std::vector<MenuItem> items {
        { QT_TR_NOOP("Reply..."), &Delegate::pelinorStatusCellReplyToStatus, "replyToTweet" },
        { QT_TR_NOOP("Repost..."), &Delegate::pelinorStatusCellRepostStatus, "repostTweet" },
        { QT_TR_NOOP("Copy Link to Tweet"), &Delegate::pelinorStatusCellPostLinkToStatus, "copyLinkToTweet" },
        {},
        { QT_TR_NOOP("Direct Message..."),
            &Delegate::pelinorStatusCellDirectMessageUser,
            "directMessageUser" },
        {},
        { QT_TR_NOOP("Mark As Favorite"),
            &Delegate::pelinorStatusCellToggleFavoriteForStatus,
            "toggleTweetFavorite" },
        {},
        { QT_TR_NOOP("Open in Browser"), &Delegate::pelinorStatusCellViewOnTwitter, "viewOnTwitter" },
    };
    if (m_layout.isMine) {
        items.push_back({});
        items.push_back(
            { QT_TR_NOOP("Delete..."), &Delegate::pelinorStatusCellDestroyStatus, "destroyTweet" });
    }
    return items;
}

std::unique_ptr<QMenu> PelinorStatusTableViewCell::menuForAction()
{
    auto menu = std::make_unique<QMenu>();
    for (const MenuItem& item : _menuItems()) {
        if (!item.title) {
            menu->addSeparator();
            continue;
        }
        QAction* const entry
            = menu->addAction(tr(item.title), this, [this, action = item.action, status = m_status] {
                  if (m_delegate)
                      (m_delegate->*action)(*this, status);
              });
        entry->setObjectName(QLatin1String(item.name));
    }
    return menu;
}

QStringList PelinorStatusTableViewCell::actionNames() const
{
    QStringList names;
    for (const MenuItem& item : _menuItems()) {
        if (item.title)
            names.append(tr(item.title));
    }
    return names;
}

void PelinorStatusTableViewCell::performAction(const QString& name)
{
    for (const MenuItem& item : _menuItems()) {
        if (item.title && m_delegate && tr(item.title) == name) {
            (m_delegate->*item.action)(*this, m_status);
            return;
        }
    }
}

QPoint PelinorStatusTableViewCell::replyPoint() const
{
    return mapToGlobal(_geometry().replyButtonDisplayRect().center());
}

QRect PelinorStatusTableViewCell::_rectOf(Part part) const
{
    switch (part) {
    case Part::ReplyButton:
        return _geometry().replyButtonDisplayRect();
    case Part::ActionButton:
        return PelinorStatusCellGeometry::actionRect(width(), height());
    case Part::Picture:
        return _geometry().profileImageFrame();
    case Part::None:
        break;
    }
    return {};
}

PelinorStatusTableViewCell::Part PelinorStatusTableViewCell::_partAt(QPoint position) const
{
    for (const Part part : { Part::ReplyButton, Part::ActionButton }) {
        if (_rectOf(part).adjusted(-ButtonSlack, -ButtonSlack, ButtonSlack, ButtonSlack).contains(position))
            return part;
    }
    return _rectOf(Part::Picture).contains(position) ? Part::Picture : Part::None;
}

void PelinorStatusTableViewCell::_setHovered(bool isHovered, Part part)
{
    if (m_isHovered == isHovered && m_hoveredPart == part)
        return;
    m_isHovered = isHovered;
    m_hoveredPart = part;
    update();
}

bool PelinorStatusTableViewCell::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        _setHovered(true, _partAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
        break;
    case QEvent::HoverLeave:
    case QEvent::Hide:
        _setHovered(false, Part::None);
        break;
    case QEvent::ToolTip: {
        const auto* const help = static_cast<QHelpEvent*>(event);
        const bool isOnDate = m_status && _geometry().dateFrame().contains(help->pos());
        const QString date
            = isOnDate ? QLocale().toString(m_status->date().toLocalTime(), QLocale::LongFormat) : QString();
        QToolTip::showText(help->globalPos(), date.toHtmlEscaped(), this);
        return true;
    }
    default:
        break;
    }
    return KRTableViewCell::event(event);
}

void PelinorStatusTableViewCell::mousePressEvent(QMouseEvent* event)
{
    m_pressedPart = event->button() == Qt::LeftButton ? _partAt(event->position().toPoint()) : Part::None;
    KRTableViewCell::mousePressEvent(event);
}

void PelinorStatusTableViewCell::mouseReleaseEvent(QMouseEvent* event)
{
    const Part part = std::exchange(m_pressedPart, Part::None);
    const QPointer<PelinorStatusTableViewCell> self = this;
    KRTableViewCell::mouseReleaseEvent(event);
    if (self && part == _partAt(event->position().toPoint()))
        _click(part);
}

void PelinorStatusTableViewCell::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_delegate && event->button() == Qt::LeftButton && _partAt(event->position().toPoint()) == Part::None)
        m_delegate->pelinorCellStatusDetails(*this, row());
}

void PelinorStatusTableViewCell::_click(Part part)
{
    if (!m_delegate)
        return;
    switch (part) {
    case Part::ReplyButton:
        m_delegate->pelinorStatusCellReplyToStatus(*this, m_status);
        break;
    case Part::ActionButton:
        _popUpMenu(mapToGlobal(_rectOf(part).bottomLeft()));
        break;
    case Part::Picture:
        m_delegate->pelinorCellFromUserDetailsForRow(*this, row());
        break;
    case Part::None:
        break;
    }
}

void PelinorStatusTableViewCell::contextMenuEvent(QContextMenuEvent* event)
{
    _popUpMenu(event->reason() == QContextMenuEvent::Mouse
            ? event->globalPos()
            : mapToGlobal(_rectOf(Part::ActionButton).bottomLeft()));
}

void PelinorStatusTableViewCell::_popUpMenu(QPoint position)
{
    // The menu goes with the cell, should that be gone before it is closed.
    QMenu* const menu = menuForAction().release();
    menu->setParent(this, menu->windowFlags());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(position);
}

std::optional<KRTableViewCell::FocusedPart> PelinorStatusTableViewCell::focusedPart() const
{
    const std::optional<qsizetype> span = m_tracker->focusedSpan();
    return span ? std::optional(FocusedPart { m_status->statusID(), *span }) : std::nullopt;
}

bool PelinorStatusTableViewCell::focusPart(const FocusedPart& part)
{
    if (!m_status || m_status->statusID() != part.content)
        return false;
    m_tracker->focusSpan(part.number);
    return true;
}

QString PelinorStatusTableViewCell::accessibleNameForStatus(const TwitterStatus& status)
{
    const QString author
        = status.fromUser() ? singleLine(status.fromUser()->fullName()) : tr("Unknown author");
    return QStringLiteral("%1: %2, %3")
        .arg(author, status.text(), KRAdditions::relativeTimeAgoString(status.date()));
}

void PelinorStatusTableViewCell::_describeForAccessibility()
{
    const QString name = accessibleNameForStatus(*m_status);
    setAccessibleName(m_isFavorite ? tr("%1, favorite").arg(name) : name);
}

void PelinorStatusTableViewCell::resizeEvent(QResizeEvent* event)
{
    KRTableViewCell::resizeEvent(event);
    m_text.setContainerSize({ qreal(_geometry().textWidth()), KRActiveTextRenderer::UnboundedHeight });
    m_tracker->textDidChange(_geometry().textOrigin());
}

void PelinorStatusTableViewCell::changeEvent(QEvent* event)
{
    KRTableViewCell::changeEvent(event);
    // Another colour scheme.
    if (event->type() == QEvent::PaletteChange && m_status)
        _layOutText();
}

void PelinorStatusTableViewCell::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    _drawBackground(painter);
    if (!m_status)
        return;
    // The tone is known only here: the table tells a cell its row after it was filled, and a row that is
    // selected is read only then. What changes are colours; the lines stay as they are.
    if (m_textTone != _tone())
        _setTextInTone(_tone());
    m_drawnAuthor = _author();
    painter.setOpacity(m_textTone == Tone::Dimmed ? DimmedPictureOpacity : 1);
    PelinorProfileImage::draw(painter, _geometry().profileImageFrame(), m_drawnAuthor->picture, _colors());
    painter.setOpacity(1);
    // Names are read in their own direction.
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    _drawName(painter);
    _drawDate(painter);
    painter.setPen(_inTone(_colors().text));
    m_text.drawAtPoint(painter, _geometry().textOrigin(), event->rect());
    m_tracker->draw(painter);
    _drawButtons(painter);
}

void PelinorStatusTableViewCell::_drawButtons(QPainter& painter) const
{
    const auto draw = [&](const QString& name, const QRect& rect, const QColor& color) {
        PelinorImages::named(name, color).drawInContext(painter, rect, KRImage::Flipped::Yes);
    };
    if (m_isFavorite)
        draw(QStringLiteral("FavoriteOn"), _geometry().favoriteRect(), _colors().favorite);
    if (!m_isHovered && !selected())
        return;
    for (const auto& [part, name] : { std::pair(Part::ReplyButton, QStringLiteral("Reply")),
             std::pair(Part::ActionButton, QStringLiteral("Action")) })
        draw(name, _rectOf(part), part == m_hoveredPart ? _colors().selectionMark : _colors().secondaryText);
}

void PelinorStatusTableViewCell::_drawBackground(QPainter& painter) const
{
    const PelinorCellColors& colors = _colors();
    const bool isSelected = selected();
    painter.fillRect(rect(),
        isSelected            ? colors.selectedBackground
            : m_layout.isMine ? colors.ownBackground
            : m_isHighlighted ? colors.mentionBackground
                              : colors.background);
    const qreal hairline = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), colors.separator);
    if (isSelected)
        painter.fillRect(
            QRect(m_layout.isMine ? width() - SelectionMarkWidth : 0, 0, SelectionMarkWidth, height()),
            colors.selectionMark);
}

void PelinorStatusTableViewCell::_drawName(QPainter& painter) const
{
    const TwitterUserPtr& user = m_status->fromUser();
    const QRect frame = _geometry().nameFrame().adjusted(m_layout.isMine ? 0 : NameInset, 0, 0, 0);
    const Qt::Alignment side = (m_layout.isMine ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute;
    const QFont font = nameFont();
    const QFontMetrics metrics(font, this);
    const QString name
        = user ? singleLine(m_showsUserName ? user->username() : user->fullName()) : tr("Unknown author");
    const QString shown = metrics.elidedText(name, Qt::ElideRight, frame.width());
    painter.setFont(font);
    painter.setPen(_inTone(_colors().name));
    painter.drawText(frame, int(side | Qt::AlignVCenter | Qt::TextSingleLine), shown);

    if (!user || m_showsUserName || shown != name || name == user->username())
        return;
    const QString handle = u'@' + user->username();
    // The user name follows where there is room for all of it.
    const int used = metrics.horizontalAdvance(shown) + SpaceAfterName;
    const QFont handleFont = KRMessageFont(DatePointSize);
    if (used + QFontMetrics(handleFont, this).horizontalAdvance(handle) > frame.width())
        return;
    painter.setFont(handleFont);
    painter.setPen(_inTone(_colors().secondaryText));
    painter.drawText(frame.adjusted(m_layout.isMine ? 0 : used, 1, m_layout.isMine ? -used : 0, 1),
        int(side | Qt::AlignVCenter | Qt::TextSingleLine),
        handle);
}

void PelinorStatusTableViewCell::_drawDate(QPainter& painter) const
{
    const Qt::Alignment side = (m_layout.isMine ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignAbsolute;
    painter.setFont(KRMessageFont(DatePointSize));
    painter.setPen(_inTone(_colors().secondaryText));
    painter.drawText(_geometry().dateFrame().adjusted(m_layout.isMine ? OwnDateInset : 0, 0, 0, 0),
        int(side | Qt::AlignVCenter | Qt::TextSingleLine),
        m_date);
}
