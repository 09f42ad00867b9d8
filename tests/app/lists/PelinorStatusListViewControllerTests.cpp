#include "app/PelinorSeenPicture.h"
#include "app/lists/PelinorListFakes.h"
#include "app/lists/PelinorPlaceholderTableViewCells.h"
#include "app/lists/PelinorTitleTableViewCell.h"
#include "foundation/KRMainThreadObject.h"
#include "support/KRManualClock.h"
#include "text/render/KRActiveTextRenderer.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char TopKey[] = "me_____timeline__top_saved_status_id";
constexpr char OffsetKey[] = "me_____timeline__top_saved_status_offset";
constexpr char SelectedKey[] = "me_____timeline__selected_status_id";

class PelinorStatusListTest : public testing::Test, protected FakeSurroundings {
protected:
    // Numbered downwards from the first, as the newest has the highest ID.
    TwitterStatusList posts(int first, int count)
    {
        TwitterStatusList result;
        for (int number = first; number > first - count; --number)
            result.append(
                makeStatus(number, QStringLiteral("post number %1").arg(number), author, 6000 - number));
        return result;
    }

    KRTableView& table() { return list.tableView(); }
    void scrollTo(int y) { table().scrollToPoint({ 0, y }, KRScrollView::Animated::No); }
    int scrollPosition() { return table().documentVisibleRect().y(); }
    QString topKey() { return defaults.stringForKey(TopKey); }

    KRManualClock clock;
    std::shared_ptr<FakeStream> stream = std::make_shared<FakeStream>(center);
    TwitterUserPtr author = makeUser(QStringLiteral("author"), QStringLiteral("An Author"));
    FakeTimeline list { *this, stream };
};

TEST_F(PelinorStatusListTest, RowsFollowTheStreamWhileTheListIsShown)
{
    stream->posts = posts(100, 30);
    list.viewWillAppear(false);
    EXPECT_EQ(list.navigationItem()->title(), QStringLiteral("Timeline"));
    EXPECT_EQ(table().numberOfRows(), 32);
    EXPECT_EQ(stream->newerLoads, 0);
    stream->setStatuses(posts(101, 31));
    EXPECT_EQ(table().numberOfRows(), 33);
    list.viewWillDisappear(false);
    stream->setStatuses(posts(102, 32));
    EXPECT_EQ(table().numberOfRows(), 33);
}

TEST_F(PelinorStatusListTest, StatusesAndRowsFindEachOther)
{
    stream->posts = posts(100, 3);
    list.viewWillAppear(false);
    EXPECT_EQ(list.statusForRow(-1), nullptr);
    EXPECT_EQ(list.statusForRow(5), nullptr);
    EXPECT_EQ(list.statusForRow(2), stream->posts.at(1));
    EXPECT_EQ(list.rowForStatus(*stream->posts.at(2)), 3);
    EXPECT_EQ(list.rowForStatus(*makeStatus(7, {}, author)), 0x7FFFFFFF);
}

TEST_F(PelinorStatusListTest, RowsHaveTheHeightsOfTheirKinds)
{
    stream->posts = { makeStatus(3, QStringLiteral("x"), author),
        makeStatus(2, QStringLiteral("many words ").repeated(30), author) };
    stream->posts.append(std::make_shared<TwitterDummyErrorStatus>(KRError { {}, 1, QStringLiteral("oh") }));
    stream->isAtEnd = true;
    list.viewWillAppear(false);
    EXPECT_EQ(table().rectForRow(0).height(), 11);
    for (const int row : { 1, 2 }) {
        const TwitterStatus& status = *list.statusForRow(row);
        const int text = KRActiveTextRenderer::heightOfAttributedString(
            AttributedStringForStatus(status.text(), status.activeTextRanges(), KRStatusTextSize::Normal),
            400 - 94);
        EXPECT_EQ(table().rectForRow(row).height(), std::max(52, text + 37));
    }
    EXPECT_EQ(table().rectForRow(3).height(), ErrorStreamTableViewCell::heightForTableWidth(400));
    EXPECT_EQ(table().rectForRow(4).height(), EndOfStreamTableViewCell::heightForTableWidth(400));
    table().scrollToRow(3);
    const auto* const error = qobject_cast<ErrorStreamTableViewCell*>(table().cellForRow(3));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->text(), QStringLiteral("oh"));
}

