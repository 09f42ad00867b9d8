#include "core/EMKeychainItem.h"

#include "core/KRSecretService.h"

using KRSecretService::Status;

EMKeychainItem::EMKeychainItem(QString item, QString username, QString password)
    : m_item(std::move(item))
    , m_username(std::move(username))
    , m_password(std::move(password))
{
}

bool EMKeychainItem::setPassword(const QString& password)
{
    if (password.isNull())
        return false;
    m_password = password;
    return KRSecretService::setPassword(m_item, password).status == Status::Done;
}

bool EMKeychainItem::setUsername(const QString& username)
{
    m_username = username;
    return modifyAttribute(QStringLiteral("account"), username);
}

bool EMKeychainItem::setLabel(const QString& label)
{
    m_label = label;
    return KRSecretService::setLabel(m_item, label).status == Status::Done;
}

bool EMKeychainItem::modifyAttribute(const QString& name, const QString& value)
{
    return KRSecretService::setAttribute(m_item, name, value).status == Status::Done;
}

EMGenericKeychainItem::EMGenericKeychainItem(QString item,
    QString serviceName,
    const QString& username,
    const QString& password)
    : EMKeychainItem(std::move(item), username, password)
    , m_serviceName(std::move(serviceName))
{
}

bool EMGenericKeychainItem::setServiceName(const QString& serviceName)
{
    m_serviceName = serviceName;
    return modifyAttribute(QStringLiteral("service"), serviceName);
}

EMInternetKeychainItem::EMInternetKeychainItem(QString item,
    EMInternetKeychainLocation location,
    const QString& username,
    const QString& password)
    : EMKeychainItem(std::move(item), username, password)
    , m_location(std::move(location))
{
}

bool EMInternetKeychainItem::setServer(const QString& server)
{
    m_location.server = server;
    return modifyAttribute(QStringLiteral("server"), server);
}

bool EMInternetKeychainItem::setPath(const QString& path)
{
    m_location.path = path;
    return modifyAttribute(QStringLiteral("path"), path);
}

bool EMInternetKeychainItem::setPort(int port)
{
    m_location.port = port;
    return modifyAttribute(QStringLiteral("port"), QString::number(port));
}

bool EMInternetKeychainItem::setProtocol(const QString& protocol)
{
    m_location.protocol = protocol;
    return modifyAttribute(QStringLiteral("protocol"), protocol);
}
