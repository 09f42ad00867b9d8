#pragma once

#include <QIcon>

#include <functional>
#include <memory>

class QMenu;
class QSystemTrayIcon;

/// The program's icon in the desktop's status area: a StatusNotifierItem, or in older trays an XEmbed window,
/// whichever the desktop has. One that comes later is joined. Main thread.
class KRStatusItem {
public:
    /// The action runs when the icon is clicked. The menu is shown by the desktop and outlives the item.
    KRStatusItem(std::function<void()> action, QMenu& menu);
    KRStatusItem(const KRStatusItem&) = delete;
    KRStatusItem& operator=(const KRStatusItem&) = delete;
    ~KRStatusItem();

    /// The picture, and what a pointer that rests there is told. Plain text.
    void setImage(const QIcon& image, const QString& toolTip);
    [[nodiscard]] QIcon image() const;
    [[nodiscard]] QString toolTip() const;

private:
    std::unique_ptr<QSystemTrayIcon> m_icon;
};
