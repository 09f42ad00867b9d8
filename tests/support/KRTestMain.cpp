#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

// Every test program lives in directories of its own: nothing of the user's is read or written.
int main(int argc, char** argv)
{
    // Qt takes the first thread that makes a QObject for the main one, and never frees what it keeps for
    // another thread that lives until the end.
    (void)QThread::currentThread();
    QTemporaryDir home;
    if (!home.isValid())
        return 2;
    const QByteArray path = home.path().toUtf8();
    qputenv("HOME", path);
    qputenv("XDG_CONFIG_HOME", path + "/config");
    qputenv("XDG_CACHE_HOME", path + "/cache");
    qputenv("XDG_DATA_HOME", path + "/data");
    qputenv("LC_ALL", "C.UTF-8");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
