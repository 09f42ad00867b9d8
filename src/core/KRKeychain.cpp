#include "core/KRKeychain.h"

#include "core/EMKeychainProxy.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRRunLoop.h"

using namespace Qt::StringLiterals;

QString KRKeychain::passwordForUsername(const QString& username, const QString& serviceName, KRError*)
{
    const auto item = EMKeychainProxy::sharedProxy().genericKeychainItemForService(serviceName, username);
    return item ? item->password() : QString();
}

KRResult<void>
KRKeychain::setPassword(const QString& password, const QString& username, const QString& serviceName)
{
    EMKeychainProxy& proxy = EMKeychainProxy::sharedProxy();
    if (const auto item = proxy.genericKeychainItemForService(serviceName, username)) {
        item->setPassword(password);
        return {};
    }
    if (proxy.addGenericKeychainItemForService(serviceName, username, password))
        return {};
    if (proxy.isAvailable())
        KRLog(u"Critical Error: could not store item in keychain. Try repairing your keychain and repairing "
              u"permissions. (Service: \"%1\""_s.arg(serviceName));
    return errorWithDomain(QString::fromUtf16(errorDomain), -1, u"could not store item in keychain"_s);
}

KRResult<void> KRKeychain::removePasswordForUsername(const QString& username, const QString& serviceName)
{
    if (EMKeychainProxy::sharedProxy().removeGenericKeychainItemForService(serviceName, username))
        return {};
    return errorWithDomain(QString::fromUtf16(errorDomain), -1, u"could not remove item from keychain"_s);
}

void KRKeychain::noteUnavailable(const QString& reason)
{
    static bool wasTold = false;
    if (wasTold)
        return;
    wasTold = true;
    KRLog(
        u"Warning: no Secret Service answers (%1); passwords are kept in memory for this run"_s.arg(reason));
    // Later, so that whoever shows it has been made: the first look-up comes while the root object is being
    // set up.
    KRRunLoop::main().performAfterDelay(std::chrono::seconds(1),
        [] { KRNotificationCenter::defaultCenter().post(KRKeychainUnavailableNotification()); });
}
