#include "KRTestStreamAccount.h"
#include "foundation/KRMainThreadObject.h"
#include "foundation/KRNotificationCenter.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterUserStream.h"

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
        return KRWaitUntil([&] { return !stream.isLoadingNewer(); }, std::chrono::minutes(2))
            && KRTestSettle();
    }
    [[nodiscard]] static bool waitForOlder(TwitterConcreteStatusesStream& stream)
    {
        stream.loadOlder();
        return KRWaitUntil([&] { return !stream.isLoadingOlder(); }) && KRTestSettle();
    }

    KRTestSite m_site;
    std::shared_ptr<KRTestStreamAccount> m_account = std::make_shared<KRTestStreamAccount>(m_site);
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
        int updates = 0;
        const KRObservation observation
            = KRNotificationCenter::defaultCenter().observe<TwitterStreamDidUpdateNotification>(
                [&](const auto&) { ++updates; },
                stream.get());
        ASSERT_TRUE(waitForOlder(*stream));
        EXPECT_EQ(updates, test.ends + (test.status == 200)) << "the end is told of, and so is a page";
        EXPECT_EQ(stream->isAtEnd(), test.ends);
        EXPECT_EQ(stream->storedStatuses().size(), test.statuses);
        const TwitterStatusPtr last = stream->statuses().last();
        EXPECT_EQ(dynamic_cast<const TwitterDummyEndOfStreamStatus*>(last.get()) != nullptr, test.ends);
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

TEST_F(StreamLoading, AFailedNewerLoadIsOneErrorBoundInMemoryAndTheNextOneWorks)
{
    QByteArray bomb = "<!DOCTYPE statuses [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray reference = "&e" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY e" + QByteArray::number(i) + " '" + reference.repeated(10) + "'>";
    }
    bomb += "]>" + KRTestSite::statuses({ KRTestSite::status(1, "you", "&e11;") }).mid(38);
    const QByteArray manyBytes(50'000'000, 'x');
    const QByteArray sorry = "<html><body>" + QByteArray("<p>Sorry</p>").repeated(10'000);
    struct Case {
        const char* name;
        int status;
        const char* text;
        QByteArray body;
    };
    const Case cases[] = {
        { "nothing", 200, "empty", {} },
        { "half a page", 200, "", "<statuses><status>" },
        { "a web page", 200, "web page", "<!DOCTYPE html><html><body><p>Hi</body></html>" },
        { "50 MB of text", 200, "too long", "<statuses><status><text>" + manyBytes + "</text></status>" },
        { "100,000 nested elements", 200, "depth", "<statuses>" + QByteArray("<status>").repeated(100'000) },
        { "an entity bomb", 200, "e11", bomb },
        { "an error",
            500,
            "Internal server error. over capacity",
            "<hash><error>over capacity</error></hash>" },
        { "50 MB of an error",
            500,
            "Internal server error",
            "<hash><error>" + manyBytes + "</error></hash>" },
        { "an empty error", 500, "Internal server error", {} },
        { "a web page as an error", 502, "the server answered with a web page", sorry },
    };
    std::mutex lock;
    QStringList errors;
    const KRObservation observation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>([&](const auto& one) {
              std::scoped_lock guard(lock);
              errors.append(one.error.description);
          });
    const qint64 memoryBefore = residentPeak();
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        const auto stream = makeStream<TwitterTimelineStream>();
        m_site.answer("/statuses/home_timeline.xml", test.body, test.status);
        errors.clear();
        ASSERT_TRUE(waitForNewer(*stream));
        ASSERT_EQ(errors.size(), 1);
        EXPECT_TRUE(errors.first().contains(QLatin1String(test.text))) << errors.first().toStdString();
        EXPECT_FALSE(errors.first().contains(u"<p>"_s));
        EXPECT_LE(errors.first().size(), 5000);
        EXPECT_TRUE(stream->storedStatuses().isEmpty());
        EXPECT_FALSE(stream->isAtEnd());
        m_site.answer("/statuses/home_timeline.xml", page(1, 2));
        ASSERT_TRUE(waitForNewer(*stream));
        EXPECT_EQ(stream->storedStatuses().size(), 2);
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
