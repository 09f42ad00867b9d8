#include "app/lists/PelinorListFakes.h"
#include "app/messages/PelinorDirectMessagesViewController.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(PelinorDirectMessages, AnEmptyListSaysWhatIsKnown)
{
    FakeSurroundings surroundings;
    Twitter twitter({ &surroundings.defaults, {}, false });
    PelinorOutbox outbox(twitter, surroundings.defaults, surroundings.center, nullptr);
    PelinorDirectMessagesViewController screen(surroundings.environment, twitter, outbox);
    screen.setAccount(surroundings.account);
    screen.tableView().setFrame({ 0, 0, 415, 300 });
    screen.viewWillAppear(false);
    const auto row = [&] { return screen.tableView().cellForRow(0); };
    EXPECT_EQ(row()->accessibleName(), u"Loading…"_s);
    const auto& manager = surroundings.account->directMessagesManager();
    surroundings.center.post(TwitterStreamErrorNotification { manager->sentStream().get(), {} });
    KRRunLoop::main().runPending();
    EXPECT_EQ(row()->accessibleName(), u"Loading failed. Try again"_s);
    EXPECT_TRUE(row()->activate());
    EXPECT_EQ(row()->accessibleName(), u"Loading…"_s);
    surroundings.center.post(TwitterDirectMessageConversationManagerDidUpdateNotification { manager.get() });
    EXPECT_EQ(row()->accessibleName(), u"No direct messages yet"_s);
}

} // namespace
