#include "foundation/KRNotificationCenter.h"
#include "support/KRTest.h"

namespace {

struct PlainNotification {
    static constexpr char name[] = "PlainNotification";
};

struct ObjectNotification {
    static constexpr char name[] = "ObjectNotification";
    const int* object = nullptr;
    QString text;
};

} // namespace

TEST(KRNotificationCenter, DeliversByTypeAndObject)
{
    KRNotificationCenter center;
    const int one = 1;
    const int two = 2;
    QString heard;
    const KRObservation any = center.observe<ObjectNotification>(
        [&](const auto& notification) { heard += u" any:"_s + notification.text; });
    KRObservation onlyOne = center.observe<ObjectNotification>(
        [&](const auto& notification) { heard += u" one:"_s + notification.text; },
        &one);
    const KRObservation plain = center.observe<PlainNotification>([&](const auto&) { heard += u" plain"_s; });

    center.post(ObjectNotification { &one, u"a"_s });
    center.post(ObjectNotification { &two, u"b"_s });
    onlyOne = {};
    center.post(ObjectNotification { &one, u"c"_s });
    center.post(PlainNotification());
    EXPECT_EQ(heard, u" any:a one:a any:b any:c plain"_s);
}

TEST(KRNotificationCenter, TakesChangesFromInsideAHandler)
{
    KRNotificationCenter center;
    int late = 0;
    int removed = 0;
    KRObservation second;
    KRObservation added;
    const KRObservation first = center.observe<PlainNotification>([&](const auto&) {
        second.invalidate();
        added = center.observe<PlainNotification>([&](const auto&) { ++late; });
    });
    second = center.observe<PlainNotification>([&](const auto&) { ++removed; });
    for (int i = 0; i < 2; ++i) {
        center.post(PlainNotification());
        EXPECT_EQ(removed, 0);
        EXPECT_EQ(late, 0) << "it is added too late, and replaced before its next turn";
    }
}

TEST(KRNotificationCenter, AnObservationMayOutliveItsCenter)
{
    KRObservation observation;
    {
        KRNotificationCenter center;
        observation = center.observe<PlainNotification>([](const auto&) { FAIL(); });
    }
    observation.invalidate();
    KRNotificationCenter other;
    other.post(PlainNotification());
}

TEST(KRNotificationCenter, IsSafeFromSeveralThreads)
{
    KRNotificationCenter center;
    std::atomic<int> heard = 0;
    const KRObservation steady = center.observe<PlainNotification>([&](const auto&) { ++heard; });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 500; ++n) {
                const KRObservation passing = center.observe<PlainNotification>([](const auto&) {});
                center.post(PlainNotification());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(heard, 2000);
}
