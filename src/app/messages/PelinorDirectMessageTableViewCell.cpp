#include "app/messages/PelinorDirectMessageTableViewCell.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorProfileImage.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRTextHeightCache.h"

#include <QEvent>
#include <QLocale>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {

using Row = PelinorConversationRow;
using State = PelinorOutgoingMessage::State;

constexpr int FooterSize = 9;
constexpr int Margin = 12;
constexpr int PictureSide = 36;
constexpr int PictureRoom = Margin + PictureSide + 8;
// Room at the other end that tells the sides apart.
constexpr int FarRoom = 48;
constexpr int BubbleInset = 12;
constexpr int BubblePadding = 8;
constexpr int WidthBesideText = PictureRoom + 2 * BubbleInset + FarRoom;
constexpr int GapBeforeGroup = 8;
constexpr int GapInGroup = 2;
constexpr int FooterHeight = 20;
constexpr int ButtonsHeight = 28;
constexpr qreal BubbleRadius = 12;

bool isOutgoing(const Row& row)
{
    return row.kind == Row::Kind::Outgoing;
}

bool hasFailed(const Row& row)
{
    return isOutgoing(row) && row.outgoing.state != State::Sending;
}

// The heading above tells the day.
QString timeOf(const TwitterDirectMessage& message)
{
    return QLocale().toString(message.date().toLocalTime().time(), QLocale::ShortFormat);
}

int gapAbove(const Row& row)
{
    return row.beginsGroup ? GapBeforeGroup : GapInGroup;
}

int heightBelowBubble(const Row& row)
{
    if (hasFailed(row))
        return FooterHeight + ButtonsHeight;
    return row.endsGroup || isOutgoing(row) ? FooterHeight : 0;
}

} // namespace

struct PelinorDirectMessageTableViewCell::Frames {
    QRect bubble;
    QRect picture;
    QRect footer;
    QPoint text;
};

PelinorDirectMessageTableViewCell::PelinorDirectMessageTableViewCell(KRNotificationCenter& notifications)
    : KRTableViewCell(identifier())
    , m_notifications(notifications)
    , m_tracker(new KRActiveTextTracker(*this, m_text))
    , m_tryAgainButton(new QToolButton(this))
    , m_discardButton(new QToolButton(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_tryAgainButton->setObjectName(QStringLiteral("tryAgainButton"));
    m_tryAgainButton->setText(tr("Try Again"));
    m_discardButton->setObjectName(QStringLiteral("discardButton"));
    m_discardButton->setText(tr("Discard"));
    for (QToolButton* const button : { m_tryAgainButton, m_discardButton }) {
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, &QToolButton::clicked, this, [this, button] { performAction(button->text()); });
    }
}

PelinorDirectMessageTableViewCell::~PelinorDirectMessageTableViewCell() = default;

QString PelinorDirectMessageTableViewCell::identifier()
{
    return QStringLiteral("PelinorDirectMessageTableViewCell");
}

int PelinorDirectMessageTableViewCell::heightForRow(const PelinorConversationRow& row,
    int tableWidth,
    int fontSizePreference,
    KRTextHeightCache& heights)
{
    const TwitterDirectMessage& message = *row.message;
    const KRActiveTextStyle style { fontSizePreference, {} };
    const int textHeight = heights.height(message.text(),
        KRStatusFont(KRStatusTextSize::Normal, style),
        tableWidth - WidthBesideText,
        [&] { return AttributedStringForMessage(message.text(), message.activeTextRanges(), style); });
    const int bubbleHeight = textHeight + 2 * BubblePadding;
    const bool hasPicture = row.beginsGroup && !row.isMine;
    return gapAbove(row)
        + std::max(bubbleHeight + heightBelowBubble(row), hasPicture ? PictureSide + GapInGroup : 0);
}

QString PelinorDirectMessageTableViewCell::accessibleNameForRow(const PelinorConversationRow& row)
{
    const TwitterDirectMessage& message = *row.message;
    const QString author = row.isMine ? tr("You")
        : message.sender()            ? message.sender()->fullName().simplified()
                                      : tr("Unknown author");
    QString state = timeOf(message);
    if (isOutgoing(row) && row.outgoing.state == State::Sending)
        state = tr("being sent");
    else if (isOutgoing(row))
        state = row.outgoing.state == State::Failed ? tr("not sent") : tr("may not have arrived");
    return QStringLiteral("%1: %2, %3").arg(author, message.text(), state);
}

void PelinorDirectMessageTableViewCell::setContent(const PelinorConversationRow& row, int fontSizePreference)
{
    m_content = row;
    m_fontSizePreference = fontSizePreference;
    m_tryAgain = nullptr;
    m_discard = nullptr;
    if (const TwitterUserPtr& user = row.message->sender()) {
        m_userObservation = m_notifications.observe<TwitterUserDidUpdateNotification>(
            [this](const TwitterUserDidUpdateNotification&) { update(); },
            user.get());
    } else {
        m_userObservation.invalidate();
    }
    m_tryAgainButton->setVisible(_hasFailed());
    m_discardButton->setVisible(_hasFailed());
    setToolTip(_hasFailed() ? row.outgoing.reason.toHtmlEscaped()
                            : QLocale().toString(row.message->date().toLocalTime(), QLocale::LongFormat));
    setAccessibleDescription(_hasFailed() ? row.outgoing.reason : QString());
    setAccessibleName(accessibleNameForRow(m_content));
    _layOut();
}

