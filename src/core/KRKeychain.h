#pragma once

#include "foundation/KRResult.h"

#include <QString>

/// The keyring was locked and is open now: passwords that were missing can be read, and those that could not
/// be stored can be. Posted on the main thread.
struct KRKeychainDidUnlockNotification {
    static constexpr char name[] = "KRKeychainDidUnlockNotification";
};

/// The user was asked to open a locked keyring, and that is over, whether it is open now or not. Posted on the
/// main thread, after KRKeychainDidUnlockNotification.
struct KRKeychainUnlockingDidEndNotification {
    static constexpr char name[] = "KRKeychainUnlockingDidEndNotification";
};

/// There is no Secret Service, so passwords live in memory for this run. Posted once a run, on the main
/// thread.
struct KRKeychainUnavailableNotification {
    static constexpr char name[] = "KRKeychainUnavailableNotification";
};

/// Passwords by service and account name, kept by the desktop. Main thread; every call ends within a bounded
/// time.
class KRKeychain {
public:
    static constexpr char16_t errorDomain[] = u"com.kestrin.keychain";

    /// Null when there is none. The error is left as it is: a password that cannot be read is a password that
    /// is not there.
    static QString passwordForUsername(const QString& username, const QString& serviceName, KRError* error);
    static KRResult<void>
    setPassword(const QString& password, const QString& username, const QString& serviceName);

    /// Removing what is not there is no error.
    static KRResult<void> removePasswordForUsername(const QString& username, const QString& serviceName);

    /// Says once that there is nobody to keep passwords: what then fails is not logged call by call.
    static void noteUnavailable(const QString& reason);
};
