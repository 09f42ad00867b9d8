#pragma once

#include <functional>
#include <memory>

/// Follows whether the user of this desktop wishes for reduced motion, as the settings portal tells it.
/// Asking waits for nothing: not for the session bus, not for the portal. Main thread.
class KRDesktopMotionSetting {
public:
    using Handler = std::function<void(bool isReduced)>;

    /// The handler runs on the main loop when the wish turns out to differ from the last known one, at first
    /// that motion is welcome. Without a bus or a portal it never runs.
    explicit KRDesktopMotionSetting(Handler handler);
    KRDesktopMotionSetting(const KRDesktopMotionSetting&) = delete;
    KRDesktopMotionSetting& operator=(const KRDesktopMotionSetting&) = delete;
    /// The handler is not called any more.
    ~KRDesktopMotionSetting();

    class Portal;

private:
    std::shared_ptr<Portal> m_portal;
};