TEST_F(PelinorStatusListTest, CellsFollowTheGeometry)
{
    const PelinorStatusCellGeometry others { 400, false };
    EXPECT_EQ(others.profileImageFrame(), QRect(6, 0, 52, 52));
    EXPECT_EQ(others.nameFrame(), QRect(71, 5, 205, 20));
    EXPECT_EQ(others.dateFrame(), QRect(272, 6, 100, 20));
    EXPECT_EQ(others.textOrigin(), QPoint(73, 24));
    EXPECT_EQ(others.textWidth(), 306);
    const PelinorStatusCellGeometry mine { 400, true };
    EXPECT_EQ(mine.profileImageFrame(), QRect(342, 0, 52, 52));
    EXPECT_EQ(mine.nameFrame(), QRect(120, 5, 200, 20));
    EXPECT_EQ(mine.dateFrame(), QRect(15, 6, 100, 20));
    EXPECT_EQ(mine.textOrigin(), QPoint(18, 24));
    EXPECT_EQ(mine.textWidth(), 306);
}

TEST_F(PelinorStatusListTest, ThePlaceIsKeptAcrossVisits)
{
    stream->posts = posts(100, 30);
    list.viewWillAppear(false);
    table().selectRow(12);
    scrollTo(table().rectForRow(10).y() + 9);
    list.viewWillDisappear(false);
    EXPECT_EQ(topKey(), QStringLiteral("91"));
    EXPECT_EQ(defaults.integerForKey(OffsetKey), -9);
    EXPECT_EQ(defaults.integerForKey(SelectedKey), 12);

    stream->posts = posts(103, 33);
    FakeTimeline again(*this, stream);
    again.viewWillAppear(false);
    EXPECT_EQ(again.tableView().relativeVisibleOffsetForRow(13), -9) << "three new rows came above";
    EXPECT_EQ(again.tableView().selectedRow(), 12) << "the number of the row, whatever is there now";

    // Another account has its own place; a place that is gone leaves the list where it is.
    account = makeAccount(QStringLiteral("other"));
    FakeTimeline others(*this, stream);
    others.viewWillAppear(false);
    EXPECT_TRUE(others.tableView().isScrolledToTop());
    account = makeAccount(QStringLiteral("me"));
    defaults.setString(TopKey, QStringLiteral("4711"));
    FakeTimeline gone(*this, stream);
    gone.viewWillAppear(false);
    EXPECT_TRUE(gone.tableView().isScrolledToTop());
    EXPECT_EQ(gone.tableView().selectedRow(), -1);
}

TEST_F(PelinorStatusListTest, OnlyRealStatusesArePlaces)
{
    list.viewWillAppear(false);
    list.saveScrollPosition();
    EXPECT_TRUE(topKey().isEmpty()) << "only placeholders are in view";
    stream->setStatuses(posts(100, 30));
    list.saveScrollPosition();
    EXPECT_EQ(topKey(), QStringLiteral("100"));
    EXPECT_EQ(defaults.integerForKey(OffsetKey), 11);
}

TEST_F(PelinorStatusListTest, LeavingAtTheTopMarksTheTimelineAsSeen)
{
    stream->posts = posts(100, 30);
    list.viewWillAppear(false);
    scrollTo(40);
    list.viewWillDisappear(false);
    EXPECT_EQ(list.freshnessNotes, 0);
    list.viewWillAppear(false);
    scrollTo(0);
    list.viewWillDisappear(false);
    EXPECT_EQ(list.freshnessNotes, 1);
}

