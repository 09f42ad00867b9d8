#include "KRTestStreamAccount.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterStatusStreamFilter.h"
#include "model/streams/TwitterUserStream.h"

#include <QUrlQuery>

namespace {

class StreamLoading : public KRTestStreams {
protected:
    [[nodiscard]] static bool waitForNewer(TwitterConcreteStatusesStream& stream)
    {
        stream.loadNewer();
        // Pages of 50 MB take a while under a sanitizer on a busy machine.
        return KRWaitUntil([&] { return !stream.isLoadingNewer(); }, std::chrono::minutes(2))
            && KRTestSettle();
    }
    [[nodiscard]] static bool waitForOlder(TwitterConcreteStatusesStream& stream)
    {
        stream.loadOlder();
        return KRWaitUntil([&] { return !stream.isLoadingOlder(); }) && KRTestSettle();
    }
};

} // namespace

TEST_F(StreamLoading, AsksForWhatIsNewerAndOlder)
{
    const auto user = KRTestUser(u"42"_s, {});
    const auto userTimeline = makeStream<TwitterUserTimelineStream>();
    userTimeline->setUser(user);
    const auto favorites = makeStream<TwitterUserFavoritesStream>();
    favorites->setUser(user);
    const auto check = [&](const auto& stream, const QByteArray& path, const QByteArray& queries) {
        m_site.answer(path, page(10, 29));
        const qsizetype before = m_site.targets().size();
        ASSERT_TRUE(waitForNewer(*stream));
        EXPECT_EQ(stream->storedStatuses().size(), 20);
        ASSERT_TRUE(waitForNewer(*stream) && waitForOlder(*stream) && waitForOlder(*stream));
        EXPECT_FALSE(stream->isAtEnd());
        EXPECT_EQ(m_site.targets().mid(before).join(' ').replace(path, ""), queries);
    };
    check(makeStream<TwitterTimelineStream>(),
        "/statuses/home_timeline.xml",
        "?count=200 ?since_id=29&count=200 ?max_id=10&count=200 ?max_id=10&count=200");
    check(makeStream<TwitterRepliesStream>(),
        "/statuses/replies.xml",
        "? ?since_id=29 ?max_id=10 ?max_id=10");
    check(userTimeline,
        "/statuses/user_timeline.xml",
        "?user_id=42&count=40 ?user_id=42&since_id=29&count=40 ?user_id=42&max_id=10&count=40 "
        "?user_id=42&max_id=10&count=40");
    check(favorites, "/favorites/42.xml", "?page=0 ?page=0 ?page=1 ?page=2");

    // Somebody without an ID is asked for by name, and nobody not at all.
    const auto loaded = [&](const auto& stream, const TwitterUserPtr& person) {
        const qsizetype before = m_site.targets().size();
        stream->setUser(person);
        EXPECT_TRUE(waitForNewer(*stream) && waitForOlder(*stream));
        return m_site.targets().mid(before).join(' ').toStdString();
    };
    m_site.answer("/favorites/bob.xml", page(10, 29));
    const auto bob = KRTestUser({}, u"bob"_s);
    EXPECT_EQ(loaded(makeStream<TwitterUserTimelineStream>(), bob),
        "/statuses/user_timeline.xml?screen_name=bob&count=40 "
        "/statuses/user_timeline.xml?screen_name=bob&max_id=10&count=40");
    EXPECT_EQ(loaded(makeStream<TwitterUserFavoritesStream>(), bob),
        "/favorites/bob.xml?page=0 /favorites/bob.xml?page=1");
    for (const TwitterUserPtr& nobody : { TwitterUserPtr(), KRTestUser({}, {}) })
        EXPECT_EQ(loaded(makeStream<TwitterUserTimelineStream>(), nobody), "");
}

TEST_F(StreamLoading, EndsWithAShortOrFailedOlderPage)
{
    struct Case {
        int statuses, status;
        bool ends;
    };
    for (const Case& test : { Case { 19, 200, false }, Case { 18, 200, true }, Case { 0, 503, true } }) {
        m_site.answer("/statuses/home_timeline.xml", page(1, test.statuses), test.status);
        const auto stream = makeStream<TwitterTimelineStream>();
        const KRTestCounter<TwitterStreamDidUpdateNotification> updates(stream.get());
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_EQ(updates.count, test.ends + (test.status == 200)) << "the end is told of, and so is a page";
        EXPECT_EQ(stream->isAtEnd(), test.ends);
        EXPECT_EQ(stream->storedStatuses().size(), test.statuses);
        const TwitterStatusPtr last = stream->statuses().last();
        EXPECT_EQ(dynamic_cast<const TwitterDummyEndOfStreamStatus*>(last.get()) != nullptr, test.ends);
        const qsizetype requests = m_site.requests().size();
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_EQ(m_site.requests().size() - requests, test.ends ? 0 : 1);
        stream->loadOlderAgain();
        EXPECT_EQ(stream->isLoadingOlder(), test.status == 503) << "a failure alone opens the list again";
        EXPECT_EQ(stream->isAtEnd(), test.status == 200 && test.ends);
        ASSERT_TRUE(KRWaitUntil([&] { return !stream->isLoadingOlder(); }) && KRTestSettle());
    }
}

