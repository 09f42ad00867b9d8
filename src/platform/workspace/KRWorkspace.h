#pragma once

#include <QUrl>

/// The desktop around the program, as far as links need it. Main thread.
class KRWorkspace {
public:
    enum class Launch {
        /// The browser comes to the front.
        Normal,
        /// It opens the address behind the program's windows, where the desktop lets it.
        InBackground,
    };

    KRWorkspace() = default;
    KRWorkspace(const KRWorkspace&) = delete;
    KRWorkspace& operator=(const KRWorkspace&) = delete;
    virtual ~KRWorkspace() = default;

    /// Gives the address to the program that the desktop has for its scheme; false when there is none.
    virtual bool openURL(const QUrl& url, Launch launch) = 0;
    virtual void beep() = 0;
};

/// The desktop the program runs in.
class KRDesktopWorkspace final : public KRWorkspace {
public:
    bool openURL(const QUrl& url, Launch launch) override;
    void beep() override;
};
