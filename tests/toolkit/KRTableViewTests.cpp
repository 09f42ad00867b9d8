#include "support/KRTest.h"
#include "toolkit/KRLiveResize.h"
#include "toolkit/KRScroller.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewCell.h"
#include "toolkit/KRTableViewDelegate.h"
#include "toolkit/KRTableViewDocumentView.h"

#include <QAccessible>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <gmock/gmock.h>
#include <limits>
#include <map>

namespace {

using testing::ElementsAre;

class RowCell final : public KRTableViewCell {
public:
    using KRTableViewCell::KRTableViewCell;
    void selectedStateDidChange() override { ++selectionChanges; }
    bool activate() override
    {
        ++activations;
        return isActive;
    }
    std::optional<FocusedPart> focusedPart() const override { return part; }
    bool focusPart(const FocusedPart& wanted) override
    {
        if (wanted.content != accessibleName())
            return false;
        part = wanted;
        setFocus();
        return true;
    }

    int selectionChanges = 0;
    int activations = 0;
    bool isActive = false;
    std::optional<FocusedPart> part;
};

class Rows final : public KRTableViewDelegate {
public:
    explicit Rows(std::vector<int> rowHeights)
        : heights(std::move(rowHeights))
    {
    }

    int numberOfRowsInTableView(KRTableView& /*tableView*/) override
    {
        ++reloads;
        return int(heights.size());
    }
    int tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row) override
    {
        ++heightQuestions;
        if (duringHeightForRow)
            duringHeightForRow(row);
        return size_t(row) < heights.size() ? heights[size_t(row)] : 0;
    }
    QString tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row) override
    {
        return names.contains(row) ? names[row] : u"row %1"_s.arg(row);
    }
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override
    {
        if (duringCellForRow)
            duringCellForRow();
        const QString identifier = identifiers.contains(row) ? identifiers[row] : u"row"_s;
        KRTableViewCell* cell = tableView.dequeueReusableCellWithIdentifier(identifier);
        if (!cell) {
            cell = new RowCell(identifier);
            made.push_back(cell);
        }
        cell->setAccessibleName(tableViewAccessibleNameForRow(tableView, row));
        return cell;
    }
    void tableViewWillReload(KRTableView& tableView) override
    {
        if (duringReload)
            heights.insert(heights.begin(), 40);
        rowsBefore = tableView.numberOfRows();
    }
    void tableViewDidReload(KRTableView& tableView) override
    {
        if (duringReload)
            duringReload(tableView);
    }
    void tableViewDidSelectRow(KRTableView& /*tableView*/, qint64 row) override
    {
        selections.push_back(row);
        if (duringSelection)
            duringSelection();
    }

    std::vector<int> heights;
    std::map<qint64, QString> identifiers;
    std::map<qint64, QString> names;
    std::vector<QPointer<KRTableViewCell>> made;
    std::vector<qint64> selections;
    std::function<void()> duringCellForRow;
    std::function<void(qint64)> duringHeightForRow;
    std::function<void()> duringSelection;
    // With it a row is added at the top as the reload begins.
    std::function<void(KRTableView&)> duringReload;
    int rowsBefore = 0;
    int reloads = 0;
    int heightQuestions = 0;
};

std::vector<int> equalRows(int count, int height)
{
    return std::vector<int>(size_t(count), height);
}

/// A table between two fields.
struct TableInWindow {
    explicit TableInWindow(int count)
        : rows(equalRows(count, 40))
    {
        inner->setDelegate(&rows);
        inner->setFrame({ 0, 30, 215, 120 });
        inner->reloadData();
        window.show();
    }
    QWidget* focus() const { return window.focusWidget(); }

    Rows rows;
    QWidget window;
    QLineEdit* before = new QLineEdit(&window);
    KRTableView* inner = new KRTableView(&window);
    QLineEdit* after = new QLineEdit(&window);
};