TEST_F(StreamLoading, GetsPastAnOlderPageThatTheUserFilters)
{
    const QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(u"pelinor.ini"_s));
    defaults.setStringList("filterTerms", { u"unwanted"_s });
    ReadFilterTerms(defaults);
    m_site.answer("/statuses/home_timeline.xml", [](const KRTestServer::Request& request) {
        const bool isSecond = request.target.contains("max_id=50");
        return KRTestSite::Answer { 200,
            isSecond                             ? page(30, 49, "unwanted")
                : request.target.contains("max") ? page(11, 30)
                                                 : page(50, 69) };
    });
    const auto stream = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(waitForNewer(*stream) && waitForOlder(*stream));
    EXPECT_EQ(stream->oldestStatusID(), u"50"_s);
    ASSERT_TRUE(waitForOlder(*stream));
    EXPECT_EQ(m_site.targets().last(), "/statuses/home_timeline.xml?max_id=30&count=200");
    EXPECT_EQ(stream->oldestStatusID(), u"11"_s);
    ASSERT_TRUE(waitForOlder(*stream));
    EXPECT_EQ(m_site.targets().last(), "/statuses/home_timeline.xml?max_id=11&count=200");
    defaults.removeObjectForKey("filterTerms");
    ReadFilterTerms(defaults);
}

TEST_F(StreamLoading, GetsPastAPostThatCameLate)
{
    // Written elsewhere long ago, it is the oldest one by date among posts of its number.
    m_site.answer("/statuses/home_timeline.xml", [](const KRTestServer::Request& request) {
        const int top = QUrlQuery(QString::fromLatin1(request.target.split('?').last()))
                            .queryItemValue(u"max_id"_s)
                            .toInt();
        QByteArray body = page((top ? top : 100) - 19, top ? top : 100);
        QByteArray late = KRTestSite::status(1, "you", "text");
        late.replace("<id>1</id>", "<id>95</id>");
        return KRTestSite::Answer { 200, body.replace(KRTestSite::status(95, "you", "text"), late) };
    });
    const auto stream = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(waitForNewer(*stream));
    EXPECT_EQ(stream->oldestStatusID(), u"95"_s);
    ASSERT_TRUE(waitForOlder(*stream) && waitForOlder(*stream) && waitForOlder(*stream));
    EXPECT_EQ(m_site.targets().last(), "/statuses/home_timeline.xml?max_id=57&count=200");
    EXPECT_EQ(stream->storedStatuses().size(), 63);
}

TEST_F(StreamLoading, SendsOneRequestAtATimeInEachDirection)
{
    std::mutex hold;
    std::unique_lock holding(hold);
    m_site.answer("/statuses/home_timeline.xml", [&](const auto&) {
        std::scoped_lock waiting(hold);
        return KRTestSite::Answer { 200, page(1, 30) };
    });
    const auto stream = makeStream<TwitterTimelineStream>();
    for (int i = 0; i < 3; ++i) {
        stream->loadNewer();
        stream->loadOlder();
    }
    holding.unlock();
    ASSERT_TRUE(KRWaitUntil([&] { return !stream->isLoadingNewer() && !stream->isLoadingOlder(); }));
    EXPECT_EQ(m_site.requests().size(), 2);
}

TEST_F(StreamLoading, AFailedNewerLoadIsOneErrorAndTheNextOneWorks)
{
    std::mutex lock;
    QStringList errors;
    const KRObservation observation = KRTestObserve<TwitterStreamErrorNotification>([&](const auto& one) {
        std::scoped_lock guard(lock);
        errors.append(one.error.description);
    });
    const auto stream = makeStream<TwitterTimelineStream>();
    m_site.answer("/statuses/home_timeline.xml", "<hash><error>over capacity</error></hash>", 500);
    ASSERT_TRUE(waitForNewer(*stream));
    EXPECT_EQ(errors, QStringList(u"Internal server error. over capacity"_s));
    EXPECT_TRUE(stream->storedStatuses().isEmpty());
    EXPECT_FALSE(stream->isAtEnd());
    m_site.answer("/statuses/home_timeline.xml", page(1, 2));
    ASSERT_TRUE(waitForNewer(*stream));
    EXPECT_EQ(stream->storedStatuses().size(), 2);
}

TEST_F(StreamLoading, OutlivesNobodyNeededAnyMore)
{
    m_site.answer("/statuses/home_timeline.xml", page(1, 2));
    auto stream = makeStream<TwitterTimelineStream>();
    const std::weak_ptr<TwitterTimelineStream> watched = stream;
    stream->loadNewer();
    stream.reset();
    EXPECT_TRUE(KRWaitUntil([&] { return watched.expired(); })) << "the response held the last reference";

    auto orphan = makeStream<TwitterTimelineStream>();
    m_account.reset();
    orphan->loadNewer();
    EXPECT_TRUE(KRWaitUntil([&] { return !orphan->isLoadingNewer(); }));
}
