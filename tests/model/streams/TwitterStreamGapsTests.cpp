#include "KRTestStreamAccount.h"
#include "model/streams/TwitterDirectMessagesStream.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterSearchStream.h"
#include "model/streams/TwitterUserStream.h"

#include <QUrlQuery>

namespace {

/// Lists of posts or messages, each with the IDs 1 to newest, in pages of the site's own size.
class Gaps : public KRTestStreams {
protected:
    Gaps()
    {
        for (const char* path : { "/statuses/home_timeline.xml",
                 "/statuses/replies.xml",
                 "/statuses/user_timeline.xml",
                 "/direct_messages.xml",
                 "/direct_messages/sent.xml" })
            m_site.answer(path, [this](const auto& request) { return _answer(request.target); });
    }

    static QString newestOf(const TwitterConcreteStatusesStream& stream) { return stream.newestStatusID(); }
    static QString newestOf(const TwitterDirectMessagesStream& stream) { return stream.newestMessageID(); }
    static qsizetype countOf(const TwitterConcreteStatusesStream& stream)
    {
        return stream.storedStatuses().size();
    }
    static qsizetype countOf(const TwitterDirectMessagesStream& stream) { return stream.messages().size(); }

    /// So many are newer on the site now; after a load the list holds `count`.
    template <class Stream>
    [[nodiscard]] bool load(Stream& stream, int more, qsizetype count)
    {
        m_newest += more;
        stream.loadNewer();
        return settle(stream) && countOf(stream) == count
            && newestOf(stream) == QString::number(m_ahead > 0 ? m_ahead : m_newest);
    }
    /// Waits until everything that was to be loaded has been merged.
    template <class Stream>
    [[nodiscard]] static bool settle(Stream& stream)
    {
        const auto isIdle = [&] { return !stream.isLoadingNewer() && !stream.isLoadingMissing(); };
        // A page that was merged may have more to be loaded below it.
        do {
            if (!KRWaitUntil(isIdle) || !KRTestSettle())
                return false;
        } while (!isIdle());
        return true;
    }
    /// The first ID below which the requests since the last call asked, or "n" for what is newer.
    QString asked()
    {
        QStringList asked;
        const QList<QByteArray> targets = m_site.targets();
        for (; m_seen < targets.size(); ++m_seen) {
            const QUrlQuery query(QUrl(QString::fromLatin1(targets[m_seen])));
            asked += query.hasQueryItem(u"max_id"_s) ? query.queryItemValue(u"max_id"_s) : u"n"_s;
        }
        return asked.join(u' ');
    }
    static std::shared_ptr<TwitterDummyMissingStatus> missingRow(const TwitterStream& stream)
    {
        for (const TwitterStatusPtr& row : stream.statuses()) {
            if (auto missing = std::dynamic_pointer_cast<TwitterDummyMissingStatus>(row))
                return missing;
        }
        return nullptr;
    }

    std::atomic<int> m_newest = 0;
    std::atomic<int> m_pageSize = 20;
    /// One that is dated long after all others.
    std::atomic<int> m_ahead = 0;
    /// Pages below an ID fail, or are the newest one.
    std::atomic<bool> m_failsBelow = false;
    std::atomic<bool> m_ignoresBelow = false;
    qsizetype m_seen = 0;

private:
    KRTestSite::Answer _answer(const QByteArray& target)
    {
        const QUrlQuery query(QUrl(QString::fromLatin1(target)));
        const int sinceID = query.queryItemValue(u"since_id"_s).toInt();
        int id = m_newest;
        if (query.hasQueryItem(u"max_id"_s) && !m_ignoresBelow)
            id = std::min(id, query.queryItemValue(u"max_id"_s).toInt());
        QList<QByteArray> elements;
        for (; id > sinceID && elements.size() < m_pageSize; --id) {
            const int dated = id == m_ahead ? 10'000 : id;
            elements.append(target.startsWith("/direct") ? KRTestSite::message(dated, "you", "me")
                                                         : KRTestSite::status(dated, "you", "text"));
            elements.last().replace("<id>10000</id>", "<id>" + QByteArray::number(id) + "</id>");
        }
        const bool fails = m_failsBelow && query.hasQueryItem(u"max_id"_s);
        return { fails ? 503 : 200, KRTestSite::statuses(elements) };
    }
};

} // namespace

