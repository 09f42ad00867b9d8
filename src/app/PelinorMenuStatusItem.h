#pragma once

#include "platform/status_item/KRStatusItem.h"

#include <QMenu>

#include <memory>
#include <optional>

class KRUserDefaults;
class PelinorAppDelegate;

/// The light in the desktop's status area: on while something is new, with a click that shows or hides the
/// program. There is none when "DisableMenuItem" is set at the start. Main thread.
class PelinorMenuStatusItem {
public:
    static constexpr int LightOff = 1;
    static constexpr int LightOn = 2;

    /// Both outlive the item.
    PelinorMenuStatusItem(PelinorAppDelegate& delegate, const KRUserDefaults& defaults);
    ~PelinorMenuStatusItem();

    /// Any other number changes no picture.
    void setStatusLight(int light);
    /// 0 until a light is set.
    [[nodiscard]] int statusLightState() const { return m_statusLightState; }
    /// Null when there is none.
    [[nodiscard]] const KRStatusItem* item() const { return m_item ? &*m_item : nullptr; }

private:
    QMenu m_menu;
    std::optional<KRStatusItem> m_item;
    int m_statusLightState = 0;
};
