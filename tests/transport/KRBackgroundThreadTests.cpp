#include "KRTestRequest.h"
#include "support/KRTest.h"
#include "transport/KRSocketPair.h"

#include <csignal>
#include <pthread.h>

namespace {

/// The thread ends when it is told to and not at its next event, and lets go of what is under way and of
/// what waits for a place, without telling anybody.
class StopsAtTheEnd : public testing::Environment {
    void TearDown() override
    {
        KRTestServer server([](const auto&, auto& connection) { connection.waitForClose(); });
        std::vector<std::weak_ptr<KRHTTPRequest>> watched;
        for (int number = 0; number < 9; ++number) {
            KRTestRequest request(server.url());
            request->setResponseCallback(
                KRCallback<KRHTTPRequest&>::withFunction([](const auto&) { ADD_FAILURE() << "told"; }));
            request->startRequest();
            watched.push_back(request.request());
        }
        EXPECT_TRUE(KRWaitUntil([&] { return server.requestCount() == 8; }));
        const auto start = std::chrono::steady_clock::now();
        KRBackgroundThread::stopShared();
        EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
        for (const auto& request : watched)
            EXPECT_TRUE(request.expired());
    }
};

const auto* stopsAtTheEnd = testing::AddGlobalTestEnvironment(new StopsAtTheEnd);

} // namespace

TEST(KRBackgroundThread, RunsCallsInOrder)
{
    ASSERT_TRUE(stopsAtTheEnd);
    QList<int> ran;
    std::atomic<bool> wasThere = false;
    std::atomic<bool> done = false;
    for (int i = 0; i < 100; ++i)
        performOnSharedBackgroundThread([&ran, i] { ran.append(i); });
    char name[16] = {};
    sigset_t blocked;
    performOnSharedBackgroundThread([&] {
        wasThere = KRBackgroundThread::isCurrentThread();
        pthread_getname_np(pthread_self(), name, sizeof name);
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        done = true;
    });
    ASSERT_TRUE(KRWaitUntil([&] { return done.load(); }));
    EXPECT_TRUE(wasThere);
    EXPECT_FALSE(KRBackgroundThread::isCurrentThread());
    EXPECT_STREQ(name, "SharedBackgroun");
    EXPECT_TRUE(sigismember(&blocked, SIGPIPE)) << "a lost connection does not end the program";
    EXPECT_FALSE(sigismember(&blocked, SIGTERM));
    ASSERT_EQ(ran.size(), 100);
    EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
}

TEST(KRBackgroundThread, RunsItsTimersWhileNoConnectionIsOpen)
{
    std::atomic<bool> fired = false;
    KRBackgroundThread::shared().runLoop().performAfterDelay(5ms, [&] { fired = true; });
    EXPECT_TRUE(KRWaitUntil([&] { return fired.load(); }));
}

TEST(KRSocketPair, CarriesWhatIsWrittenAndEndsWhenTheWriterCloses)
{
    KRSocketStreamPair pair = CFStreamCreatePairWithUNIXSocketPair();
    ASSERT_TRUE(pair.readStream && pair.writeStream);
    EXPECT_EQ(pair.writeStream->write("hello", 5), 5);
    EXPECT_FALSE(pair.readStream->rewind());
    pair.writeStream.reset();
    char buffer[16];
    EXPECT_EQ(pair.readStream->read(buffer, sizeof buffer), 5);
    EXPECT_EQ(QByteArray(buffer, 5), QByteArray("hello"));
    EXPECT_EQ(pair.readStream->read(buffer, sizeof buffer), 0);

    KRSocketStreamPair other = CFStreamCreatePairWithUNIXSocketPair();
    other.readStream.reset();
    EXPECT_EQ(other.writeStream->write("lost", 4), -1);
}
