#include "KRTestStreamAccount.h"
#include "model/streams/TwitterConversationStream.h"
#include "model/streams/TwitterDummyStatus.h"

namespace {

class Conversation : public KRTestStreams {
protected:
    void follow(const TwitterStatusPtr& base, std::shared_ptr<TwitterUniquingTables> tables = nullptr)
    {
        if (!tables)
            tables = m_account->tables();
        m_stream = KRMakeMainThreadObject<TwitterConversationStream>(tables);
        m_stream->setAccount(m_account);
        m_stream->setBaseStatus(tables->definitiveStatus(base));
    }
    [[nodiscard]] bool waitForEnd()
    {
        return KRWaitUntil([this] { return m_stream->isAtEnd(); })
            && KRWaitUntil([] { return KRRunLoop::main().timeUntilNextWork() == std::nullopt; });
    }

    std::shared_ptr<TwitterConversationStream> m_stream;
};

} // namespace

TEST_F(Conversation, FollowsTheChainThroughCacheAndService)
{
    m_account->tables()->definitiveStatus(KRTestStatus(3, u"three"_s, u"2"_s));
    m_site.answer("/statuses/show/2.xml", KRTestSite::status(2, "you", "two", "1"));
    m_site.answer("/statuses/show/1.xml", KRTestSite::status(1, "me", "one"));
    follow(KRTestStatus(4, u"four"_s, u"3"_s));
    EXPECT_EQ(KRTestIDs(m_stream->storedStatuses()), u"4"_s) << "the base shows at once";
    EXPECT_EQ(m_stream->baseStatus(), m_stream->newestStatus());
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(KRTestIDs(m_stream->statuses()), u"- 4 3 2 1 -"_s);
    EXPECT_EQ(m_site.requests().size(), 2);
    EXPECT_TRUE(dynamic_cast<const TwitterDummyEndOfStreamStatus*>(m_stream->statuses().last().get()));

    KRTestLog log;
    m_stream->setBaseStatus(KRTestStatus(9));
    EXPECT_TRUE(log.contains(u"Error: trying to reassign baseStatus on conversation stream"_s));
    EXPECT_EQ(KRTestIDs(m_stream->storedStatuses()), u"4 3 2 1"_s);
    m_stream->loadNewer();
    m_stream->loadOlder();
    EXPECT_FALSE(m_stream->isLoadingNewer() || m_stream->isLoadingOlder());
}

TEST_F(Conversation, EndsWithAnErrorRowWhereAStatusWasDeleted)
{
    m_site.answer("/statuses/show/1.xml", "<hash><error>This notice has been deleted.</error></hash>", 410);
    follow(KRTestStatus(2, u"two"_s, u"1"_s));
    ASSERT_TRUE(waitForEnd());
    const TwitterStatusList rows = m_stream->statuses();
    ASSERT_EQ(rows.size(), 4);
    const auto* row = dynamic_cast<const TwitterDummyErrorStatus*>(rows.at(2).get());
    ASSERT_TRUE(row);
    EXPECT_EQ(row->error().description, u"Gone. This notice has been deleted."_s);
    EXPECT_LT(row->date(), rows.at(1)->date());
    EXPECT_TRUE(dynamic_cast<const TwitterDummyEndOfStreamStatus*>(rows.last().get()));
    m_account.reset();
    follow(KRTestStatus(4, u"four"_s, u"3"_s), std::make_shared<TwitterUniquingTables>());
    EXPECT_TRUE(m_stream->isAtEnd()) << "without an account the chain ends at once";
}

TEST_F(Conversation, AlwaysEnds)
{
    // A circle, a status that answers itself, one that is dated after its answer, and one that answers
    // nothing.
    m_account->tables()->definitiveStatus(KRTestStatus(11, u"circle"_s, u"12"_s, 1));
    for (const TwitterStatusPtr& base : { KRTestStatus(12, u"circle"_s, u"11"_s, 2),
             KRTestStatus(20, u"self"_s, u"20"_s),
             KRTestStatus(30, u"alone"_s) }) {
        follow(base);
        EXPECT_TRUE(waitForEnd()) << base->text().toStdString();
    }
    m_account->tables()->definitiveStatus(KRTestStatus(41, u"from the future"_s, u"42"_s, 99));
    follow(KRTestStatus(43, u"answer"_s, u"41"_s, 50));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(KRTestIDs(m_stream->storedStatuses()), u"41 43"_s);
    EXPECT_TRUE(m_site.requests().isEmpty());
}
