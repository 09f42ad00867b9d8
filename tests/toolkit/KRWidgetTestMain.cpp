#ifdef KR_TEST_TOOLKIT_APPLICATION
#include "toolkit/KRApplication.h"
#endif

#include "support/KRTestDirectories.h"

#include <QApplication>

#include <gtest/gtest.h>

#ifdef KR_TEST_TOOLKIT_APPLICATION
using TestApplication = KRApplication;
#else
using TestApplication = QApplication;
#endif

// As the other test programs, in directories of its own, with an application object for widgets.
int main(int argc, char** argv)
{
    const KRTestDirectories directories;
    if (!directories.areThere())
        return 2;
    testing::InitGoogleTest(&argc, argv);
    TestApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