TEST_F(Gaps, AreLoadedUntilTheListMeetsWhatItHad)
{
    const auto check = [this](const auto& stream) {
        m_newest = 50;
        m_pageSize = 20;
        ASSERT_TRUE(load(*stream, 0, 20)) << "there was nothing to meet";
        ASSERT_TRUE(load(*stream, 18, 38)) << "a page that is not full has nothing below it";
        EXPECT_EQ(asked(), u"n n"_s);
        ASSERT_TRUE(load(*stream, 20, 58));
        EXPECT_EQ(asked(), u"n 69"_s) << "it cannot be told from a part";
        ASSERT_TRUE(load(*stream, 50, 108));
        EXPECT_EQ(asked(), u"n 119 100"_s);
        // Shorter than what has come at once before.
        m_pageSize = 19;
        ASSERT_TRUE(load(*stream, 25, 127));
        EXPECT_EQ(asked(), u"n"_s);
    };
    check(makeStream<TwitterRepliesStream>());
    check(makeStream<TwitterTimelineStream>());
    const auto userTimeline = makeStream<TwitterUserTimelineStream>();
    const TwitterUserPtr you = KRTestUser({}, u"you"_s);
    userTimeline->setUser(you);
    check(userTimeline);
    check(makeStream<TwitterReceivedDirectMessagesStream>());
    check(makeStream<TwitterSentDirectMessagesStream>());
    EXPECT_EQ(m_site.targets().count("/direct_messages/sent.xml?max_id=119"), 1);
}

TEST_F(Gaps, AreNotSoughtAgainDownToAPostThatIsDatedAhead)
{
    const auto check = [this](const auto& stream) {
        m_newest = m_ahead = 50;
        (void)asked();
        ASSERT_TRUE(load(*stream, 0, 20) && load(*stream, 30, 50));
        EXPECT_EQ(asked(), u"n n 61"_s);
        ASSERT_TRUE(load(*stream, 5, 55));
        EXPECT_EQ(asked(), u"n"_s) << "the page meets what came with the one before";
        ASSERT_TRUE(load(*stream, 45, 100));
        EXPECT_EQ(asked(), u"n 111 92"_s);
    };
    check(makeStream<TwitterTimelineStream>());
    check(makeStream<TwitterReceivedDirectMessagesStream>());
}

TEST_F(Gaps, APageWithAsManyAsWereAskedForIsFullWhateverCameBefore)
{
    m_newest = m_pageSize = 250;
    const auto stream = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(load(*stream, 0, 250));
    m_pageSize = 200;
    ASSERT_TRUE(load(*stream, 210, 460));
    EXPECT_EQ(asked(), u"n n 261"_s);
}

