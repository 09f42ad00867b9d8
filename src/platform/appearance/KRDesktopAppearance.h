#pragma once

#include <functional>
#include <memory>

/// Follows what the user of this desktop wishes for: reduced motion, more contrast, as the settings portal
/// (org.freedesktop.portal.Settings) tells it. Asking waits for nothing: not for the session bus, not for the portal. Main thread.
class KRDesktopAppearance {
public:
    struct Wishes {
        bool reducesMotion = false;
        bool raisesContrast = false;

        bool operator==(const Wishes&) const = default;
    };
    using Handler = std::function<void(const Wishes& wishes)>;

    /// The handler runs on the main loop when the wishes turn out to differ from the last known ones, at
    /// first none. Without a bus or a portal it never runs.
    explicit KRDesktopAppearance(Handler handler);
    KRDesktopAppearance(const KRDesktopAppearance&) = delete;
    KRDesktopAppearance& operator=(const KRDesktopAppearance&) = delete;
    /// The handler is not called any more.
    ~KRDesktopAppearance();

    class Portal;

private:
    std::shared_ptr<Portal> m_portal;
};
