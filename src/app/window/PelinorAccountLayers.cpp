#include "app/window/PelinorAccountLayers.h"

#include "app/look/PelinorImages.h"
#include "app/look/PelinorProfileImage.h"
#include "app/look/PelinorWindowColors.h"

#include <QCoreApplication>
#include <QPainter>

#include <cmath>

namespace {

constexpr QRect PictureFrame(4, 4, 52, 52);
constexpr QRect PlaceholderFrame(6, 6, 48, 48);
constexpr qreal PlaceholderRadius = 4;
constexpr qreal IdleOpacity = 0.5;
constexpr QRect BlueDotFrame(38, 0, 15, 16);
constexpr QSize SmallBlueDotSize(12, 11);
constexpr int SmallBlueDotY = AccountLayer::Height - 11;
constexpr int SmallBlueDotX[] = { 6, 18, 30, 42 };

constexpr const char* IconNames[] = { "SideTweets", "SideReplies", "SideMessages", "SideSearch" };

QString translated(const char* text)
{
    return QCoreApplication::translate("PelinorAccountTabsView", text);
}

QString withNews(const QString& name, bool isFresh)
{
    return isFresh ? translated(QT_TRANSLATE_NOOP("PelinorAccountTabsView", "%1, something new")).arg(name)
                   : name;
}

} // namespace

bool PelinorHasFresh(const TwitterAccount& account, int tag)
{
    switch (tag) {
    case 0:
        return account.hasFreshTweets();
    case 1:
        return account.hasFreshMentions();
    case 2:
        return account.hasFreshMessages();
    case 3:
        return account.hasFreshSearches();
    default:
        return false;
    }
}

QString AccountLayer::accessibleName() const
{
    bool isFresh = false;
    for (int tag = 0; tag < AccountTabLayer::Count; ++tag)
        isFresh = isFresh || PelinorHasFresh(*m_account, tag);
    return withNews(m_account->qualifiedName(), isFresh);
}

void AccountLayer::draw(QPainter& painter, const PelinorWindowColors& colors) const
{
    const TwitterProfileImagePtr picture = user ? user->profileImage() : nullptr;
    painter.setOpacity(mouseDown || selected ? 1 : IdleOpacity);
    if (picture) {
        PelinorProfileImage::drawPicture(painter, PictureFrame, *picture);
    } else {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.columnPlaceholder);
        painter.drawRoundedRect(PlaceholderFrame, PlaceholderRadius, PlaceholderRadius);
    }
    painter.setOpacity(1);
    if (selected)
        return;
    for (int tag = 0; tag < AccountTabLayer::Count; ++tag) {
        if (PelinorHasFresh(*m_account, tag))
            PelinorImages::named(QStringLiteral("SmallBlueDot"))
                .drawInContext(painter,
                    QRect(QPoint(SmallBlueDotX[tag], SmallBlueDotY), SmallBlueDotSize),
                    KRImage::Flipped::Yes);
    }
}

AccountTabLayer::AccountTabLayer(int tag)
    : PelinorColumnLayer(Height)
    , m_tag(tag)
{
}

QString AccountTabLayer::title(int tag)
{
    static constexpr const char* titles[] = { QT_TRANSLATE_NOOP("PelinorAccountTabsView", "Timeline"),
        QT_TRANSLATE_NOOP("PelinorAccountTabsView", "Mentions"),
        QT_TRANSLATE_NOOP("PelinorAccountTabsView", "Direct Messages"),
        QT_TRANSLATE_NOOP("PelinorAccountTabsView", "Searches") };
    return translated(titles[tag]);
}

QString AccountTabLayer::accessibleName() const
{
    return withNews(title(m_tag), badged);
}

void AccountTabLayer::draw(QPainter& painter, const PelinorWindowColors& colors) const
{
    const KRImage& icon = PelinorImages::named(QLatin1String(IconNames[m_tag]), colors.columnIcon);
    const QSizeF size = icon.size();
    const QPointF origin(std::trunc((Width - size.width()) / 2), std::trunc((Height - size.height()) / 2));
    painter.setOpacity(selected || mouseDown ? 1 : IdleOpacity);
    icon.drawInContext(painter, QRectF(origin, size), KRImage::Flipped::Yes);
    painter.setOpacity(1);
    if (badged)
        PelinorImages::named(QStringLiteral("BlueDot"))
            .drawInContext(painter, BlueDotFrame, KRImage::Flipped::Yes);
}

void NippleLayer::draw(QPainter& painter, const PelinorWindowColors& colors) const
{
    PelinorImages::named(QStringLiteral("SelectionNipple"), colors.screen)
        .drawInContext(painter, QRect(X, 0, NippleWidth, Height), KRImage::Flipped::Yes);
}