TEST_F(PelinorStatusListTest, TheLoadingRowAsksForOlderPostsOnceForEachEnd)
{
    stream->posts = posts(100, 30);
    list.viewWillAppear(false);
    EXPECT_EQ(stream->olderLoads, 0) << "not before it is in view";
    table().scrollToRow(31);
    EXPECT_EQ(stream->olderLoads, 1);
    scrollTo(0);
    table().scrollToRow(31);
    stream->setStatuses(posts(102, 32));
    table().scrollToRow(33);
    EXPECT_EQ(stream->olderLoads, 1) << "the same end is not asked for again by itself";
    auto* const waiting = qobject_cast<LoadingTableViewCell*>(table().cellForRow(33));
    ASSERT_NE(waiting, nullptr);
    EXPECT_EQ(waiting->text(), QStringLiteral("Show older posts"));
    table().scrollToRow(0);
    EXPECT_EQ(list.tableViewAccessibleNameForRow(table(), 33), QStringLiteral("Show older posts"));
    table().scrollToRow(33);
    QTest::mouseClick(table().cellForRow(33), Qt::LeftButton);
    EXPECT_EQ(stream->olderLoads, 2);
    table().show();
    QTest::keyClick(table().selectedCell(), Qt::Key_Return);
    EXPECT_EQ(stream->olderLoads, 2) << "it is on its way";
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Space }) {
        stream->setStatuses(posts(102, 32));
        QTest::keyClick(table().selectedCell(), key);
    }
    EXPECT_EQ(stream->olderLoads, 4);
    stream->olderLoads = 2;

    stream->setStatuses(posts(102, 60));
    table().scrollToRow(61);
    EXPECT_EQ(stream->olderLoads, 3) << "the list has grown at its end";
    stream->isAtEnd = true;
    stream->setStatuses(posts(102, 70));
    table().scrollToRow(71);
    EXPECT_EQ(stream->olderLoads, 3);
    EXPECT_EQ(list.tableViewAccessibleNameForRow(table(), 71), QStringLiteral("No older posts"));
}

TEST_F(PelinorStatusListTest, AGapLoadsWhatIsMissingWhenItIsClicked)
{
    for (const bool isLoading : { false, true }) {
        stream->missingLoads.clear();
        stream->posts = posts(100, 1);
        stream->posts.append(std::make_shared<TwitterDummyMissingStatus>(QStringLiteral("90"), isLoading));
        stream->posts += posts(90, 2);
        list.viewWillAppear(false);
        table().show();
        const QString text
            = isLoading ? QStringLiteral("Loading…") : QStringLiteral("Some posts are missing here");
        const auto* const cell = qobject_cast<LoadingTableViewCell*>(table().cellForRow(2));
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->text(), text);
        EXPECT_EQ(list.tableViewAccessibleNameForRow(table(), 2), text);
        EXPECT_EQ(table().rectForRow(2).height(), LoadingTableViewCell::heightForTableWidth(400));
        QTest::mouseClick(table().cellForRow(2), Qt::LeftButton);
        EXPECT_EQ(stream->missingLoads, isLoading ? QStringList() : QStringList(QStringLiteral("90")));
        list.viewWillDisappear(false);
    }
}

TEST_F(PelinorStatusListTest, SelectingMarksAsRead)
{
    stream->posts = posts(100, 5);
    list.viewWillAppear(false);
    table().selectRow(2);
    EXPECT_TRUE(stream->posts.at(1)->isRead());
    EXPECT_FALSE(stream->posts.at(0)->isRead());
    table().selectRow(0);
    EXPECT_EQ(table().selectedRow(), 0) << "the header has nothing to mark";
}

TEST_F(PelinorStatusListTest, AReloadMeasuresOnlyWhatIsNew)
{
    stream->posts = posts(1000, 400);
    list.viewWillAppear(false);
    EXPECT_EQ(heights.measuredCount(), 400);
    stream->setStatuses(posts(1001, 401));
    EXPECT_EQ(heights.measuredCount(), 401);
    preferences.statusCellFontSize = 2;
    center.post(PelinorDisplayPreferencesDidChangeNotification {});
    EXPECT_EQ(heights.measuredCount(), 802);
}

