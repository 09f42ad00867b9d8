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

void logError(const char* operation, const Answer& answer)
{
    KRLog(u"Error (%1) - %2"_s.arg(QLatin1String(operation), answer.error));
}

/// What a refusal means for the rest of the program: a locked keyring is asked to open, a missing service is
/// told.
void react(const Answer& answer)
{
    if (answer.status == Status::Locked)
        EMKeychainProxy::sharedProxy().unlockKeychain();
    else if (answer.status == Status::Unavailable)
        KRKeychain::noteUnavailable(answer.error);
}

Answer lookUp(const char* operation, const Attributes& attributes, bool logsErrors)
{
    Answer answer = KRSecretService::lookUp(attributes);
    if (answer.status != Status::Done) {
        if (logsErrors)
            logError(operation, answer);
        react(answer);
    }
    return answer;
}

/// Stores, and answers the stored item's handle.
Answer add(const char* operation, const Attributes& attributes, const QString& label, const QString& password)
{
    Answer answer = KRSecretService::store(attributes, label, password);
    if (answer.status == Status::Done)
        answer = KRSecretService::lookUp(attributes);
    if (answer.status != Status::Done) {
        logError(operation, answer);
        react(answer);
    }
    return answer;
}

} // namespace

EMKeychainProxy& EMKeychainProxy::sharedProxy()
{
    static EMKeychainProxy proxy;
    return proxy;
}

std::unique_ptr<EMGenericKeychainItem> EMKeychainProxy::genericKeychainItemForService(const QString& service,
    const QString& username)
{
    if (username.isEmpty())
        return nullptr;
    const Answer answer = lookUp("genericKeychainItemForService:withUsername:",
        genericAttributes(service, username),
        m_logsErrors);
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
    const Answer answer = add("addGenericKeychainItemForService:withUsername:password:",
        genericAttributes(service, username),
        u"Pelinor: %1"_s.arg(username),
        password);
    if (answer.status != Status::Done)
        return nullptr;
    return std::make_unique<EMGenericKeychainItem>(answer.item, service, username, password);
}

bool EMKeychainProxy::removeGenericKeychainItemForService(const QString& service, const QString& username)
{
    const Answer answer = KRSecretService::remove(genericAttributes(service, username));
    if (answer.status == Status::Done || answer.status == Status::NotFound)
        return true;
    logError("removeGenericKeychainItemForService:withUsername:", answer);
    react(answer);
    return false;
}

std::unique_ptr<EMInternetKeychainItem> EMKeychainProxy::internetKeychainItemForServer(
    const EMInternetKeychainLocation& location,
    const QString& username)
{
    if (username.isEmpty() || location.server.isEmpty())
        return nullptr;
    const Answer answer = lookUp("internetKeychainItemForServer:withUsername:path:port:protocol:",
        internetAttributes(location, username),
        m_logsErrors);
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
    const Answer answer = add("addInternetKeychainItemForServer:withUsername:password:path:port:protocol:",
        internetAttributes(location, username),
        u"Pelinor: %1 on %2"_s.arg(username, location.server),
        password);
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
    KRSecretService::unlockInBackground([](bool isUnlocked) {
        if (isUnlocked)
            KRNotificationCenter::defaultCenter().post(KRKeychainDidUnlockNotification());
    });
}
