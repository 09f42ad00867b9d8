#include "app/lists/PelinorListFakes.h"
#include "app/people/PelinorPeopleListViewController.h"
#include "app/people/PelinorUserDetailsViewController.h"
#include "support/KRManualClock.h"
#include "support/KRTestSite.h"
#include "support/KRTestWait.h"
#include "transport/KRHTTPConnection.h"

#include <QPushButton>
#include <QTabBar>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char exists[] = "/friendships/exists.xml";
constexpr char followers[] = "/statuses/followers.xml";

QByteArray users(int from, int to)
{
    QByteArray elements;
    for (int number = from; number <= to; ++number)
        elements += KRTestSite::user(number, "person" + QByteArray::number(number));
    return "<users>" + elements + "</users>";
}

class PelinorPeopleTest : public testing::Test {
protected:
    using Following = PelinorUserDetails::Following;

    PelinorPeopleTest()
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        TwitterServiceHosts hosts;
        hosts.setValueForKey(site.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        account = TwitterAccount::accountWithUsername(u"alice"_s,
            u"wonderland"_s,
            { std::make_shared<TwitterUniquingTables>(), hosts });
        site.answer("/account/verify_credentials.xml", KRTestSite::user(1, "alice"));
        site.answer("/users/show.xml", KRTestSite::user(2, "bob"));
        site.answer("/friendships/create.xml", KRTestSite::user(2, "bob"));
        site.answer("/friendships/destroy/2.xml", KRTestSite::user(2, "bob"));
        site.answer("/statuses/user_timeline.xml", "<statuses/>");
        answerFollowing("true");
        bob->setUserID(u"2"_s);
        bob->setUsername(u"bob"_s);
    }

    void answerFollowing(const QByteArray& answer, int status = 200)
    {
        site.answer(exists, "<friends>" + answer + "</friends>", status);
    }
    int requestsTo(const QByteArray& path) const
    {
        int count = 0;
        for (const QByteArray& target : site.targets())
            count += target.contains(path) ? 1 : 0;
        return count;
    }
    std::shared_ptr<PelinorUserDetails> loadedDetails(Following expected)
    {
        const auto details = std::make_shared<PelinorUserDetails>(account, bob, QString());
        details->load();
        EXPECT_TRUE(KRWaitUntil([&] {
            return details->following() == expected
                && (expected != Following::Unknown || details->followError());
        }));
        return details;
    }

    KRTestSite site;
    FakeSurroundings surroundings;
    PelinorScreenEnvironment& environment = surroundings.modelEnvironment;
    TwitterAccountPtr account;
    TwitterUserPtr bob = std::make_shared<TwitterUser>();
};

TEST_F(PelinorPeopleTest, FollowingEndsOnlyWhenItWasNotTakenBack)
{
    const auto details = loadedDetails(Following::Yes);
    KRManualClock clock;
    details->toggleFollowing();
    EXPECT_EQ(details->following(), Following::Ending);
    clock.advance(PelinorUserDetails::timeToUndo / 2);
    details->undoUnfollowing();
    clock.advance(PelinorUserDetails::timeToUndo);
    EXPECT_EQ(details->following(), Following::Yes);
    details->undoUnfollowing();

    details->toggleFollowing();
    clock.advance(PelinorUserDetails::timeToUndo);
    EXPECT_EQ(details->following(), Following::Changing);
    details->toggleFollowing();
    ASSERT_TRUE(KRWaitUntil([&] { return details->following() == Following::No; }));
    EXPECT_EQ(requestsTo("destroy"), 1);

    details->toggleFollowing();
    ASSERT_TRUE(KRWaitUntil([&] { return details->following() == Following::Yes; }));
    // Whoever leaves meant it.
    details->toggleFollowing();
    details->finish();
    details->finish();
    ASSERT_TRUE(KRWaitUntil([&] { return details->following() == Following::No; }));
    EXPECT_EQ(requestsTo("destroy"), 2);
    site.answer("/friendships/create.xml", "<hash><error>not today</error></hash>", 403);
    details->toggleFollowing();
    ASSERT_TRUE(KRWaitUntil([&] { return details->followError().has_value(); }));
    EXPECT_EQ(details->following(), Following::No);
}

