#include "KRTestStreamAccount.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRMainThreadObject.h"
#include "model/streams/TwitterSearch.h"
#include "support/KRTestLog.h"
#include "support/KRTestWait.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

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
    m_site.answer("/search.json", page(1, 18));
    stream.loadOlder();
    ASSERT_TRUE(KRWaitUntil([&] { return stream.isAtEnd(); }));
    EXPECT_EQ(m_site.targets(),
        (QList<QByteArray> { "/search.json?q=%23tea+%26+cake&rpp=100",
            "/search.json?q=%23tea+%26+cake&rpp=100&since_id=20",
            "/search.json?q=%23tea+%26+cake&rpp=100&page=1",
            "/search.json?q=%23tea+%26+cake&rpp=100&page=2",
            "/search.json?q=%23tea+%26+cake&rpp=100&page=3" }));
    EXPECT_TRUE(m_site.requests().first().values("authorization").isEmpty());
}

TEST_F(SearchTest, KnowsWhatIsFreshSinceItsFirstMark)
{
    const auto stream = makeSearch(u"tea"_s)->stream();
    EXPECT_FALSE(stream->hasFreshStatuses());
    stream->addStatuses({ KRTestStatus(1) });
    EXPECT_FALSE(stream->hasFreshStatuses()) << "no mark yet";
    stream->noteFreshStatuses();
    EXPECT_FALSE(stream->hasFreshStatuses());
    stream->addStatuses({ KRTestStatus(2) });
    EXPECT_TRUE(stream->hasFreshStatuses());
    stream->noteFreshStatuses();
    EXPECT_FALSE(stream->hasFreshStatuses());
}

TEST_F(SearchTest, SearchesAreEqualByQueryWhateverItsCase)
{
    EXPECT_TRUE(makeSearch(u"Tea"_s)->isEqual(*makeSearch(u"tEA"_s)));
    EXPECT_FALSE(makeSearch(u"tea"_s)->isEqual(*makeSearch(u"tea "_s)));
    const auto bare = makeSearch({});
    EXPECT_FALSE(bare->hasStream());
    EXPECT_TRUE(bare->isEqual(*bare));
    EXPECT_FALSE(bare->isEqual(*makeSearch({})));
}

TEST_F(SearchTest, ArchivesQueryAndName)
{
    KRTestLog log;
    const auto named = makeSearch(u"tea"_s);
    named->setDisplayName(u"Cups"_s);
    KRKeyedArchiver archiver;
    archiver.encodeObjects("searches"_L1, QList<TwitterSearchPtr> { named, makeSearch(u"x"_s) });
    EXPECT_TRUE(log.lines().isEmpty());
    archiver.encodeObject("bare"_L1, *makeSearch({}));
    EXPECT_EQ(log.lines(), QStringList(u"Error: trying to save search with no query string"_s));

    const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
    QStringList restored;
    for (const KRKeyedUnarchiver& one : coder.value().decodeObjects("searches"_L1)) {
        const auto search = TwitterSearch::searchWithCoder(one, m_account.tables(), m_account.hosts());
        EXPECT_TRUE(search->hasStream());
        restored.append(search->query() + u'/' + search->displayName());
    }
    EXPECT_EQ(restored, (QStringList { u"tea/Cups"_s, u"x/"_s }));
}
