#include "support/KRTestDirectories.h"

#include <QThread>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Qt takes the first thread that makes a QObject for the main one, and never frees what it keeps for
    // another thread that lives until the end.
    (void)QThread::currentThread();
    const KRTestDirectories directories;
    if (!directories.areThere())
        return 2;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
