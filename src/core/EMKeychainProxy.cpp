#include "core/EMKeychainProxy.h"

#include "core/KRKeychain.h"
#include "core/KRSecretService.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"

using namespace Qt::StringLiterals;

using KRSecretService::Answer;
using KRSecretService::Attributes;
using KRSecretService::Status;

namespace {

Attributes genericAttributes(const QString& service, const QString& username)
{
    return { { u"xdg:schema"_s, u"com.kestrin.pelinor.generic-password"_s },
        { u"service"_s, service },
        { u"account"_s, username } };
}

Attributes internetAttributes(const EMInternetKeychainLocation& location, const QString& username)
{
    return { { u"xdg:schema"_s, u"com.kestrin.pelinor.internet-password"_s },
        { u"server"_s, location.server },
        { u"account"_s, username },
        { u"path"_s, location.path },
        { u"port"_s, QString::number(location.port) },
        { u"protocol"_s, location.protocol } };
}

/// Stores, and answers the stored item's handle.
Answer add(const Attributes& attributes, const QString& label, const QString& password)
{
    const Answer stored = KRSecretService::store(attributes, label, password);
    return stored.status == Status::Done ? KRSecretService::lookUp(attributes) : stored;
}

} // namespace

EMKeychainProxy& EMKeychainProxy::sharedProxy()
{
    static EMKeychainProxy proxy;
    return proxy;
}

/// What an answer means for the rest of the program: a locked keyring is asked to open; a missing service is
/// told once, and then nothing more of it.
void EMKeychainProxy::_note(const char* operation, const Answer& answer, bool isLogged)
{
    m_isAvailable = answer.status != Status::Unavailable;
    if (!m_isAvailable)
        KRKeychain::noteUnavailable(answer.error);
    else if (isLogged && answer.status != Status::Done)
        KRLog(u"Error (%1) - %2"_s.arg(QLatin1String(operation), answer.error));
    if (answer.status == Status::Locked)
        _unlock(answer.item);
}

std::unique_ptr<EMGenericKeychainItem> EMKeychainProxy::genericKeychainItemForService(const QString& service,
    const QString& username)
{
    if (username.isEmpty())
        return nullptr;
    const Answer answer = KRSecretService::lookUp(genericAttributes(service, username));
    _note("genericKeychainItemForService:withUsername:", answer, m_logsErrors);
    if (answer.status != Status::Done)
        return nullptr;
    return std::make_unique<EMGenericKeychainItem>(answer.item, service, username, answer.password);
}

std::unique_ptr<EMGenericKeychainItem> EMKeychainProxy::addGenericKeychainItemForService(
    const QString& service,
    const QString& username,
    const QString& password)
{
    if (username.isEmpty() || service.isEmpty())
        return nullptr;
    const Answer answer = add(genericAttributes(service, username), u"Pelinor: %1"_s.arg(username), password);
    _note("addGenericKeychainItemForService:withUsername:password:", answer, true);
    if (answer.status != Status::Done)
        return nullptr;
    return std::make_unique<EMGenericKeychainItem>(answer.item, service, username, password);
}

bool EMKeychainProxy::removeGenericKeychainItemForService(const QString& service, const QString& username)
{
    const Answer answer = KRSecretService::remove(genericAttributes(service, username));
    const bool isGone = answer.status == Status::Done || answer.status == Status::NotFound;
    _note("removeGenericKeychainItemForService:withUsername:", answer, !isGone);
    return isGone;
}

std::unique_ptr<EMInternetKeychainItem> EMKeychainProxy::internetKeychainItemForServer(
    const EMInternetKeychainLocation& location,
    const QString& username)
{
    if (username.isEmpty() || location.server.isEmpty())
        return nullptr;
    const Answer answer = KRSecretService::lookUp(internetAttributes(location, username));
    _note("internetKeychainItemForServer:withUsername:path:port:protocol:", answer, m_logsErrors);
    if (answer.status != Status::Done)
        return nullptr;
    return std::make_unique<EMInternetKeychainItem>(answer.item, location, username, answer.password);
}

std::unique_ptr<EMInternetKeychainItem> EMKeychainProxy::addInternetKeychainItemForServer(
    const EMInternetKeychainLocation& location,
    const QString& username,
    const QString& password)
{
    if (username.isEmpty() || location.server.isEmpty())
        return nullptr;
    const Answer answer = add(internetAttributes(location, username),
        u"Pelinor: %1 on %2"_s.arg(username, location.server),
        password);
    _note("addInternetKeychainItemForServer:withUsername:password:path:port:protocol:", answer, true);
    if (answer.status != Status::Done)
        return nullptr;
    return std::make_unique<EMInternetKeychainItem>(answer.item, location, username, password);
}

bool EMKeychainProxy::lockKeychain()
{
    return KRSecretService::lock().status == Status::Done;
}

void EMKeychainProxy::unlockKeychain()
{
    _unlock({});
}

void EMKeychainProxy::_unlock(const QString& item)
{
    m_isUnlocking = true;
    KRSecretService::unlockInBackground(item, [this](bool isUnlocked) {
        m_isUnlocking = false;
        if (isUnlocked)
            KRNotificationCenter::defaultCenter().post(KRKeychainDidUnlockNotification());
        KRNotificationCenter::defaultCenter().post(KRKeychainUnlockingDidEndNotification());
    });
}