TEST_F(PelinorStatusListTest, DatesAreReadAgainEveryMinuteWhileTheListIsShown)
{
    // The other is from before the clock was set back an hour.
    stream->posts = { makeStatus(2, QStringLiteral("y"), author, -3600),
        makeStatus(1, QStringLiteral("x"), author, 60) };
    list.viewWillAppear(false);
    EXPECT_EQ(table().cellForRow(1)->accessibleName(), QStringLiteral("An Author: y, 0 seconds ago"));
    const auto* const cell = qobject_cast<PelinorStatusTableViewCell*>(table().cellForRow(2));
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->accessibleName(), QStringLiteral("An Author: x, 1 minute ago"));
    clock.advance(std::chrono::minutes(4));
    EXPECT_EQ(cell->accessibleName(), QStringLiteral("An Author: x, 5 minutes ago"));
    list.viewWillDisappear(false);
    EXPECT_FALSE(KRRunLoop::main().timeUntilNextWork().has_value())
        << "nothing wakes a list that is not shown";
}

TEST_F(PelinorStatusListTest, KeysMenusAndActionsDoWhatTheirNamesSay)
{
    stream->posts = posts(100, 3);
    list.viewWillAppear(false);
    table().show();
    table().selectRow(1);
    auto* const cell = static_cast<PelinorStatusTableViewCell*>(table().selectedCell());
    const QString text = QStringLiteral("post number 100");
    const QString page = QStringLiteral("https://social.example/author/status/100");
    const QString repost = QStringLiteral("tweet me re: ") + text + QStringLiteral(" (via @author)");
    struct {
        Qt::Key key;
        QString title;
        QString event;
    } const cases[] = {
        { Qt::Key_R, u"Reply..."_s, u"tweet me re:100 "_s },
        { Qt::Key_T, u"Repost..."_s, repost },
        { Qt::Key_unknown, u"Copy Link to Tweet"_s, u"tweet me re: "_s + page },
        { Qt::Key_D, u"Direct Message..."_s, u"message author"_s },
        { Qt::Key_O, u"Open in Browser"_s, u"open "_s + page },
        { Qt::Key_Return, {}, u"details 100"_s },
        { Qt::Key_Right, {}, u"details 100"_s },
        { Qt::Key_P, {}, u"user author "_s + author->userID() },
    };
    const std::unique_ptr<QMenu> menu = cell->menuForAction();
    for (const auto& test : cases) {
        SCOPED_TRACE(test.event.toStdString());
        if (test.key != Qt::Key_unknown) {
            QTest::keyClick(cell, test.key);
            EXPECT_EQ(screens.taken(), test.event);
        }
        if (test.title.isNull())
            continue;
        const QList<QAction*> items = menu->actions();
        const auto item = std::find_if(items.begin(), items.end(), [&](const QAction* one) {
            return one->text() == test.title;
        });
        ASSERT_NE(item, items.end());
        (*item)->trigger();
        EXPECT_EQ(screens.taken(), test.event);
        cell->performAction(test.title);
        EXPECT_EQ(screens.taken(), test.event);
    }
    defaults.setInteger("RepostSyntax", 1);
    QTest::keyClick(cell, Qt::Key_T);
    EXPECT_EQ(screens.taken(), u"tweet me re: RT @author: "_s + text);
    QTest::keyClick(cell, Qt::Key_R, Qt::ControlModifier);
    table().selectRow(0);
    QTest::keyClick(table().selectedCell(), Qt::Key_R);
    EXPECT_EQ(screens.taken(), QString()) << "the header is no post, and Ctrl+R is another key";

    QTest::mouseMove(cell, QPoint(100, 30));
    QTest::mouseClick(cell,
        Qt::LeftButton,
        {},
        PelinorStatusCellGeometry { cell->width() }.replyButtonDisplayRect().center());
    QTest::mouseClick(cell, Qt::LeftButton, {}, QPoint(20, 20));
    QTest::mouseDClick(cell, Qt::LeftButton, {}, QPoint(200, 30));
    EXPECT_EQ(screens.taken(), u"tweet me re:100 |user author %1|details 100"_s.arg(author->userID()));

    // Meanwhile the cell shows another post.
    stream->setStatuses(posts(104, 7));
    ASSERT_NE(cell->status()->statusID(), u"100"_s);
    menu->actions().first()->trigger();
    EXPECT_EQ(screens.taken(), u"tweet me re:100 "_s);
}

