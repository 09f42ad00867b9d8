#include "platform/status_item/KRStatusItem.h"

#include <QMenu>
#include <QSystemTrayIcon>

KRStatusItem::KRStatusItem(std::function<void()> action, QMenu& menu)
    : m_icon(std::make_unique<QSystemTrayIcon>())
{
    m_icon->setContextMenu(&menu);
    QObject::connect(m_icon.get(),
        &QSystemTrayIcon::activated,
        m_icon.get(),
        [action = std::move(action)](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger)
                action();
        });
}

KRStatusItem::~KRStatusItem() = default;

void KRStatusItem::setImage(const QIcon& image, const QString& toolTip)
{
    m_icon->setIcon(image);
    m_icon->setToolTip(toolTip);
    // Without a picture there is nothing to show.
    m_icon->show();
}

QIcon KRStatusItem::image() const
{
    return m_icon->icon();
}

QString KRStatusItem::toolTip() const
{
    return m_icon->toolTip();
}
