#ifdef KR_TEST_TOOLKIT_APPLICATION
#include "toolkit/KRApplication.h"
#endif

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#ifdef KR_TEST_TOOLKIT_APPLICATION
using TestApplication = KRApplication;
#else
using TestApplication = QApplication;
#endif

// As the other test programs, in directories of its own, with an application object for widgets.
int main(int argc, char** argv)
{
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
    TestApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