TEST_F(PelinorStatusListTest, ALoadThatFailsSaysSoAndCanBeTriedAgain)
{
    const auto fail = [&] {
        center.post(TwitterStreamErrorNotification { stream.get(), { {}, 503, QStringLiteral("busy") } });
        clock.advance(std::chrono::milliseconds(0));
    };
    const auto textOfLastRow = [&] {
        const qint64 row = table().numberOfRows() - 1;
        const QString text = list.tableViewAccessibleNameForRow(table(), row);
        EXPECT_EQ(text, static_cast<PelinorPlaceholderTableViewCell*>(table().cellForRow(row))->text());
        return text;
    };
    list.viewWillAppear(false);
    EXPECT_EQ(stream->newerLoads, 1);
    EXPECT_EQ(stream->olderLoads, 0) << "below nothing there is nothing older to ask for";
    EXPECT_EQ(textOfLastRow(), QStringLiteral("Loading…"));
    fail();
    EXPECT_EQ(textOfLastRow(), QStringLiteral("Loading failed. Try again"));
    QTest::mouseClick(table().cellForRow(1), Qt::LeftButton);
    EXPECT_EQ(stream->newerLoads, 2);
    EXPECT_EQ(textOfLastRow(), QStringLiteral("Loading…"));
    stream->setStatuses({});
    EXPECT_EQ(textOfLastRow(), QStringLiteral("No posts yet")) << "that was the answer";
    stream->setStatuses(posts(100, 2));
    EXPECT_EQ(stream->olderLoads, 1) << "the bottom is in view";
    stream->isAtEnd = true;
    stream->setStatuses(posts(100, 2));
    EXPECT_EQ(textOfLastRow(), QStringLiteral("No older posts"));
    stream->didFailOlder = true;
    table().show();
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Space, Qt::Key_unknown }) {
        const int retries = stream->olderRetries;
        stream->isAtEnd = true;
        stream->setStatuses(posts(100, 2));
        fail();
        EXPECT_EQ(textOfLastRow(), QStringLiteral("Older posts could not be loaded. Try again"));
        table().selectRow(3);
        if (key == Qt::Key_unknown)
            QTest::mouseClick(table().cellForRow(3), Qt::LeftButton);
        else
            QTest::keyClick(table().cellForRow(3), key);
        EXPECT_EQ(stream->olderRetries, retries + 1);
        EXPECT_EQ(textOfLastRow(), QStringLiteral("Loading…"));
    }
    EXPECT_EQ(stream->olderLoads, 1) << "nothing is asked for twice";
    stream->isAtEnd = true;
    stream->didFailOlder = false;
    stream->setStatuses({});
    EXPECT_EQ(textOfLastRow(), QStringLiteral("No posts yet"));
}