class KRTableViewTest : public testing::Test {
protected:
    void show(std::vector<int> heights, int height = 100)
    {
        rows = std::make_unique<Rows>(std::move(heights));
        table.setDelegate(rows.get());
        table.setFrame({ 0, 0, 215, height });
        table.reloadData();
        table.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&table));
    }

    std::vector<KRTableViewCell*> visibleCells() const
    {
        std::vector<KRTableViewCell*> cells;
        for (KRTableViewCell* cell : table.documentView()->findChildren<KRTableViewCell*>()) {
            if (cell->isVisible())
                cells.push_back(cell);
        }
        return cells;
    }

    QWidget* firstResponder() const { return table.window()->focusWidget(); }
    int scrollPosition() const { return table.documentVisibleRect().y(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(firstResponder() ? firstResponder() : &table, key, modifiers);
    }

    std::unique_ptr<Rows> rows;
    KRTableView table;
};

TEST_F(KRTableViewTest, AnEmptyTableIgnoresEverything)
{
    show({});
    EXPECT_EQ(table.documentView()->documentFrame().height(), 0);
    EXPECT_EQ(table.visibleRange(), (KRRange { 0, 0 }));
    table.scrollToRow(3);
    table.scrollToRow(3, 10);
    table.selectRow(0);
    using enum Qt::Key;
    for (const Qt::Key key : { Key_Up, Key_Down, Key_Space, Key_Home, Key_End, Key_PageUp, Key_PageDown })
        press(key);
    EXPECT_EQ(table.selectedRow(), -1);
    EXPECT_TRUE(rows->selections.empty());
}

TEST_F(KRTableViewTest, OnlyRowsThatShareAnAreaAreInRange)
{
    show({ 10, 0, 20, 30, 0 }, 200);
    EXPECT_EQ(table.documentView()->documentFrame(), QRect(0, 0, 200, 60));
    EXPECT_EQ(table.rectForRow(3), QRect(0, 30, 200, 30));
    EXPECT_EQ(table.cellForRow(3)->geometry(), table.rectForRow(3));
    const std::pair<QRect, KRRange> cases[] = {
        { { 0, 0, 200, 10 }, { 0, 1 } },
        { { 0, 10, 200, 20 }, { 2, 1 } },
        { { 0, 9, 200, 2 }, { 0, 3 } },
        { { 0, 29, 1, 2 }, { 2, 2 } },
        { { 200, 0, 10, 10 }, { 0, 0 } },
        { { 0, 60, 200, 10 }, { 0, 0 } },
        { { 0, 0, 200, 0 }, { 0, 0 } },
    };
    for (const auto& [rect, range] : cases)
        EXPECT_EQ(table.rangeForRect(rect), range) << rect.y() << ' ' << rect.height();
}

TEST_F(KRTableViewTest, CellsOfRowsThatScrollAwayAreUsedAgainLastFirst)
{
    show(equalRows(10000, 25));
    ASSERT_EQ(visibleCells().size(), 4U);
    KRTableViewCell* const first = table.cellForRow(0);
    KRTableViewCell* const second = table.cellForRow(1);
    table.scrollToPoint({ 0, 50 }, KRScrollView::Animated::No);
    EXPECT_EQ(table.currentRange(), (KRRange { 2, 4 }));
    EXPECT_EQ(table.cellForRow(0), nullptr);
    EXPECT_EQ(table.cellForRow(4), second);
    EXPECT_EQ(table.cellForRow(5), first);
    EXPECT_EQ(table.cellForRow(2)->geometry(), QRect(0, 0, 200, 25));
    EXPECT_EQ(first->row(), 5);

    for (int y = 0; y <= table.totalHeight(); y += 77)
        table.scrollToPoint({ 0, y }, KRScrollView::Animated::No);
    EXPECT_EQ(table.currentRange(), (KRRange { 9996, 4 }));
    EXPECT_EQ(visibleCells().size(), 4U);
    EXPECT_LE(rows->made.size(), 6U);
    EXPECT_EQ(rows->heightQuestions, 10000) << "scrolling asks for no heights";

    rows->identifiers = { { 4, u"other"_s } };
    table.scrollToPoint({ 0, 100 }, KRScrollView::Animated::No);
    EXPECT_EQ(table.cellForRow(4)->reusableIdentifier(), u"other"_s);
    EXPECT_EQ(table.dequeueReusableCellWithIdentifier(u"other"_s), nullptr);
    EXPECT_FALSE(table.reusableCellsArrayForIdentifier(u"row"_s).empty());
}

