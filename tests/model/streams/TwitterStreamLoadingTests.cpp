#include "KRTestStreamAccount.h"
#include "foundation/KRMainThreadObject.h"
#include "foundation/KRNotificationCenter.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterUserStream.h"
#include "support/KRTestWait.h"
#include "transport/KRBackgroundThread.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray page(int first, int last)
{
    QList<QByteArray> elements;
    for (int id = last; id >= first; --id)
        elements.append(KRTestSite::status(id, "you", "text"));
    return KRTestSite::statuses(elements);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Sanitizers keep shadows of the memory, and freed memory for a while.
constexpr qint64 memoryAllowed = 4LL * 1024 * 1024 * 1024;
#else
constexpr qint64 memoryAllowed = 400LL * 1024 * 1024;
#endif

/// Bytes of memory that the process has ever held at once.
qint64 residentPeak()
{
    rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024LL;
}

class StreamLoading : public testing::Test {
protected:
    template <class Stream>
    std::shared_ptr<Stream> makeStream()
    {
        auto stream = KRMakeMainThreadObject<Stream>(m_account->tables());
        stream->setAccount(m_account);
        return stream;
    }
    [[nodiscard]] static bool waitForNewer(TwitterConcreteStatusesStream& stream)
    {
        stream.loadNewer();
        // Pages of 50 MB take a while under a sanitizer on a busy machine.
        return KRWaitUntil([&] { return !stream.isLoadingNewer(); }, std::chrono::minutes(2)) && _settle();
    }
    [[nodiscard]] static bool waitForOlder(TwitterConcreteStatusesStream& stream)
    {
        stream.loadOlder();
        return KRWaitUntil([&] { return !stream.isLoadingOlder(); }) && _settle();
    }

    KRTestSite m_site;
    std::shared_ptr<KRTestStreamAccount> m_account = std::make_shared<KRTestStreamAccount>(m_site);

private:
    /// What a response has posted to the main thread has run once the background thread is past it.
    static bool _settle()
    {
        std::atomic<bool> isPast = false;
        performOnSharedBackgroundThread([&] { isPast = true; });
        if (!KRWaitUntil([&] { return isPast.load(); }))
            return false;
        KRRunLoop::main().runPending();
        return true;
    }
};

} // namespace

TEST_F(StreamLoading, AsksForWhatIsNewerAndOlder)
{
    m_site.answer("/statuses/home_timeline.xml", page(10, 29));
    m_site.answer("/statuses/replies.xml", page(10, 29));
    m_site.answer("/statuses/user_timeline.xml", page(10, 29));
    m_site.answer("/favorites/42.xml", page(10, 29));
    const auto user = std::make_shared<TwitterUser>();
    user->setUserID(u"42"_s);

    const auto timeline = makeStream<TwitterTimelineStream>();
    const auto replies = makeStream<TwitterRepliesStream>();
    const auto userTimeline = makeStream<TwitterUserTimelineStream>();
    userTimeline->setUser(user);
    const auto favorites = makeStream<TwitterUserFavoritesStream>();
    favorites->setUser(user);
    for (const std::shared_ptr<TwitterConcreteStatusesStream>& stream :
        QList<std::shared_ptr<TwitterConcreteStatusesStream>> { timeline,
            replies,
            userTimeline,
            favorites }) {
        ASSERT_TRUE(waitForNewer(*stream));
        EXPECT_EQ(stream->storedStatuses().size(), 20);
        ASSERT_TRUE(waitForNewer(*stream));
        ASSERT_TRUE(waitForOlder(*stream));
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_FALSE(stream->isAtEnd());
    }
    EXPECT_EQ(m_site.targets(),
        (QList<QByteArray> { "/statuses/home_timeline.xml?count=200",
            "/statuses/home_timeline.xml?since_id=29&count=200",
            "/statuses/home_timeline.xml?max_id=10&count=200",
            "/statuses/home_timeline.xml?max_id=10&count=200",
            "/statuses/replies.xml?",
            "/statuses/replies.xml?since_id=29",
            "/statuses/replies.xml?max_id=10",
            "/statuses/replies.xml?max_id=10",
            "/statuses/user_timeline.xml?user_id=42&count=40",
            "/statuses/user_timeline.xml?user_id=42&since_id=29&count=40",
            "/statuses/user_timeline.xml?user_id=42&max_id=10&count=40",
            "/statuses/user_timeline.xml?user_id=42&max_id=10&count=40",
            "/favorites/42.xml?page=0",
            "/favorites/42.xml?page=0",
            "/favorites/42.xml?page=1",
            "/favorites/42.xml?page=2" }));
}

