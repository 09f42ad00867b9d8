#pragma once

#include <QString>

#include <memory>

/// One stored secret, with a handle on where it is stored so that it can be changed there. Main thread.
class EMKeychainItem {
public:
    EMKeychainItem(QString item, QString username, QString password);
    EMKeychainItem(const EMKeychainItem&) = delete;
    EMKeychainItem& operator=(const EMKeychainItem&) = delete;
    virtual ~EMKeychainItem() = default;

    const QString& password() const { return m_password; }
    /// Replaces the stored secret. False for a null password, or when the store does not take it.
    bool setPassword(const QString& password);
    const QString& username() const { return m_username; }
    bool setUsername(const QString& username);
    const QString& label() const { return m_label; }
    bool setLabel(const QString& label);

protected:
    /// Changes one attribute of the stored item; whether the store took it.
    bool modifyAttribute(const QString& name, const QString& value);

private:
    QString m_item;
    QString m_username;
    QString m_password;
    QString m_label;
};

/// A password for a service, found by the service's and the account's name.
class EMGenericKeychainItem final : public EMKeychainItem {
public:
    EMGenericKeychainItem(QString item,
        QString serviceName,
        const QString& username,
        const QString& password);

    const QString& serviceName() const { return m_serviceName; }
    bool setServiceName(const QString& serviceName);

private:
    QString m_serviceName;
};

/// Where an internet password is for.
struct EMInternetKeychainLocation {
    QString server;
    QString path;
    int port = 0;
    /// The scheme, as in an address.
    QString protocol;
};

/// A password for a server.
class EMInternetKeychainItem final : public EMKeychainItem {
public:
    EMInternetKeychainItem(QString item,
        EMInternetKeychainLocation location,
        const QString& username,
        const QString& password);

    const QString& server() const { return m_location.server; }
    bool setServer(const QString& server);
    const QString& path() const { return m_location.path; }
    bool setPath(const QString& path);
    int port() const { return m_location.port; }
    bool setPort(int port);
    const QString& protocol() const { return m_location.protocol; }
    bool setProtocol(const QString& protocol);

private:
    EMInternetKeychainLocation m_location;
};