TEST_F(Gaps, WhereLoadingFailsARowLoadsThemWhenAsked)
{
    m_newest = 50;
    const auto stream = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(load(*stream, 0, 20));
    EXPECT_FALSE(missingRow(*stream));
    const KRTestCounter<TwitterStreamDidUpdateNotification> updates(stream.get());
    const KRTestCounter<TwitterStreamErrorNotification> errors(stream.get());
    m_failsBelow = true;
    ASSERT_TRUE(load(*stream, 45, 40));
    EXPECT_EQ(errors.count, 1);
    EXPECT_EQ(updates.count, 2) << "the page, and the row";
    const auto row = missingRow(*stream);
    ASSERT_TRUE(row);
    const TwitterStatusList rows = stream->statuses();
    EXPECT_EQ(rows[20]->statusID(), u"76"_s);
    EXPECT_TRUE(dynamic_cast<const TwitterDummyMissingStatus*>(rows[21].get()));
    EXPECT_EQ(rows[22]->statusID(), u"50"_s);
    EXPECT_EQ(row->belowID(), u"50"_s);
    EXPECT_FALSE(row->isLoading());

    // It stays while that fails again, and while newer ones come.
    stream->loadMissing(*row);
    EXPECT_TRUE(missingRow(*stream)->isLoading());
    EXPECT_EQ(updates.count, 3);
    ASSERT_TRUE(settle(*stream));
    EXPECT_EQ(errors.count, 2);
    EXPECT_FALSE(missingRow(*stream)->isLoading());
    ASSERT_TRUE(load(*stream, 3, 43));

    m_failsBelow = false;
    stream->loadMissing(*row);
    stream->loadMissing(*row);
    ASSERT_TRUE(settle(*stream));
    EXPECT_EQ(countOf(*stream), 68);
    EXPECT_FALSE(missingRow(*stream));
    EXPECT_EQ(asked(), u"n n 76 76 n 76 57"_s);
    stream->loadMissing(*row);
    EXPECT_TRUE(KRTestSettle());
    EXPECT_EQ(asked(), QString()) << "the row has gone";
}

TEST_F(Gaps, OfMessagesAreTriedAgainWithTheNextLoad)
{
    KRTestLog log;
    m_newest = 50;
    const auto stream = makeStream<TwitterReceivedDirectMessagesStream>();
    ASSERT_TRUE(load(*stream, 0, 20));
    m_failsBelow = true;
    ASSERT_TRUE(load(*stream, 30, 40));
    EXPECT_TRUE(stream->isMissingMessages());
    m_failsBelow = false;
    ASSERT_TRUE(load(*stream, 1, 51));
    EXPECT_FALSE(stream->isMissingMessages());
    EXPECT_EQ(asked(), u"n n 61 61 n"_s);
}

TEST_F(Gaps, EndWhereTheListIsFullOrTheServiceRepeatsItself)
{
    m_newest = 50;
    const auto full = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(load(*full, 0, 20));
    m_pageSize = 100;
    ASSERT_TRUE(load(*full, 5000, 499));
    EXPECT_EQ(asked(), u"n n 4951 4852 4753 4654 4555"_s);
    EXPECT_FALSE(missingRow(*full));
    EXPECT_TRUE(full->isAtEnd());
    full->loadOlder();
    EXPECT_FALSE(full->isLoadingOlder());

    m_newest = 50;
    m_pageSize = 20;
    m_ignoresBelow = true;
    const auto repeated = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(load(*repeated, 0, 20));
    ASSERT_TRUE(load(*repeated, 100, 40));
    EXPECT_EQ(asked(), u"n n 131"_s);
    ASSERT_TRUE(missingRow(*repeated));
    EXPECT_FALSE(missingRow(*repeated)->isLoading());

    // So many pages of messages come without anybody asking.
    m_newest = 50;
    m_ignoresBelow = false;
    const auto endless = makeStream<TwitterReceivedDirectMessagesStream>();
    ASSERT_TRUE(load(*endless, 0, 20));
    constexpr int pages = TwitterStreamGaps::maximumPagesInARow;
    // Each page but the newest begins with the last one of the page before.
    ASSERT_TRUE(load(*endless, 5000, 40 + pages * 19));
    EXPECT_TRUE(endless->isMissingMessages());
    EXPECT_EQ(asked().split(u' ').size(), 2 + pages);
}

TEST_F(Gaps, ARemovedAccountIsAskedForNothingMore)
{
    m_newest = 50;
    const auto stream = makeStream<TwitterTimelineStream>();
    ASSERT_TRUE(load(*stream, 0, 20));
    const KRObservation observation
        = KRTestObserve<TwitterStreamDidUpdateNotification>([&](const auto&) { m_account.reset(); });
    ASSERT_TRUE(load(*stream, 100, 40));
    EXPECT_EQ(asked(), u"n n"_s);
    EXPECT_TRUE(missingRow(*stream));
}
