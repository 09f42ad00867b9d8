#pragma once

#include "platform/appearance/KRDesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <optional>

class QDBusPendingCallWatcher;

/// The part of a KRDesktopAppearance that talks to the portal.
class KRDesktopAppearance::Portal : public QObject {
    Q_OBJECT

public:
    explicit Portal(Handler handler)
        : m_handler(std::move(handler))
    {
    }

    /// Asks for the settings and for word of their changes.
    void follow(const QDBusConnection& connection);

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void _allSettingsDidArrive(QDBusPendingCallWatcher& call);
    void _takeSetting(const QString& group, const QString& key, const QVariant& value);
    void _tell();

    Handler m_handler;
    // What all desktops have in common, where they have it, and what one of them has had for long.
    std::optional<bool> m_isReduced;
    std::optional<bool> m_animationsAreEnabled;
    std::optional<bool> m_isRaised;
    std::optional<bool> m_isHighContrast;
    Wishes m_told;
};