// One that is selected, an own one, a favourite under the pointer that mentions the reader, and one as it is. What
// depends on the fonts is left out.
TEST_F(PelinorStatusListTest, CellsAreDrawnAsTheyWereSeen)
{
    stream->posts = { makeStatus(4, {}, author),
        makeStatus(3, {}, makeUser(u"me"_s)),
        makeStatus(2, {}, author),
        makeStatus(1, {}, author) };
    stream->isAtEnd = true;
    list.viewWillAppear(false);
    table().show();
    table().selectRow(1);
    auto* const favorite = qobject_cast<PelinorStatusTableViewCell*>(table().cellForRow(3));
    ASSERT_NE(favorite, nullptr);
    favorite->setIsFavorite(true);
    favorite->setIsHighlighted(true);
    QHoverEvent hover(QEvent::HoverEnter, QPointF(200, 30), QPointF(200, 30), QPointF(0, 0));
    QHoverEvent leave(QEvent::HoverLeave, QPointF(-1, -1), QPointF(-1, -1), QPointF(200, 30));
    QCoreApplication::sendEvent(favorite, &hover);
    QCoreApplication::sendEvent(table().cellForRow(4), &hover);
    QCoreApplication::sendEvent(table().cellForRow(4), &leave);
    // The upper edge of every cell, and its lower right corner.
    constexpr int Top = 50;
    constexpr QSize Corner(60, 20);
    const QImage shown = table().grab().toImage();
    const auto isWritten = [&shown](const QRect& where) {
        const QImage part = shown.copy(where);
        QImage plain(part.size(), part.format());
        plain.fill(part.pixelColor(0, 0));
        return part != plain;
    };
    EXPECT_FALSE(isWritten(table().rectForRow(0))) << "the header has not the keyboard";
    EXPECT_TRUE(isWritten(table().rectForRow(5).adjusted(100, 10, -100, -10)));
    QImage drawn(400 + Corner.width(), 4 * Top, QImage::Format_RGB32);
    drawn.fill(Qt::gray);
    QPainter painter(&drawn);
    for (int row = 1; row <= 4; ++row) {
        const QRect place = table().rectForRow(row);
        painter.drawImage(0, 0, shown.copy(0, place.y(), 400, Top));
        const PelinorStatusCellGeometry geometry { 400, row == 2 };
        for (const QRect& words : { geometry.nameFrame(), geometry.dateFrame() }) {
            EXPECT_TRUE(isWritten(words.translated(place.topLeft()))) << row;
            painter.fillRect(words, Qt::gray);
        }
        // An own one has its picture there.
        if (row != 2) {
            painter.fillRect(QRect({ 400 - Corner.width(), Top - Corner.height() }, Corner), Qt::gray);
            painter.drawImage(400,
                0,
                shown.copy(
                    { QPoint(400, place.bottom() + 1) - QPoint(Corner.width(), Corner.height()), Corner }));
        }
        painter.translate(0, Top);
    }
    painter.end();
    expectAsSeen(drawn, u"cells"_s);
}

TEST_F(PelinorStatusListTest, TitlesStandBesideWhatBelongsToThem)
{
    PelinorTitleTableViewCell cell(center);
    QList<QImage> seen;
    for (const PelinorTitleTableViewCell::Content& content :
        { PelinorTitleTableViewCell::Content { .title = u"word"_s },
            { .title = u"word"_s, .isHeading = true },
            { .title = u"word"_s, .isFresh = true },
            { .title = u"word"_s, .hasUser = true },
            { .title = u"word"_s, .date = u"today"_s },
            { .title = u"word"_s, .detail = u"more"_s } }) {
        cell.setContent(content);
        EXPECT_EQ(cell.accessibleName(), PelinorTitleTableViewCell::accessibleNameForContent(content));
        cell.resize(300, 60);
        const QImage drawn = cell.grab().toImage();
        EXPECT_FALSE(seen.contains(drawn)) << seen.size();
        seen.append(drawn);
    }
    EXPECT_NE(seen.first().copy(0, 0, 150, 60), seen.at(2).copy(0, 0, 150, 60)) << "what is new is bold";
    // A detail is below its title.
    EXPECT_EQ(seen.first().copy(0, 42, 300, 16), seen.at(4).copy(0, 42, 300, 16));
    EXPECT_NE(seen.first().copy(0, 42, 300, 16), seen.last().copy(0, 42, 300, 16));
}

