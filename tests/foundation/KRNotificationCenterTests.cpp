#include "foundation/KRNotificationCenter.h"

#include <QString>

#include <gtest/gtest.h>
#include <thread>

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
    QStringList heard;
    const KRObservation any = center.observe<ObjectNotification>([&](const ObjectNotification& notification) {
        heard.append(QStringLiteral("any:") + notification.text);
    });
    KRObservation onlyOne = center.observe<ObjectNotification>(
        [&](const ObjectNotification& notification) {
            heard.append(QStringLiteral("one:") + notification.text);
        },
        &one);
    const KRObservation plain = center.observe<PlainNotification>(
        [&](const PlainNotification&) { heard.append(QStringLiteral("plain")); });

    center.post(ObjectNotification { &one, QStringLiteral("a") });
    center.post(ObjectNotification { &two, QStringLiteral("b") });
    onlyOne = {};
    center.post(ObjectNotification { &one, QStringLiteral("c") });
    center.post(PlainNotification());
    EXPECT_EQ(heard.join(u' '), QStringLiteral("any:a one:a any:b any:c plain"));
}

TEST(KRNotificationCenter, TakesChangesFromInsideAHandler)
{
    KRNotificationCenter center;
    int late = 0;
    int removed = 0;
    KRObservation second;
    KRObservation added;
    const KRObservation first = center.observe<PlainNotification>([&](const PlainNotification&) {
        second.invalidate();
        added = center.observe<PlainNotification>([&](const PlainNotification&) { ++late; });
    });
    second = center.observe<PlainNotification>([&](const PlainNotification&) { ++removed; });
    center.post(PlainNotification());
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(late, 0);
    center.post(PlainNotification());
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(late, 0) << "the first observer replaced it before its turn";
}

TEST(KRNotificationCenter, AnObservationMayOutliveItsCenter)
{
    KRObservation observation;
    {
        KRNotificationCenter center;
        observation = center.observe<PlainNotification>([](const PlainNotification&) { FAIL(); });
    }
    EXPECT_TRUE(observation.isObserving());
    observation.invalidate();
    EXPECT_FALSE(observation.isObserving());
}

TEST(KRNotificationCenter, IsSafeFromSeveralThreads)
{
    KRNotificationCenter center;
    std::atomic<int> heard = 0;
    const KRObservation steady
        = center.observe<PlainNotification>([&](const PlainNotification&) { ++heard; });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 500; ++n) {
                const KRObservation passing
                    = center.observe<PlainNotification>([](const PlainNotification&) {});
                center.post(PlainNotification());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(heard, 2000);
}