TEST_F(PelinorPeopleTest, ProtectedPeopleAreAskedAndWhatIsUnknownIsAskedAgain)
{
    answerFollowing("", 500);
    const auto details = loadedDetails(Following::Unknown);
    answerFollowing("false");
    details->toggleFollowing();
    ASSERT_TRUE(KRWaitUntil([&] { return details->following() == Following::No; }));
    EXPECT_FALSE(details->followError());
    details->user()->setIsProtected(true);
    details->toggleFollowing();
    ASSERT_TRUE(KRWaitUntil([&] { return details->following() == Following::Requested; }));
}

TEST_F(PelinorPeopleTest, ListsOfPeopleAreLoadedAPageAtATime)
{
    // The second page repeats one of the first; the third repeats the second, as sites without pages do.
    site.answer(followers, [](const KRTestServer::Request& request) {
        const bool isFirst = !request.target.contains("page=") || request.target.contains("page=1");
        return KRTestSite::Answer { 200, isFirst ? users(10, 29) : users(29, 48) };
    });
    PelinorPeopleListViewController list(environment, PelinorPeople::Kind::Followers);
    list.setAccount(account);
    list.setUser(bob);
    list.tableView().setFrame({ 0, 0, 415, 300 });
    list.viewWillAppear(false);
    const auto rows = [&] { return list.tableView().numberOfRows(); };
    const auto nameOf = [&](int row) { return list.tableViewAccessibleNameForRow(list.tableView(), row); };
    EXPECT_EQ(nameOf(0), u"Loading…"_s);
    ASSERT_TRUE(KRWaitUntil([&] { return rows() == 21; }));
    EXPECT_TRUE(nameOf(19).contains(u"@person29"_s)) << nameOf(19).toStdString();
    list.tableView().scrollToRow(20);
    ASSERT_TRUE(KRWaitUntil([&] { return rows() == 40; }));
    site.answer(followers, "no", 500);
    list.tableView().scrollToRow(39);
    ASSERT_TRUE(KRWaitUntil([&] { return nameOf(39).startsWith(u"Loading failed. Try again"_s); }));
    site.answer(followers, users(29, 48));
    list.tableView().cellForRow(39)->activate();
    ASSERT_TRUE(KRWaitUntil([&] { return nameOf(39).isEmpty(); }));
    const int asked = requestsTo(followers);
    list.tableView().scrollToRow(0);
    list.tableView().scrollToRow(39);
    EXPECT_EQ(requestsTo(followers), asked);
    list.tableView().cellForRow(38)->activate();
    EXPECT_EQ(surroundings.screens.taken(), u"user  48"_s);
}

TEST_F(PelinorPeopleTest, APersonsScreenShowsWhatIsKnown)
{
    site.answer(followers, users(10, 12));
    site.answer("/statuses/friends.xml", "<users/>");
    PelinorUserDetailsViewController screen(environment);
    screen.setAccount(account);
    screen.setLoadUsername(u"bob"_s);
    screen.view()->resize(420, 600);
    screen.viewWillAppear(false);
    const auto button = [&] { return screen.view()->findChild<QPushButton*>(u"followButton"_s); };
    ASSERT_TRUE(KRWaitUntil([&] { return button()->text() == u"Unfollow"_s; }));
    EXPECT_TRUE(screen.list());
    button()->click();
    EXPECT_EQ(button()->text(), u"Undo"_s);
    button()->click();
    EXPECT_EQ(button()->text(), u"Unfollow"_s);
    auto* const tabs = screen.view()->findChild<QTabBar*>();
    const auto lastRow = [&] {
        auto* const table = screen.view()->findChild<KRTableView*>();
        return table->delegate()->tableViewAccessibleNameForRow(*table, table->numberOfRows() - 1);
    };
    tabs->setCurrentIndex(2);
    EXPECT_FALSE(screen.list());
    ASSERT_TRUE(KRWaitUntil([&] { return lastRow() == u"Follows nobody yet"_s; })) << lastRow().toStdString();
    tabs->setCurrentIndex(3);
    ASSERT_TRUE(KRWaitUntil([&] { return lastRow().isEmpty(); })) << lastRow().toStdString();
    button()->click();
    screen.viewWillDisappear(false);
    ASSERT_TRUE(KRWaitUntil([&] { return requestsTo("destroy") == 1; }));
}

} // namespace