TEST_F(KRTableViewTest, OddHeightsBreakNothing)
{
    show(equalRows(100000, 1000), 3000);
    table.scrollToRow(99999);
    EXPECT_EQ(table.visibleRange(), (KRRange { 99997, 3 }));
    EXPECT_EQ(table.cellForRow(99999)->geometry(), QRect(0, 2000, 200, 1000));

    const int huge = std::numeric_limits<int>::max();
    show({ 0, -5, huge, huge, 0, 40 });
    EXPECT_EQ(table.totalHeight(), huge);
    EXPECT_EQ(table.visibleRange(), (KRRange { 2, 1 }));
    table.scrollToRow(5);
    table.selectRow(5);
    press(Qt::Key_Down);
    EXPECT_EQ(table.selectedRow(), 3) << "row 5 has no room left; the first visible one is 2";
}

TEST_F(KRTableViewTest, ScrollsAndRemembersOffsets)
{
    show(equalRows(20, 40));
    table.scrollToRow(5);
    EXPECT_EQ(scrollPosition(), 140) << "the least amount that shows the row";
    EXPECT_FALSE(table.isScrolledToTop());
    table.scrollToRow(4);
    EXPECT_EQ(scrollPosition(), 140);
    table.scrollToRow(1);
    EXPECT_EQ(scrollPosition(), 40);
    table.scrollToRow(500);
    EXPECT_EQ(scrollPosition(), 700);
    table.scrollToRow(-7);
    EXPECT_EQ(scrollPosition(), 0);

    table.scrollToPoint({ 0, 130 }, KRScrollView::Animated::No);
    EXPECT_EQ(table.relativeVisibleOffsetForRow(3), -10);
    const int offset = table.relativeVisibleOffsetForRow(4);
    rows->heights.insert(rows->heights.begin(), { 33, 44 });
    table.reloadData();
    table.scrollToRow(6, offset);
    EXPECT_EQ(scrollPosition(), 207);
    EXPECT_EQ(table.relativeVisibleOffsetForRow(6), offset);

    for (const auto& [y, isAtTop] : std::map<int, bool> { { 0, true }, { 2, true }, { 3, false } }) {
        table.scrollToPoint({ 0, y }, KRScrollView::Animated::No);
        EXPECT_EQ(table.isScrolledToTop(), isAtTop) << y;
    }
    table.hide();
    table.scrollToPoint({ 0, 50 }, KRScrollView::Animated::No);
    EXPECT_EQ(table.cellForRow(2)->y(), 27) << "also while nobody sees it";
}

TEST_F(KRTableViewTest, SelectionClampsAndAlwaysTellsTheDelegate)
{
    show(equalRows(20, 40));
    table.selectRow(1);
    auto* const cell = static_cast<RowCell*>(table.cellForRow(1));
    EXPECT_TRUE(cell->selected());
    EXPECT_EQ(cell->selectionChanges, 1);
    EXPECT_EQ(firstResponder(), cell);
    table.selectRow(1);
    EXPECT_EQ(cell->selectionChanges, 3) << "as the old cell and as the new one";
    table.selectRow(-1);
    table.selectRow(-2);
    EXPECT_FALSE(cell->selected());
    table.selectRow(1000);
    EXPECT_THAT(rows->selections, ElementsAre(1, 1, 0, 19));
    EXPECT_EQ(table.selectedCell(), nullptr);
    EXPECT_EQ(scrollPosition(), 0) << "selecting does not scroll";
    QTest::mouseClick(table.cellForRow(2), Qt::LeftButton);
    QTest::mouseClick(table.cellForRow(0), Qt::RightButton);
    EXPECT_EQ(table.selectedRow(), 2);
}

