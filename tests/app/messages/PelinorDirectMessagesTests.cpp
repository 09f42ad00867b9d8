#include "app/lists/PelinorListFakes.h"
#include "app/messages/PelinorDirectMessageConversationViewController.h"
#include "app/messages/PelinorDirectMessageTableViewCell.h"
#include "app/messages/PelinorDirectMessagesViewController.h"
#include "support/KRManualClock.h"
#include "text/KRDateAdditions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(PelinorDirectMessageConversation, FollowsTheClockWhileItIsShown)
{
    KRManualClock clock;
    FakeSurroundings surroundings;
    const auto message = std::make_shared<TwitterDirectMessage>();
    message->setMessageID(u"1"_s);
    message->setText(u"hello"_s);
    message->setSender(makeUser(u"bob"_s));
    message->setDate(KRNow());
    const auto conversation = std::make_shared<TwitterDirectMessageConversation>(message->sender());
    conversation->setMessages({ message });
    PelinorDirectMessageConversationViewController screen(surroundings.environment);
    screen.setAccount(surroundings.account);
    screen.setConversation(conversation);
    screen.tableView().setFrame({ 0, 0, 415, 300 });
    screen.viewWillAppear(false);

    clock.advance(std::chrono::minutes(5));
    const QString ago = KRAdditions::relativeTimeAgoString(message->date());
    EXPECT_TRUE(screen.tableView().cellForRow(0)->accessibleName().endsWith(ago)) << ago.toStdString();
}

TEST(PelinorDirectMessages, AnEmptyListSaysWhatIsKnown)
{
    FakeSurroundings surroundings;
    PelinorDirectMessagesViewController screen(surroundings.environment);
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
