#pragma once

#include <QTemporaryDir>

#include <cstdio>
#include <sys/types.h>

/// The local service as people run it: a process of its own with a folder of its own, on free ports. Ends
/// with this value. One thread at a time.
class KRTestLocalService {
public:
    /// Starts it and waits until it listens.
    KRTestLocalService();
    KRTestLocalService(const KRTestLocalService&) = delete;
    KRTestLocalService& operator=(const KRTestLocalService&) = delete;
    ~KRTestLocalService();

    /// False when it did not start; what went wrong is on standard error.
    [[nodiscard]] bool isRunning() const { return m_output != nullptr; }
    /// The table of hosts that it wrote.
    const QString& servicesFile() const { return m_servicesFile; }
    /// Where it listens over TLS, "127.0.0.1:PORT".
    const QString& httpsHost() const { return m_httpsHost; }
    /// Who vouches for its certificate.
    const QString& authorityFile() const { return m_authorityFile; }
    /// Ends it; who connects later is refused.
    void stop();

private:
    QTemporaryDir m_directory;
    std::FILE* m_output = nullptr;
    pid_t m_process = 0;
    QString m_servicesFile;
    QString m_httpsHost;
    QString m_authorityFile;
};