TEST_F(PelinorStatusListTest, AStreamAsksBelowAFailureAndAfterNothingDatedAhead)
{
    const auto real = KRMakeMainThreadObject<TwitterTimelineStream>(account->context().tables);
    TwitterStatusList ahead { makeStatus(200, {}, author, -7 * 86400), makeStatus(150, {}, author, -3600) };
    real->setStatuses(ahead + posts(100, 2));
    EXPECT_EQ(real->sinceID(), u"150"_s) << "a clock may be an hour slow, and no post stops a timeline";
    ahead.resize(1);
    real->setStatuses(ahead);
    EXPECT_EQ(real->sinceID(), u"200"_s);
    int failures = 0;
    const auto observation = KRNotificationCenter::defaultCenter().observe<TwitterStreamErrorNotification>(
        [&](const auto&) { ++failures; },
        real.get());
    const auto isFailedEnd = [&] {
        const auto end = std::dynamic_pointer_cast<TwitterDummyEndOfStreamStatus>(real->statuses().last());
        return end && end->isAfterFailure();
    };
    // There is no account to load with.
    real->loadOlderAgain();
    real->loadOlder();
    EXPECT_TRUE(isFailedEnd());
    real->loadOlder();
    EXPECT_EQ(failures, 1);
    real->loadOlderAgain();
    EXPECT_EQ(failures, 2);
    EXPECT_TRUE(isFailedEnd());
}

TEST(PelinorStatusListLinks, AListFollowsTheLinksOfItsRows)
{
    FakeSurroundings surroundings;
    const auto stream = std::make_shared<FakeStream>(surroundings.center);
    const auto taken = [&] { return surroundings.screens.taken(); };
    FakeTimeline list(surroundings, stream);
    auto user = std::make_shared<TwitterUser>();
    user->setUsername(u"marion"_s);
    user->setFullName(u"Marion"_s);
    for (const QString& text : { u"one @bob #tag"_s, u"nothing"_s }) {
        auto post = std::make_shared<TwitterStatus>();
        post->setStatusID(QString::number(stream->posts.size()));
        post->setText(text);
        post->setFromUser(user);
        post->setDate(KRNow());
        stream->posts.append(post);
    }
    KRTableView& table = list.tableView();
    table.setFrame({ 0, 0, 415, 300 });
    table.show();
    list.viewWillAppear(false);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&table));
    table.setFocus();
    QTest::keyClick(table.focusWidget(), Qt::Key_Down);
    auto* const cell = static_cast<PelinorStatusTableViewCell*>(table.selectedCell());
    ASSERT_EQ(table.selectedRow(), 1);
    const QImage plain = cell->grab().toImage();
    QTest::keyClick(cell, Qt::Key_Tab);
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(taken(), u"user bob |beep"_s) << "there is no stack to push on";
    EXPECT_NE(cell->grab().toImage(), plain) << "the focus is visible";
    QTest::keyClick(cell, Qt::Key_Tab);
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(taken(), u"search #tag|beep"_s);
    QTest::mouseClick(cell,
        Qt::LeftButton,
        {},
        cell->findChild<KRActiveTextTracker*>()->spanRect(0).center());
    EXPECT_EQ(taken(), u"user bob |beep"_s);
    EXPECT_EQ(cell->accessibleName(), u"Marion: one @bob #tag, 0 seconds ago"_s);
    EXPECT_EQ(list.tableViewAccessibleNameForRow(table, 1), cell->accessibleName());
    QTest::keyClick(cell, Qt::Key_Down);
    QTest::keyClick(table.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(table.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(taken(), u"details 1"_s) << "a row without spans";

    // A refresh leaves the keyboard on the link it is on.
    table.selectRow(1);
    QTest::keyClick(table.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(table.focusWidget(), Qt::Key_Tab);
    auto post = std::make_shared<TwitterStatus>();
    post->setStatusID(u"9"_s);
    post->setText(u"new @carol"_s);
    post->setDate(KRNow());
    stream->setStatuses(TwitterStatusList { post } + stream->posts);
    EXPECT_EQ(table.cellForRow(1)->accessibleName(), u"Unknown author: new @carol, 0 seconds ago"_s);
    QTest::keyClick(table.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(taken(), u"search #tag|beep"_s);
    list.viewWillDisappear(false);
}

} // namespace
