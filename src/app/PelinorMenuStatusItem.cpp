#include "app/PelinorMenuStatusItem.h"

#include "app/PelinorAppDelegate.h"
#include "app/PelinorMainMenu.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorWindowColors.h"
#include "foundation/KRUserDefaults.h"

using namespace Qt::StringLiterals;

PelinorMenuStatusItem::PelinorMenuStatusItem(PelinorAppDelegate& delegate, const KRUserDefaults& defaults)
{
    if (defaults.boolForKey("DisableMenuItem"))
        return;
    const auto add = [&](const QString& text, void (PelinorAppDelegate::*what)()) {
        QObject::connect(m_menu.addAction(text), &QAction::triggered, &delegate, what);
    };
    add(PelinorMainMenu::tr("&New Tweet..."), &PelinorAppDelegate::newDocumentFromDock);
    add(PelinorMainMenu::tr("&Refresh"), &PelinorAppDelegate::refreshAll);
    add(PelinorMainMenu::tr("Mark All as R&ead"), &PelinorAppDelegate::markAllAsRead);
    m_menu.addSeparator();
    add(PelinorMainMenu::tr("&Show or Hide Pelinor"), &PelinorAppDelegate::showHidePelinor);
    add(PelinorMainMenu::tr("&Quit"), &PelinorAppDelegate::terminate);
    m_item.emplace([&delegate] { delegate.statusItemAction(); }, m_menu);
    setStatusLight(LightOff);
}

PelinorMenuStatusItem::~PelinorMenuStatusItem() = default;

void PelinorMenuStatusItem::setStatusLight(int light)
{
    if (light == m_statusLightState)
        return;
    m_statusLightState = light;
    const QColor ink = PelinorWindowColors::forPalette(m_menu.palette()).statusItem;
    if (m_item && light == LightOff)
        m_item->setImage(PelinorImages::icon(u"Status_OFF"_s, ink), u"Pelinor"_s);
    else if (m_item && light == LightOn)
        m_item->setImage(PelinorImages::icon(u"Status_ON"_s, ink), PelinorMainMenu::tr("Pelinor: new posts"));
}