TEST_F(KRTableViewTest, KeysMoveTheSelection)
{
    struct {
        const char* what;
        int viewHeight;
        QString steps; // a key and the row that is selected then
    } const cases[] = {
        { "arrows, from nothing and against the top", 120, u"Down 1, Down 2, Up 1, Up 0, Up 0"_s },
        { "a page down shows rows 2 to 4", 120, u"Space 4, Space 6, Shift+Space 2"_s },
        { "two rows: back from the first asks for -1, which is no row", 80, u"Down 1, Shift+Space 1"_s },
        { "four rows: back from the first asks for -2", 160, u"Down 1, Shift+Space 0"_s },
        { "past the last row", 160, u"Space 6, Space 9, Space 9, Down 9"_s },
        { "to the ends and by pages", 120, u"End 9, PgUp 5, Home 0, PgDown 4, End 9, End 9"_s },
        { "keys without a meaning", 120, u"A -1, Return -1"_s },
    };
    for (const auto& test : cases) {
        KRTableView fresh;
        Rows tenRows(equalRows(10, 40));
        fresh.setDelegate(&tenRows);
        fresh.setFrame({ 0, 0, 215, test.viewHeight });
        fresh.reloadData();
        fresh.show();
        fresh.setFocus();
        for (const QString& step : test.steps.split(u", "_s)) {
            const QKeyCombination key = QKeySequence(step.section(u' ', 0, 0))[0];
            const int selected = step.section(u' ', 1).toInt();
            QTest::keyClick(fresh.focusWidget(), key.key(), key.keyboardModifiers());
            EXPECT_EQ(fresh.selectedRow(), selected) << test.what;
            EXPECT_TRUE(selected < 0 || fresh.visibleRange().contains(selected)) << test.what;
        }
    }
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(&table, &event);
    EXPECT_TRUE(event.isAccepted()) << "a key without a meaning goes nowhere else";
}

TEST_F(KRTableViewTest, TheTableTakesTheFocusOfARowThatLeaves)
{
    TableInWindow shown(50);
    auto& [tenRows, window, before, inner, after] = shown;
    inner->selectRow(1);
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(1));
    inner->scrollToRow(30);
    EXPECT_EQ(window.focusWidget(), inner);
    inner->scrollToRow(0);
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(1)) << "the selected row came back";
    inner->reloadData();
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(1));
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    before->setFocus();
    inner->setFocus();
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(1)) << "a table that is shown again goes on there";
    before->setFocus();
    inner->scrollToRow(30);
    EXPECT_EQ(window.focusWidget(), before);
    // Nor does anything but the user's wish bring it back.
    inner->scrollToRow(0);
    tenRows.duringReload = [](KRTableView& view) { view.selectRow(2); };
    inner->reloadData();
    EXPECT_EQ(inner->selectedRow(), 2);
    EXPECT_EQ(window.focusWidget(), before);
    inner->setFocus();
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(2));
    inner->reloadData();
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(2));
}

TEST_F(KRTableViewTest, AReloadKeepsThePartOfARowThatHasTheFocus)
{
    show(equalRows(10, 40));
    table.selectRow(1);
    auto* const cell = static_cast<RowCell*>(table.selectedCell());
    cell->part = KRTableViewCell::FocusedPart { cell->accessibleName(), 3 };
    rows->heights.erase(rows->heights.begin());
    table.reloadData();
    EXPECT_EQ(firstResponder(), table.cellForRow(1));
    for (const int row : { 0, 2 }) {
        rows->names[row] = u"row 1"_s;
        rows->names[1] = u"other"_s;
        table.reloadData();
        auto* const moved = static_cast<RowCell*>(table.cellForRow(row));
        EXPECT_EQ(firstResponder(), moved) << "the row is elsewhere now";
        EXPECT_EQ(moved->part ? moved->part->number : -1, 3);
        EXPECT_EQ(table.selectedRow(), 1) << "the selection has its number";
        rows->names.clear();
        table.reloadData();
        static_cast<RowCell*>(table.cellForRow(1))->part = KRTableViewCell::FocusedPart { u"row 1"_s, 3 };
    }
}

