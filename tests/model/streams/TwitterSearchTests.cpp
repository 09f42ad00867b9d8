#include "KRTestStreamAccount.h"
#include "foundation/KRKeyedArchiver.h"
#include "model/streams/TwitterSearch.h"

namespace {

class SearchTest : public testing::Test {
protected:
    TwitterSearchPtr makeSearch(const QString& query)
    {
        auto search = std::make_shared<TwitterSearch>(m_account.tables(), m_account.hosts());
        if (!query.isNull())
            search->setQuery(query);
        return search;
    }

    // A page of results with these IDs, newest first.
    static QByteArray page(int first, int last)
    {
        QByteArrayList results;
        for (int id = last; id >= first; --id)
            results.append(QByteArray(
                R"({"id":%1,"from_user":"bob","text":"t","created_at":"Sun, 22 Nov 2026 08:%2:00 +0000"})")
                               .replace("%1", QByteArray::number(id))
                               .replace("%2", QByteArray::number(id + 10)));
        return "{\"results\":[" + results.join(',') + "]}";
    }

    KRTestSite m_site;
    KRTestStreamAccount m_account { m_site };
};

} // namespace

TEST_F(SearchTest, LoadsAtBothEndsWithoutCredentials)
{
    m_site.answer("/search.json", page(1, 20));
    const auto search = makeSearch(u"#tea & cake"_s);
    TwitterSearchStream& stream = *search->stream();
    stream.loadNewer();
    ASSERT_TRUE(KRWaitUntil([&] { return stream.storedStatuses().size() == 20; }));
    EXPECT_EQ(stream.unseenStatusCount(), 20);
    for (const auto load : { &TwitterConcreteStatusesStream::loadNewer,
             &TwitterConcreteStatusesStream::loadOlder,
             &TwitterConcreteStatusesStream::loadOlder }) {
        (stream.*load)();
        ASSERT_TRUE(KRWaitUntil([&] { return !stream.isLoadingNewer() && !stream.isLoadingOlder(); }));
    }
    EXPECT_FALSE(stream.isAtEnd());
    // Marks: nothing is fresh before the first one, nor what was there then.
    EXPECT_FALSE(stream.hasFreshStatuses());
    stream.noteFreshStatuses();
    EXPECT_FALSE(stream.hasFreshStatuses());
    stream.addStatuses({ KRTestStatus(u"21"_s, {}, stream.newestStatus()->date().addSecs(1)) });
    EXPECT_TRUE(stream.hasFreshStatuses());
    // Without an ID a result comes once all the same.
    const auto nameless = [](const QString& text) {
        return KRTestStatus({}, KRTestUser({}, u"bob"_s), QDate(2026, 1, 1).startOfDay(Qt::UTC), text);
    };
    for (const QString& text : { u"a"_s, u"b"_s, u"a"_s })
        stream.addStatuses({ nameless(text) });
    EXPECT_EQ(stream.storedStatuses().size(), 23);
    m_site.answer("/search.json", page(1, 18));
    stream.loadOlder();
    ASSERT_TRUE(KRWaitUntil([&] { return stream.isAtEnd(); }));
    EXPECT_EQ(m_site.targets().join(' ').replace("/search.json?q=%23tea+%26+cake&rpp=100", "?"),
        "? ?&since_id=20 ?&page=1 ?&page=2 ?&page=3");
    EXPECT_TRUE(m_site.requests().first().values("authorization").isEmpty());
}

TEST_F(SearchTest, ASearchWithoutAQueryIsNoOthersEqualAndIsNotArchived)
{
    EXPECT_TRUE(makeSearch(u"Tea"_s)->isEqual(*makeSearch(u"tEA"_s)));
    EXPECT_FALSE(makeSearch(u"tea"_s)->isEqual(*makeSearch(u"tea "_s)));
    const auto bare = makeSearch({});
    EXPECT_FALSE(bare->hasStream());
    EXPECT_TRUE(bare->isEqual(*bare));
    EXPECT_FALSE(bare->isEqual(*makeSearch({})));
    KRTestLog log;
    KRKeyedArchiver archiver;
    const TwitterSearchPtr tea = makeSearch(u"tea"_s);
    tea->setDisplayName(u"Cups"_s);
    archiver.encodeObject("tea"_L1, *tea);
    EXPECT_TRUE(log.lines().isEmpty());
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
    const TwitterSearchPtr restored = TwitterSearch::searchWithCoder(*coder.value().decodeObject("tea"_L1),
        m_account.tables(),
        m_account.hosts());
    EXPECT_EQ(restored->query() + restored->displayName(), u"teaCups"_s);
    archiver.encodeObject("bare"_L1, *bare);
    EXPECT_EQ(log.lines(), QStringList(u"Error: trying to save search with no query string"_s));
}
