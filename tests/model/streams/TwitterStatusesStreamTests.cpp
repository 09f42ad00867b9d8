#include "KRTestStreamAccount.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterAccountStream.h"
#include "model/streams/TwitterDummyStatus.h"
#include "model/streams/TwitterStatusStreamFilter.h"

#include <typeinfo>

namespace {

std::shared_ptr<TwitterTimelineStream> makeStream()
{
    return KRMakeMainThreadObject<TwitterTimelineStream>(std::make_shared<TwitterUniquingTables>());
}

TwitterStatusList statusesFrom(int first, int last)
{
    TwitterStatusList statuses;
    for (int id = first; id <= last; ++id)
        statuses.append(KRTestStatus(id));
    return statuses;
}

template <class Row>
bool isA(const TwitterStatusPtr& status)
{
    return dynamic_cast<const Row*>(status.get()) != nullptr;
}

/// The terms are read once a process, so they are there before any test.
class FilterTerms : public testing::Environment {
    void SetUp() override
    {
        KRUserDefaults::standardUserDefaults().setStringList("filterTerms", { u"SpoilER"_s, u""_s });
    }
};

const auto* filterTerms = testing::AddGlobalTestEnvironment(new FilterTerms);

} // namespace

TEST(TwitterConcreteStatusesStream, ShowsItsPostsBetweenAHeaderAndAnEnd)
{
    ASSERT_TRUE(filterTerms);
    const auto stream = makeStream();
    TwitterStatusList rows = stream->statuses();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_TRUE(isA<TwitterDummyHeaderStatus>(rows.at(0)));
    EXPECT_TRUE(isA<TwitterDummyLoadingStatus>(rows.at(1)));
    EXPECT_TRUE(rows.at(0)->date() > QDateTime::currentDateTimeUtc());
    EXPECT_TRUE(rows.at(1)->date() < QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(stream->newestStatusID(), QString());

    stream->addStatuses({ KRTestStatus(1), KRTestStatus(3), KRTestStatus(2) });
    EXPECT_EQ(KRTestIDs(stream->statuses()), u"- 3 2 1 -"_s);
    EXPECT_EQ(stream->newestStatusID(), u"3"_s);
    EXPECT_EQ(stream->oldestStatusID(), u"1"_s);
    EXPECT_EQ(stream->newestStatusThatIsNotMine(), stream->newestStatus()) << "no account, nobody's own";
}

TEST(TwitterConcreteStatusesStream, MergesWithoutDuplicatesAndTellsObservers)
{
    const auto stream = makeStream();
    const KRTestCounter<TwitterStreamDidUpdateNotification> updates(stream.get());
    stream->addStatuses(statusesFrom(1, 3));
    const TwitterStatusPtr known = stream->newestStatus();
    stream->addStatuses(statusesFrom(2, 5));
    EXPECT_EQ(KRTestIDs(stream->storedStatuses()), u"5 4 3 2 1"_s);
    EXPECT_EQ(stream->storedStatuses().at(2), known) << "the first record of a status stays";
    EXPECT_EQ(updates.count, 2);

    // Of equal dates the higher ID is the newer one, whatever came first.
    const auto ties = makeStream();
    ties->addStatuses({ KRTestStatus(100, u"a"_s, {}, 5), KRTestStatus(11, u"b"_s, {}, 5) });
    ties->addStatuses({ KRTestStatus(12, u"c"_s, {}, 5), KRTestStatus(13, u"d"_s, {}, 9) });
    EXPECT_EQ(KRTestIDs(ties->storedStatuses()), u"13 100 12 11"_s);
}

TEST(TwitterConcreteStatusesStream, IsCutAboveFiveHundred)
{
    const auto stream = makeStream();
    stream->addStatuses(statusesFrom(1, 500));
    EXPECT_EQ(stream->storedStatuses().size(), 500);
    EXPECT_FALSE(stream->isAtEnd());
    stream->addStatuses({ KRTestStatus(501) });
    EXPECT_EQ(stream->storedStatuses().size(), 499);
    EXPECT_EQ(stream->newestStatusID(), u"501"_s);
    EXPECT_EQ(stream->oldestStatusID(), u"3"_s);
    stream->loadOlderAgain();
    EXPECT_TRUE(stream->isAtEnd()) << "there is no room for older ones";
}

TEST(TwitterConcreteStatusesStream, LeavesOutWhatTheUserFilters)
{
    const auto stream = makeStream();
    stream->addStatuses({ KRTestStatus(1, u"a sPOILer, sorry"_s), KRTestStatus(2, u"harmless"_s) });
    EXPECT_EQ(KRTestIDs(stream->storedStatuses()), u"2"_s);
    // Edits take effect after a restart.
    KRUserDefaults::standardUserDefaults().setStringList("filterTerms", { u"harmless"_s });
    stream->addStatuses({ KRTestStatus(3, u"harmless too"_s) });
    EXPECT_EQ(KRTestIDs(stream->storedStatuses()), u"3 2"_s);
    EXPECT_TRUE(FilterWithUserDefaults(std::make_shared<TwitterDummyHeaderStatus>()));
}

TEST(TwitterStatusStreamFilter, AcceptsByUserOrText)
{
    const TwitterDummyLoadingStatus dummy;
    const TwitterStatusPtr status = KRTestStatus(2, u"Hello World"_s);
    EXPECT_TRUE(TwitterStatusStreamFilter::defaultStatusStreamFilter()->validStatus(*status));

    TwitterStatusStreamFilterUserListFilter byUser;
    EXPECT_TRUE(!byUser.validStatus(*status) && byUser.validStatus(dummy));
    byUser.setUsers({ status->fromUser() });
    EXPECT_TRUE(byUser.validStatus(*status) && !byUser.validStatus(*KRTestStatus(1)));
    TwitterStatusStreamFilterSimpleSearchFilter byText;
    byText.setQuery(u"WORLD"_s);
    EXPECT_TRUE(byText.validStatus(*status) && byText.validStatus(dummy));
    EXPECT_FALSE(byText.validStatus(*KRTestStatus(1)));
}