TEST_F(KRTableViewTest, ReturnSpaceAndAScreenReaderActivateTheSelectedRow)
{
    show(equalRows(10, 40));
    table.setFocus();
    table.selectRow(1);
    auto* const cell = static_cast<RowCell*>(table.selectedCell());
    press(Qt::Key_Return);
    press(Qt::Key_Enter);
    EXPECT_EQ(cell->activations, 2);
    cell->isActive = true;
    press(Qt::Key_Space);
    EXPECT_EQ(cell->activations, 3);
    EXPECT_EQ(table.selectedRow(), 1) << "Space was used";
    QAccessible::queryAccessibleInterface(&table)->child(1)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_EQ(cell->activations, 4);
    press(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(cell->activations, 4);
    cell->isActive = false;
    press(Qt::Key_Space);
    EXPECT_GT(table.selectedRow(), 1) << "the page turns";
}

TEST_F(KRTableViewTest, AReloadWaitsForTheScroller)
{
    show(equalRows(50, 40));
    const int reloads = rows->reloads;
    KRScroller* const scroller = table.verticalScroller();
    QTest::mousePress(scroller, Qt::LeftButton, {}, QPoint(7, 10));
    EXPECT_TRUE(scroller->isScrolling());
    rows->heights.push_back(40);
    int offset = 0;
    rows->duringReload = [&](KRTableView& view) {
        EXPECT_EQ(view.numberOfRows(), rows->rowsBefore + 2);
        view.scrollToRow(5, offset);
    };
    table.reloadData();
    table.reloadData();
    QTest::mouseMove(scroller, QPoint(7, 40));
    offset = table.relativeVisibleOffsetForRow(3);
    EXPECT_EQ(rows->reloads, reloads);
    EXPECT_EQ(table.numberOfRows(), 50);
    QTest::mouseRelease(scroller, Qt::LeftButton, {}, QPoint(7, 40));
    EXPECT_FALSE(scroller->isScrolling());
    EXPECT_EQ(rows->reloads, reloads + 1);
    EXPECT_EQ(table.numberOfRows(), 52);
    EXPECT_EQ(table.relativeVisibleOffsetForRow(5), offset) << "what was put back in the reload stays";
    rows->duringReload = {};
    QTest::mouseClick(scroller, Qt::LeftButton, {}, QPoint(7, 90));
    EXPECT_EQ(rows->reloads, reloads + 1) << "the callback was for one time only";

    KRTestLog log;
    QTest::mousePress(scroller, Qt::LeftButton, {}, QPoint(7, 10));
    table.doneScrollingShouldReload({});
    EXPECT_THAT(log.lines(),
        ElementsAre(QStringLiteral(
            "ERROR: done scrolling, but scroll view says it's still scrolling, this should never happen")));
    EXPECT_EQ(rows->reloads, reloads + 1);
    const QPoint place(7, 40);
    QMouseEvent move(QEvent::MouseMove, place, scroller->mapToGlobal(place), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(scroller, &move);
    EXPECT_FALSE(scroller->isScrolling()) << "the mouse was released while the user was ignored";
    QTest::mousePress(scroller, Qt::LeftButton, {}, QPoint(7, 10));
    scroller->hide();
    EXPECT_FALSE(scroller->isScrolling()) << "nothing will release the mouse any more";
}

TEST_F(KRTableViewTest, ADragOfTheWindowKeepsWidthAndHeightsUntilItEnds)
{
    KRManualClock clock;
    show(equalRows(50, 40));
    table.scrollToRow(10, -5);
    const int questions = rows->heightQuestions;
    table.viewWillStartLiveResize();
    table.setFrame({ 0, 0, 315, 200 });
    EXPECT_EQ(table.width(), 200);
    EXPECT_EQ(rows->heightQuestions, questions);
    EXPECT_EQ(table.currentRange(), (KRRange { 10, 6 })) << "a taller view shows more rows at once";
    rows->heights = equalRows(50, 20);
    table.viewDidEndLiveResize();
    EXPECT_EQ(table.width(), 300);
    EXPECT_EQ(rows->heightQuestions, questions + 50);
    EXPECT_EQ(table.relativeVisibleOffsetForRow(10), -5) << "the row at the top stays";

    table.setFrame({ 0, 0, 115, 200 });
    table.setFrame({ 0, 0, 116, 200 });
    EXPECT_EQ(table.width(), 101);
    EXPECT_EQ(rows->heightQuestions, questions + 50) << "a new size asks for no heights";
    clock.advance(0ms);
    EXPECT_EQ(table.cellForRow(10)->width(), 101);
    EXPECT_EQ(rows->heightQuestions, questions + 100) << "but nobody ends what is no drag";
    table.setFrame({ 0, 0, 116, 300 });
    clock.advance(0ms);
    EXPECT_EQ(rows->heightQuestions, questions + 100);
    for (const int width : { 0, 5, 15, 16, 100000 })
        table.setFrame({ 0, 0, width, 200 });
    EXPECT_EQ(table.width(), 99985);
}

TEST_F(KRTableViewTest, SizesFromTheWindowSystemAreADrag)
{
    KRManualClock clock;
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const inner = new KRTableView;
    layout->addWidget(inner);
    new KRLiveResize(window);
    window.resize(215, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(inner->width(), 200);

    // The window system's path: the native window is given a size the widget did not ask for.
    window.windowHandle()->resize(315, 100);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.width() == 315; }, 20000));
    EXPECT_TRUE(inner->inLiveResize());
    EXPECT_EQ(inner->width(), 200);
    clock.advance(KRLiveResize::EndDelay);
    EXPECT_FALSE(inner->inLiveResize());
    EXPECT_EQ(inner->width(), 300);

    window.resize(415, 100);
    EXPECT_FALSE(inner->inLiveResize());
    EXPECT_EQ(inner->width(), 400);
}

