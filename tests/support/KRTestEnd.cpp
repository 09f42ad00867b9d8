#include "transport/KRBackgroundThread.h"

#include <gtest/gtest.h>

namespace {

/// Ends the background thread after the last test: libraries that clean up as the process ends must not meet a
/// thread that is still opening them.
class EndsBackgroundThread : public testing::EmptyTestEventListener {
    void OnTestProgramEnd(const testing::UnitTest&) override { KRBackgroundThread::stopShared(); }
};

const bool added = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new EndsBackgroundThread);
    return true;
}();

} // namespace
