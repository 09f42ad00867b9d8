#pragma once

#include <QTemporaryDir>

/// Directories of their own for a test program: nothing of the user's is read or written. Lives as long as the
/// program's main().
class KRTestDirectories {
public:
    KRTestDirectories()
    {
        const QByteArray path = m_home.path().toUtf8();
        qputenv("HOME", path);
        qputenv("XDG_CONFIG_HOME", path + "/config");
        qputenv("XDG_CACHE_HOME", path + "/cache");
        qputenv("XDG_DATA_HOME", path + "/data");
        qputenv("XDG_STATE_HOME", path + "/state");
        qputenv("LC_ALL", "C.UTF-8");
    }
    bool areThere() const { return m_home.isValid(); }

private:
    QTemporaryDir m_home;
};