// Every row is there, whether it has a cell or not, and what a row says of itself is the same either way.
TEST_F(KRTableViewTest, AssistiveTechnologySeesAListOfAllRows)
{
    show(equalRows(1000, 20));
    QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&table);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 1000);
    EXPECT_EQ(list->child(1000), nullptr);
    for (const int row : { 0, 1, 4, 5, 500, 999 }) {
        SCOPED_TRACE(row);
        QAccessibleInterface* const item = list->child(row);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->object() != nullptr, row < 5);
        EXPECT_EQ(item->role(), QAccessible::ListItem);
        EXPECT_EQ(item->parent(), list);
        EXPECT_EQ(list->indexOfChild(item), row);
        EXPECT_EQ(item->text(QAccessible::Name), u"row %1"_s.arg(row));
        EXPECT_EQ(bool(item->state().offscreen), row >= 5);
        EXPECT_TRUE(item->state().selectable);
        EXPECT_FALSE(item->state().selected);
        EXPECT_EQ(item->rect(), table.rectForRow(row).translated(table.viewport()->mapToGlobal(QPoint())));
    }
    const QPoint third = list->child(3)->rect().center();
    EXPECT_EQ(list->childAt(third.x(), third.y()), list->child(3));

    QAccessibleInterface* const far = list->child(500);
    far->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(table.selectedRow(), 500);
    EXPECT_TRUE(far->state().selected);
    EXPECT_FALSE(far->state().offscreen);
    EXPECT_EQ(list->child(500)->object(), table.selectedCell()) << "now it has a cell";
    EXPECT_EQ(list->focusChild(), list->child(500));
    list->child(501)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(table.selectedRow(), 501);
    rows->heights.resize(3);
    table.reloadData();
    EXPECT_FALSE(far->isValid());
    EXPECT_EQ(list->childCount(), 3);
    EXPECT_EQ(table.selectedCell(), nullptr) << "what is selected is past the end";
    press(Qt::Key_Down);
    EXPECT_EQ(table.selectedRow(), 1);
}

