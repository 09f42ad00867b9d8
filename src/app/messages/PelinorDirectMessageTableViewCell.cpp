#include "app/messages/PelinorDirectMessageTableViewCell.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorProfileImage.h"
#include "text/KRDateAdditions.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRTextHeightCache.h"

#include <QEvent>
#include <QPainter>

namespace {

constexpr int DateSize = 9;
// Beside the text: the picture, the bubble's inside, and room at the other end that tells the sides apart.
constexpr int PictureRoom = 64;
constexpr int BubbleInset = 12;
constexpr int FarRoom = 40;
constexpr int WidthBesideText = PictureRoom + 2 * BubbleInset + FarRoom;
constexpr int TopMargin = 6;
constexpr int TextTop = TopMargin + 8;
constexpr int HeightBesideText = 42;
constexpr int MinimumHeight = 66;
constexpr qreal BubbleRadius = 10;

} // namespace

PelinorDirectMessageTableViewCell::PelinorDirectMessageTableViewCell(KRNotificationCenter& notifications)
    : KRTableViewCell(identifier())
    , m_notifications(notifications)
    , m_tracker(new KRActiveTextTracker(*this, m_text))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

PelinorDirectMessageTableViewCell::~PelinorDirectMessageTableViewCell() = default;

QString PelinorDirectMessageTableViewCell::identifier()
{
    return QStringLiteral("PelinorDirectMessageTableViewCell");
}

int PelinorDirectMessageTableViewCell::heightForMessage(const TwitterDirectMessage& message,
    int tableWidth,
    int fontSizePreference,
    KRTextHeightCache& heights)
{
    const KRActiveTextStyle style { fontSizePreference, {} };
    const int textHeight = heights.height(message.text(),
        KRStatusFont(KRStatusTextSize::Normal, style),
        tableWidth - WidthBesideText,
        [&] { return AttributedStringForMessage(message.text(), message.activeTextRanges(), style); });
    return std::max(MinimumHeight, textHeight + HeightBesideText);
}

QString PelinorDirectMessageTableViewCell::accessibleNameForMessage(const TwitterDirectMessage& message)
{
    const QString author
        = message.sender() ? message.sender()->fullName().simplified() : tr("Unknown author");
    return QStringLiteral("%1: %2, %3")
        .arg(author, message.text(), KRAdditions::relativeTimeAgoString(message.date()));
}

void PelinorDirectMessageTableViewCell::setMessage(const TwitterDirectMessagePtr& message,
    bool isMine,
    int fontSizePreference)
{
    m_message = message;
    m_isMine = isMine;
    m_fontSizePreference = fontSizePreference;
    if (const TwitterUserPtr& user = message->sender()) {
        m_userObservation = m_notifications.observe<TwitterUserDidUpdateNotification>(
            [this](const TwitterUserDidUpdateNotification&) { update(); },
            user.get());
    } else {
        m_userObservation.invalidate();
    }
    setAccessibleName(accessibleNameForMessage(*message));
    _layOutText();
    update();
}

void PelinorDirectMessageTableViewCell::updateDate()
{
    setAccessibleName(accessibleNameForMessage(*m_message));
    update();
}

void PelinorDirectMessageTableViewCell::setLinkHandler(std::function<void(const QString&, int)> handler)
{
    m_tracker->setClickHandler([handler = std::move(handler)](const QString& text, KRActiveStringType type) {
        handler(text, type);
    });
}

QPoint PelinorDirectMessageTableViewCell::_textOrigin() const
{
    return { m_isMine ? FarRoom + BubbleInset : PictureRoom + BubbleInset, TextTop };
}

void PelinorDirectMessageTableViewCell::_layOutText()
{
    if (!m_message)
        return;
    m_text.setContainerSize({ qreal(width() - WidthBesideText), KRActiveTextRenderer::UnboundedHeight });
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    m_text.setAttributedString(AttributedStringForMessage(m_message->text(),
                                   m_message->activeTextRanges(),
                                   { m_fontSizePreference, colors.selectedSpans }),
        m_message->activeTextRanges());
    m_tracker->textDidChange(_textOrigin());
}

void PelinorDirectMessageTableViewCell::resizeEvent(QResizeEvent* event)
{
    KRTableViewCell::resizeEvent(event);
    _layOutText();
}

void PelinorDirectMessageTableViewCell::changeEvent(QEvent* event)
{
    KRTableViewCell::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        _layOutText();
}

void PelinorDirectMessageTableViewCell::paintEvent(QPaintEvent* event)
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.background);
    if (!m_message)
        return;
    const TwitterUserPtr& user = m_message->sender();
    PelinorProfileImage::draw(painter,
        QRectF(m_isMine ? width() - 58 : 6, TopMargin, 52, 52),
        user ? user->profileImage() : nullptr,
        colors);
    const QRectF bubble = m_isMine
        ? QRectF(FarRoom, TopMargin, width() - FarRoom - PictureRoom, height() - 28)
        : QRectF(PictureRoom, TopMargin, width() - FarRoom - PictureRoom, height() - 28);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(m_isMine ? colors.selectedBackground : colors.mentionBackground);
    painter.setPen(selected() ? QPen(colors.selectionMark, 2) : QPen(Qt::NoPen));
    painter.drawRoundedRect(bubble, BubbleRadius, BubbleRadius);
    painter.setPen(colors.text);
    m_text.drawAtPoint(painter, _textOrigin(), event->rect());
    m_tracker->draw(painter);
    painter.setFont(KRMessageFont(DateSize));
    painter.setPen(colors.secondaryText);
    painter.drawText(
        QRectF(bubble.x() + BubbleInset, bubble.bottom() + 1, bubble.width() - 2 * BubbleInset, 18),
        int((m_isMine ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute),
        KRAdditions::relativeTimeAgoString(m_message->date()));
}
