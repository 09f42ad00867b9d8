#pragma once

#include "core/EMKeychainItem.h"
#include "core/KRSecretService.h"

#include <memory>

/// Finds and makes stored secrets. Look-ups never wait for a person: in a locked keyring there is nothing to
/// be found, and unlocking is asked for in the background. Main thread.
class EMKeychainProxy {
public:
    static EMKeychainProxy& sharedProxy();

    /// Whether look-ups that fail are logged.
    void setLogsErrors(bool logsErrors) { m_logsErrors = logsErrors; }
    /// Whether the Secret Service answered when it was asked last.
    bool isAvailable() const { return m_isAvailable; }

    /// Whether the user is being asked to open a locked keyring.
    bool isUnlocking() const { return m_isUnlocking; }

    /// Null for an empty name, and when there is no such item.
    std::unique_ptr<EMGenericKeychainItem> genericKeychainItemForService(const QString& service,
        const QString& username);
    /// Null for an empty name or service, and when the store does not take it; that is logged.
    std::unique_ptr<EMGenericKeychainItem> addGenericKeychainItemForService(const QString& service,
        const QString& username,
        const QString& password);
    /// Whether there is no such item any more; otherwise that is logged.
    bool removeGenericKeychainItemForService(const QString& service, const QString& username);
    std::unique_ptr<EMInternetKeychainItem>
    internetKeychainItemForServer(const EMInternetKeychainLocation& location, const QString& username);
    std::unique_ptr<EMInternetKeychainItem> addInternetKeychainItemForServer(
        const EMInternetKeychainLocation& location,
        const QString& username,
        const QString& password);

    /// Locks the default keyring; whether that worked.
    bool lockKeychain();
    /// Asks for the default keyring to be unlocked; the desktop asks the user, nobody waits here. However
    /// many ask until it is, KRKeychainDidUnlockNotification is posted once.
    void unlockKeychain();

private:
    EMKeychainProxy() = default;

    /// The keyring that the item lies in, or the default one.
    void _unlock(const QString& item);
    void _note(const char* operation, const KRSecretService::Answer& answer, bool isLogged);

    bool m_logsErrors = false;
    bool m_isAvailable = true;
    bool m_isUnlocking = false;
};