TEST_F(StreamLoading, EndsWithAShortOrFailedOlderPage)
{
    struct Case {
        int statuses;
        int status;
        bool ends;
    };
    for (const Case& test : { Case { 19, 200, false }, Case { 18, 200, true }, Case { 0, 503, true } }) {
        m_site.answer("/statuses/home_timeline.xml", page(1, test.statuses), test.status);
        const auto stream = makeStream<TwitterTimelineStream>();
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_EQ(stream->isAtEnd(), test.ends);
        EXPECT_EQ(stream->storedStatuses().size(), test.statuses);
        const bool showsEnd
            = dynamic_cast<const TwitterDummyEndOfStreamStatus*>(stream->statuses().last().get()) != nullptr;
        EXPECT_EQ(showsEnd, test.ends);
        const qsizetype requests = m_site.requests().size();
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_EQ(m_site.requests().size() - requests, test.ends ? 0 : 1);
    }
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

TEST_F(StreamLoading, AFailedNewerLoadIsReportedAndTheNextOneWorks)
{
    std::mutex lock;
    QList<KRError> errors;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>(
            [&](const TwitterStreamErrorNotification& notification) {
                std::scoped_lock guard(lock);
                errors.append(notification.error);
            });
    const auto stream = makeStream<TwitterTimelineStream>();
    for (const QByteArray& bad : { QByteArray(),
             QByteArray("<statuses><status>"),
             QByteArray("<!DOCTYPE html><html><body><p>Hi</body></html>") }) {
        m_site.answer("/statuses/home_timeline.xml", bad);
        ASSERT_TRUE(waitForNewer(*stream));
    }
    m_site.answer("/statuses/home_timeline.xml", "<hash><error>over capacity</error></hash>", 500);
    ASSERT_TRUE(waitForNewer(*stream));
    ASSERT_EQ(errors.size(), 4);
    EXPECT_TRUE(errors.at(2).description.contains(u"web page"));
    EXPECT_FALSE(errors.at(2).description.contains(u'<'));
    EXPECT_EQ(errors.at(3).description, u"Internal server error. over capacity"_s);
    EXPECT_FALSE(stream->isAtEnd());
    m_site.answer("/statuses/home_timeline.xml", page(1, 2));
    ASSERT_TRUE(waitForNewer(*stream));
    EXPECT_EQ(stream->storedStatuses().size(), 2);
}

TEST_F(StreamLoading, HostilePagesAreOneErrorEachAndBoundInMemory)
{
    QByteArray bomb = "<!DOCTYPE statuses [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray reference = "&e" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY e" + QByteArray::number(i) + " '" + reference.repeated(10) + "'>";
    }
    bomb += "]>" + KRTestSite::statuses({ KRTestSite::status(1, "you", "&e11;") }).mid(38);
    struct Case {
        const char* name;
        QByteArray body;
        int status;
        const char* text;
    };
    const Case cases[] = {
        { "50 MB of text",
            "<statuses><status><text>" + QByteArray(50'000'000, 'x') + "</text></status></statuses>",
            200,
            "too long" },
        { "100,000 nested elements", "<statuses>" + QByteArray("<status>").repeated(100'000), 200, "depth" },
        { "an entity bomb", bomb, 200, "e11" },
        { "50 MB of an error's text",
            "<hash><error>" + QByteArray(50'000'000, 'x') + "</error></hash>",
            500,
            "Internal server error" },
        { "an empty error", {}, 500, "Internal server error" },
        { "a web page as an error",
            "<html><body>" + QByteArray("<p>Sorry</p>").repeated(10'000),
            502,
            "the server answered with a web page" },
    };
    std::mutex lock;
    QStringList errors;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>(
            [&](const TwitterStreamErrorNotification& notification) {
                std::scoped_lock guard(lock);
                errors.append(notification.error.description);
            });
    const auto stream = makeStream<TwitterTimelineStream>();
    const qint64 memoryBefore = residentPeak();
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        m_site.answer("/statuses/home_timeline.xml", test.body, test.status);
        errors.clear();
        ASSERT_TRUE(waitForNewer(*stream));
        ASSERT_EQ(errors.size(), 1);
        EXPECT_TRUE(errors.first().contains(QLatin1String(test.text))) << errors.first().toStdString();
        EXPECT_LE(errors.first().size(), 5000);
        EXPECT_TRUE(stream->storedStatuses().isEmpty());
        m_site.answer("/statuses/home_timeline.xml", page(1, 2));
        const auto next = makeStream<TwitterTimelineStream>();
        ASSERT_TRUE(waitForNewer(*next));
        EXPECT_EQ(next->storedStatuses().size(), 2);
    }
    // The page itself is held a few times over, here and in the server; what it stands for is not.
    EXPECT_LE(residentPeak() - memoryBefore, memoryAllowed);
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