TEST_F(KRTableViewTest, TabStopsAtTheSelectedRowOnly)
{
    TableInWindow shown(10);
    auto& [tenRows, window, before, inner, after] = shown;
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    before->setFocus();
    const QImage plain = inner->grab().toImage();
    const auto tab = [&](Qt::Key key) { QTest::keyClick(window.focusWidget(), key); };
    tab(Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), inner);
    const QImage ringed = inner->grab().toImage();
    const QRect edge = ringed.rect().adjusted(0, 0, -1, -1);
    for (const QPoint corner : { edge.topLeft(), edge.topRight(), edge.bottomLeft(), edge.bottomRight() })
        EXPECT_NE(ringed.pixel(corner), plain.pixel(corner)) << "the ring is whole";
    for (const auto& [reason, isRinged] : std::map<Qt::FocusReason, bool> { { Qt::ShortcutFocusReason, true },
             { Qt::BacktabFocusReason, true },
             { Qt::OtherFocusReason, false },
             { Qt::ActiveWindowFocusReason, false } }) {
        before->setFocus();
        inner->setFocus(reason);
        EXPECT_EQ(inner->grab().toImage() == ringed, isRinged) << reason;
    }
    tab(Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), after);
    inner->selectRow(2);
    tab(Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), after) << "from the row on";
    tab(Qt::Key_Backtab);
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(2));
    tab(Qt::Key_Backtab);
    EXPECT_EQ(window.focusWidget(), before);
    tab(Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), inner->cellForRow(2));
}

TEST_F(KRTableViewTest, ACellMayGoAtAnyTime)
{
    show(equalRows(50, 40));
    KRTestLog log;
    rows->duringSelection = [this] { delete table.cellForRow(1); };
    QTest::mousePress(table.cellForRow(1), Qt::LeftButton);
    EXPECT_EQ(table.selectedRow(), 1);
    table.scrollToRow(40);
    EXPECT_EQ(log.lines(), QStringList(u"THIS IS BAD"_s));
    table.scrollToRow(0);
    EXPECT_NE(table.cellForRow(1), nullptr);

    rows->duringSelection = nullptr;
    delete rows->made.back();
    table.scrollToRow(40);
    EXPECT_EQ(visibleCells().size(), size_t(table.visibleRange().length));
}

TEST_F(KRTableViewTest, ADelegateMayReloadAndScrollWhileItIsAsked)
{
    KRManualClock clock;
    show(equalRows(50, 40));
    rows->duringCellForRow = [this] {
        table.scrollToRow(30);
        rows->heights = equalRows(45, 40);
        table.reloadData();
    };
    table.scrollToRow(20);
    rows->duringCellForRow = nullptr;
    EXPECT_EQ(table.currentRange(), table.visibleRange());
    clock.advance(0ms);
    EXPECT_EQ(table.numberOfRows(), 45);
    rows->duringHeightForRow = [this](qint64 row) {
        if (row != 10)
            return;
        rows->heights = equalRows(20, 30);
        table.reloadData();
        table.selectRow(40);
        table.scrollToRow(40);
    };
    table.reloadData();
    rows->duringHeightForRow = nullptr;
    clock.advance(0ms);
    EXPECT_EQ(table.numberOfRows(), 20);
    for (KRTableViewCell* cell : visibleCells())
        EXPECT_EQ(cell->y(), table.rectForRow(cell->row()).y() - scrollPosition());
    EXPECT_EQ(visibleCells().size(), size_t(table.visibleRange().length));
}

} // namespace