void PelinorDirectMessageTableViewCell::setLinkHandler(std::function<void(const QString&, int)> handler)
{
    m_tracker->setClickHandler([handler = std::move(handler)](const QString& text, KRActiveStringType type) {
        handler(text, type);
    });
}

bool PelinorDirectMessageTableViewCell::_hasFailed() const
{
    return hasFailed(m_content);
}

bool PelinorDirectMessageTableViewCell::activate()
{
    if (!_hasFailed())
        return false;
    performAction(m_tryAgainButton->text());
    return true;
}

QStringList PelinorDirectMessageTableViewCell::actionNames() const
{
    return _hasFailed() ? QStringList { m_tryAgainButton->text(), m_discardButton->text() } : QStringList();
}

void PelinorDirectMessageTableViewCell::performAction(const QString& name)
{
    // A copy: the handler may destroy the cell.
    const auto handler = name == m_tryAgainButton->text() ? m_tryAgain : m_discard;
    if (handler)
        handler();
}

QString PelinorDirectMessageTableViewCell::_footer() const
{
    if (!isOutgoing(m_content))
        return timeOf(*m_content.message);
    switch (m_content.outgoing.state) {
    case State::Sending:
        return tr("Sending…");
    case State::Failed:
        return tr("Not sent: %1").arg(m_content.outgoing.reason.simplified());
    case State::Unknown:
        return tr("It may have arrived, but no answer came back.");
    }
    return {};
}

PelinorDirectMessageTableViewCell::Frames PelinorDirectMessageTableViewCell::_frames() const
{
    const int top = gapAbove(m_content);
    // A text that is read from right to left stands at the right of its container.
    QRectF text;
    for (const QRectF& line : m_text.rectArrayForRange({ 0, m_text.text().size() }))
        text |= line;
    const int textLeft = int(text.left());
    const int bubbleWidth
        = std::min(int(std::ceil(text.right())) - textLeft, width() - WidthBesideText) + 2 * BubbleInset;
    const int bubbleHeight = height() - top - heightBelowBubble(m_content);
    Frames frames;
    frames.bubble = QRect(m_content.isMine ? width() - Margin - bubbleWidth : PictureRoom,
        top,
        bubbleWidth,
        bubbleHeight);
    frames.picture = QRect(Margin, top, PictureSide, PictureSide);
    frames.footer = m_content.isMine
        ? QRect(Margin, frames.bubble.bottom() + 1, width() - 2 * Margin - BubbleInset / 2, FooterHeight)
        : QRect(PictureRoom + BubbleInset / 2,
            frames.bubble.bottom() + 1,
            width() - PictureRoom - Margin,
            FooterHeight);
    if (isRightToLeft()) {
        for (QRect* const frame : { &frames.bubble, &frames.picture, &frames.footer })
            frame->moveLeft(width() - frame->x() - frame->width());
    }
    frames.text = frames.bubble.topLeft() + QPoint(BubbleInset - textLeft, BubblePadding);
    return frames;
}

void PelinorDirectMessageTableViewCell::_layOut()
{
    if (!m_content.message)
        return;
    const TwitterDirectMessage& message = *m_content.message;
    m_text.setContainerSize({ qreal(width() - WidthBesideText), KRActiveTextRenderer::UnboundedHeight });
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    m_text.setAttributedString(AttributedStringForMessage(message.text(),
                                   message.activeTextRanges(),
                                   { m_fontSizePreference, colors.selectedSpans }),
        message.activeTextRanges());
    const Frames frames = _frames();
    m_tracker->textDidChange(frames.text);
    // Both at the end of the line that says what became of the message.
    int x = frames.footer.right();
    for (QToolButton* const button : { m_discardButton, m_tryAgainButton }) {
        const QSize size = button->sizeHint();
        x -= size.width();
        const int left = isRightToLeft() ? width() - x - size.width() : x;
        button->setGeometry(left, frames.footer.bottom() + 1, size.width(), ButtonsHeight - 4);
    }
    update();
}

void PelinorDirectMessageTableViewCell::resizeEvent(QResizeEvent* event)
{
    KRTableViewCell::resizeEvent(event);
    _layOut();
}

void PelinorDirectMessageTableViewCell::changeEvent(QEvent* event)
{
    KRTableViewCell::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        _layOut();
}

void PelinorDirectMessageTableViewCell::paintEvent(QPaintEvent* event)
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.background);
    if (!m_content.message)
        return;
    const Frames frames = _frames();
    if (m_content.beginsGroup && !m_content.isMine) {
        const TwitterUserPtr& user = m_content.message->sender();
        PelinorProfileImage::draw(painter, frames.picture, user ? user->profileImage() : nullptr, colors);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(m_content.isMine ? colors.selectedBackground : colors.mentionBackground);
    painter.setPen(selected() ? QPen(colors.selectionMark, 2) : QPen(Qt::NoPen));
    painter.drawRoundedRect(frames.bubble, BubbleRadius, BubbleRadius);
    painter.setPen(colors.text);
    m_text.drawAtPoint(painter, frames.text, event->rect());
    m_tracker->draw(painter);
    if (heightBelowBubble(m_content) == 0)
        return;
    painter.setFont(KRMessageFont(FooterSize));
    painter.setPen(_hasFailed() ? colors.error : colors.secondaryText);
    const bool atRight = m_content.isMine != isRightToLeft();
    painter.drawText(frames.footer,
        int((atRight ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute),
        painter.fontMetrics().elidedText(_footer(), Qt::ElideRight, frames.footer.width()));
}
