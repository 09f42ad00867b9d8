#include "app/lists/PelinorListFakes.h"
#include "support/KRManualClock.h"
#include "toolkit/KRScroller.h"
#include "toolkit/KRTableViewDocumentView.h"
#include "toolkit/navigation/KRNavigationController.h"

#include <QStyleOptionSlider>
#include <QTest>

#include <gtest/gtest.h>
#include <random>

// What is being read is the first post in view, and its place is how far its top is below the top of the list.
//
// The property: as long as the user scrolls nothing, the place of what is being read stays the same to the
// point, whatever happens: posts that come above, below or into a gap, are filtered out or cut off at 500; an
// error; another font; a new size of the window, set or dragged; a visit to another screen, another start of
// the program, and any number of these in a row. While the user holds the scroller the rows wait, and what is
// being read when the knob is let go stays.
//
// Its limits:
// - The list ends where it ends. A place that would be beyond either end is as near to it as can be.
// - When the very post is gone, the list stays where it is, within its new ends; a new list is at its top.
// - A post that has become so low in a new layout that it would be out of view keeps its bottom where it was.
//   What is restored from the user defaults is restored to the letter instead.
// - At the top of the list whoever wants to follow the newest posts (AutoScrollBehavior 1) is brought to them
//   with every change of the posts, the first of a new list included.
//
// PELINOR_HISTORY=n runs the one history of that number.

using namespace Qt::StringLiterals;

namespace {

constexpr int Histories = 200;
constexpr int StepsOfAHistory = 12;
constexpr int FullStream = 500;

/// What lies between two starts of the program: the file of the user defaults, and what the site has.
struct World {
    QTemporaryDir directory;
    QString defaultsFile = directory.filePath(u"defaults.ini"_s);
    TwitterStatusList posts;
    bool isAtEnd = false;
    int fontSize = 0;
    bool followsNewest = false;
    QSize windowSize { 480, 420 };
};

/// The program: a window with a stack of screens, the timeline at its bottom.
class Program : public FakeSurroundings {
public:
    explicit Program(const World& world)
        : FakeSurroundings(world.defaultsFile)
    {
        preferences.statusCellFontSize = world.fontSize;
        defaults.setInteger("AutoScrollBehavior", world.followsNewest ? 1 : 0);
        window.resize(world.windowSize);
        window.show();
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program()
    {
        list->viewWillDisappear(false);
        switcher.setTargetView(nullptr);
    }

    void open()
    {
        switcher.setTargetView(&window);
        switcher.setTargetFrame(window.rect());
        switcher.switchToViewController(navigation, KRTransitionNone);
    }
    KRTableView& table() { return list->tableView(); }

    std::shared_ptr<FakeStream> stream = std::make_shared<FakeStream>(center);
    QWidget window;
    KRViewControllerSwitcher switcher;
    std::shared_ptr<FakeTimeline> list = std::make_shared<FakeTimeline>(*this, stream);
    std::shared_ptr<KRNavigationController> navigation = std::make_shared<KRNavigationController>(list);
};

/// A random history of one list, which checks the property after every step.
class History {
public:
    explicit History(unsigned seed)
        : m_random(seed)
    {
        m_world.followsNewest = _oneIn(4);
        m_world.windowSize = _anySize();
        const int count = _oneIn(20) ? FullStream - 3 : _oneIn(20) ? 0 : _between(1, 60);
        m_world.posts = _newPosts(count);
        m_program = _start();
        m_program->stream->posts = m_world.posts;
        m_program->open();
    }

    void run()
    {
        for (int step = 0; step < StepsOfAHistory && !testing::Test::HasFailure(); ++step) {
            m_log.clear();
            _step();
            _checkCells();
            if (testing::Test::HasFailure())
                ADD_FAILURE() << "in step " << step << ": " << m_log.join(u", "_s).toStdString();
        }
    }

private:
    struct Place {
        QString statusID;
        int offset = 0;
        int height = 0;
        int position = 0;
        bool isAtTop = false;
    };
    enum class Change { Posts, Layout, NewList };

    // Chance

    int _between(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }
    bool _oneIn(int count) { return _between(1, count) == 1; }
    QSize _anySize()
    {
        static constexpr int widths[] = { 400, 480, 640, 900 };
        return { widths[_between(0, 3)], _between(360, 600) };
    }
    int _anyFontSize()
    {
        static constexpr int sizes[] = { 0, 1, 2, 10, 11 };
        return sizes[_between(0, 4)];
    }

    // Numbered downwards, as the newest has the highest number.
    TwitterStatusPtr _post(int number) const
    {
        static const TwitterUserPtr authors[]
            = { makeUser(u"author"_s), makeUser(u"other"_s), makeUser(u"me"_s) };
        // A few texts of all lengths, as every one has to be measured.
        const int repeats = number % 12 == 5 ? 110 : number * 7 % 12 * 2;
        return makeStatus(number,
            u"post"_s + u" of many words"_s.repeated(repeats),
            authors[number * 5 % 7 % 3],
            20000 - number);
    }
    TwitterStatusList _newPosts(int count)
    {
        TwitterStatusList result;
        for (int i = 0; i < count; ++i)
            result.prepend(_post(m_newest++));
        return result;
    }

    // What may happen

    std::unique_ptr<Program> _start() { return std::make_unique<Program>(m_world); }
    KRTableView& _table() { return m_program->table(); }
    FakeTimeline& _list() { return *m_program->list; }
    void _loop() { m_clock.advance(std::chrono::milliseconds(0)); }

    void _postsCome()
    {
        m_log.append(u"posts come"_s);
        m_world.posts = _newPosts(_oneIn(20) ? _between(100, FullStream) : _between(1, 20)) + m_world.posts;
        m_world.posts.resize(std::min<qsizetype>(m_world.posts.size(), FullStream));
    }
    void _postsChange()
    {
        TwitterStatusList& posts = m_world.posts;
        switch (_between(0, 4)) {
        case 0:
            m_log.append(u"older posts"_s);
            for (int count = _between(1, 20); count > 0 && posts.size() < FullStream; --count)
                posts.append(_post(m_oldest--));
            m_world.isAtEnd = _oneIn(3);
            break;
        case 1: {
            m_log.append(u"a filter"_s);
            const int share = _between(2, 8);
            posts.removeIf([&](const TwitterStatusPtr&) { return _oneIn(share); });
            break;
        }
        case 2:
            m_log.append(u"a gap"_s);
            if (posts.size() > 1)
                posts.insert(_between(1, int(posts.size()) - 1),
                    std::make_shared<TwitterDummyMissingStatus>(u"1"_s, false));
            break;
        case 3: {
            m_log.append(u"gaps are filled"_s);
            TwitterStatusList filled;
            for (const TwitterStatusPtr& post : posts) {
                if (post->isNotADummyStatus())
                    filled.append(post);
                else
                    filled += _newPosts(_between(0, 6));
            }
            posts = filled;
            break;
        }
        default:
            _postsCome();
            break;
        }
    }
    void _tellStream()
    {
        m_program->stream->isAtEnd = m_world.isAtEnd;
        m_program->stream->setStatuses(m_world.posts);
        // Many new posts are measured in several turns.
        _loop();
    }
    void _changePosts()
    {
        _checked(Change::Posts, [this] {
            _postsChange();
            _tellStream();
        });
    }
    // The heights follow with the next pass of the loop.
    void _resize()
    {
        m_log.append(u"a new size"_s);
        m_world.windowSize = _anySize();
        _checked(Change::Layout, [this] { m_program->window.resize(m_world.windowSize); });
    }
    void _changeFont()
    {
        m_log.append(u"another font"_s);
        m_program->preferences.statusCellFontSize = m_world.fontSize = _anyFontSize();
        m_program->center.post(PelinorDisplayPreferencesDidChangeNotification {});
    }
    void _fail()
    {
        m_log.append(u"an error"_s);
        m_program->center.post(
            TwitterStreamErrorNotification { m_program->stream.get(), { {}, 503, u"busy"_s } });
        _loop();
    }

    // Steps

    void _step()
    {
        switch (_between(0, 11)) {
        case 0:
        case 1:
            _scroll();
            break;
        case 2:
            _checked(Change::Layout, [this] { _changeFont(); });
            break;
        case 3:
            _resize();
            _checked(Change::Layout, [this] { _loop(); });
            break;
        case 4:
            _dragTheWindow();
            break;
        case 5:
            _dragTheKnob();
            break;
        case 6:
            _visitAnotherScreen();
            break;
        case 7:
            _startAgain();
            break;
        case 8:
            _resize();
            _changePosts();
            _checked(Change::Layout, [this] { _loop(); });
            break;
        case 9:
            _checked(Change::Layout, [this] { _fail(); });
            break;
        default:
            _changePosts();
            break;
        }
    }

    void _scroll()
    {
        static constexpr int fractions = 20;
        const int end = _table().verticalScroller()->maximum();
        const int y
            = _oneIn(6) ? _between(0, 20) : end * _between(0, fractions) / fractions + _between(-30, 30);
        m_log.append(u"scrolled to %1"_s.arg(y));
        _table().scrollToPoint({ 0, y }, KRScrollView::Animated::No);
        if (_oneIn(3))
            _checked(Change::Layout, [this] { _table().selectRow(_table().visibleRange().location); });
    }

    void _dragTheWindow()
    {
        m_log.append(u"the window's edge is held"_s);
        _table().viewWillStartLiveResize();
        for (int i = _between(1, 4); i > 0; --i) {
            _resize();
            _checked(Change::Layout, [this] { _loop(); });
            if (_oneIn(2))
                _changePosts();
        }
        m_log.append(u"and let go"_s);
        _checked(Change::Layout, [this] { _table().viewDidEndLiveResize(); });
    }

    QPoint _knobCenter()
    {
        const KRScroller& scroller = *_table().verticalScroller();
        QStyleOptionSlider option;
        option.initFrom(&scroller);
        option.orientation = Qt::Vertical;
        option.minimum = scroller.minimum();
        option.maximum = scroller.maximum();
        option.pageStep = scroller.pageStep();
        option.sliderPosition = scroller.sliderPosition();
        return scroller.style()
            ->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, &scroller)
            .center();
    }

    void _dragTheKnob()
    {
        m_log.append(u"the knob is held"_s);
        KRScroller* const scroller = _table().verticalScroller();
        QPoint mouse = _knobCenter();
        QTest::mousePress(scroller, Qt::LeftButton, {}, mouse);
        ASSERT_TRUE(scroller->isScrolling());
        Change change = Change::Layout;
        bool isLaidOut = false;
        for (int i = _between(1, 4); i > 0; --i) {
            const int what = _between(0, 5);
            isLaidOut = isLaidOut || what < 3;
            switch (what) {
            case 0:
                _changeFont();
                break;
            case 1:
                _resize();
                break;
            case 2:
                _fail();
                break;
            case 3:
                change = Change::Posts;
                _postsChange();
                _tellStream();
                break;
            default:
                mouse.ry() += _between(-40, 40);
                QTest::mouseMove(scroller, mouse);
                // No post is there twice while the knob is held.
                if (!isLaidOut)
                    _checkCells();
                break;
            }
        }
        m_log.append(u"and let go"_s);
        const Place before = _place();
        QTest::mouseRelease(scroller, Qt::LeftButton, {}, mouse);
        // Where a list stays that has both lost the post and got other heights, nobody can say.
        if (_has(before.statusID) || !isLaidOut)
            _check(before, change, change == Change::Posts);
        _checked(Change::Layout, [this] { _loop(); });
    }

    void _visitAnotherScreen()
    {
        m_log.append(u"another screen"_s);
        auto screen = std::make_shared<KRViewController>();
        screen->setView(std::make_unique<QWidget>());
        const Place before = _place();
        const int formerHeight = _table().totalHeight();
        m_program->navigation->pushViewController(screen, KRAnimated::No);
        if (_oneIn(2))
            _changeFont();
        if (_oneIn(2)) {
            m_log.append(u"a new size"_s);
            m_program->window.resize(m_world.windowSize = _anySize());
        }
        const bool come = _oneIn(2);
        if (come) {
            _postsCome();
            _tellStream();
        }
        m_log.append(u"and back"_s);
        m_program->navigation->popViewControllerAnimated(KRAnimated::No);
        _loop();
        // The list takes over the new size, then the new heights and then the posts.
        const bool wasMoved = before.position > formerHeight - _table().documentView()->height();
        if (_has(before.statusID) && !wasMoved)
            _check(before, Change::Layout, come);
    }

    void _startAgain()
    {
        m_log.append(u"another start"_s);
        const Place before = _place();
        m_program.reset();
        if (_oneIn(3))
            m_world.windowSize = _anySize();
        if (_oneIn(3))
            m_world.fontSize = _anyFontSize();
        if (_oneIn(2))
            _postsCome();
        m_program = _start();
        const bool hasPosts = _oneIn(2);
        if (hasPosts)
            m_program->stream->posts = m_world.posts;
        m_program->stream->isAtEnd = m_world.isAtEnd;
        m_program->open();
        if (!hasPosts)
            _tellStream();
        _loop();
        _check(before, Change::NewList);
    }

    // The property

    bool _has(const QString& statusID)
    {
        return std::any_of(m_world.posts.begin(), m_world.posts.end(), [&](const TwitterStatusPtr& post) {
            return post->isNotADummyStatus() && post->statusID() == statusID;
        });
    }

    Place _place()
    {
        const KRRange visible = _table().visibleRange();
        Place place;
        place.position = _table().documentVisibleRect().y();
        place.isAtTop = place.position < 3;
        for (qint64 row = visible.location; row < visible.end(); ++row) {
            const TwitterStatusPtr status = _list().statusForRow(row);
            if (!status || !status->isNotADummyStatus())
                continue;
            const QRect rect = _table().rectForRow(row);
            place.statusID = status->statusID();
            place.offset = rect.y() - place.position;
            place.height = rect.height();
            break;
        }
        return place;
    }

    void _checked(Change change, const std::function<void()>& happen)
    {
        const Place before = _place();
        happen();
        _check(before, change, change == Change::Posts);
    }

    void _check(const Place& before, Change change, bool postsChanged = true)
    {
        if (before.statusID.isNull())
            return;
        const int end = std::max(0, _table().totalHeight() - _table().documentView()->height());
        const TwitterStatusList& rows = _list().statuses();
        const auto found = std::find_if(rows.begin(), rows.end(), [&](const TwitterStatusPtr& row) {
            return row->statusID() == before.statusID;
        });
        int expected = before.position;
        if (found != rows.end()) {
            const QRect rect = _table().rectForRow(found - rows.begin());
            int offset = before.offset;
            if (change == Change::Layout && offset + rect.height() <= 0)
                offset += before.height - rect.height();
            expected = rect.y() - offset;
        } else if (change == Change::NewList) {
            expected = 0;
        }
        const bool wasAtTop = change == Change::NewList || before.isAtTop;
        if (postsChanged && m_world.followsNewest && wasAtTop)
            expected = 0;
        EXPECT_EQ(_table().documentVisibleRect().y(), std::clamp(expected, 0, end))
            << "post " << before.statusID.toStdString() << " was at " << before.offset << ", the list at "
            << before.position;
    }

    // What the rows are is on the screen, each at its place.
    void _checkCells()
    {
        const KRRange visible = _table().visibleRange();
        ASSERT_GT(visible.length, 0);
        for (qint64 row = visible.location; row < visible.end(); ++row) {
            const KRTableViewCell* const cell = _table().cellForRow(row);
            ASSERT_NE(cell, nullptr) << "row " << row;
            const QRect rect = _table().rectForRow(row);
            EXPECT_EQ(cell->y(), rect.y() - _table().documentVisibleRect().y()) << "row " << row;
            EXPECT_EQ(cell->height(), rect.height()) << "row " << row;
            if (const auto* const post = qobject_cast<const PelinorStatusTableViewCell*>(cell)) {
                EXPECT_EQ(post->status(), _list().statusForRow(row)) << "row " << row;
            }
        }
    }

    std::mt19937 m_random;
    KRManualClock m_clock;
    World m_world;
    std::unique_ptr<Program> m_program;
    int m_newest = 10000;
    int m_oldest = 9999;
    QStringList m_log;
};

TEST(PelinorReadingPlace, NothingButTheUserMovesWhatIsBeingRead)
{
    bool isGiven = false;
    const unsigned given = qEnvironmentVariableIntValue("PELINOR_HISTORY", &isGiven);
    const unsigned first = isGiven ? given : 1;
    const unsigned last = isGiven ? given : Histories;
    for (unsigned seed = first; seed <= last && !HasFailure(); ++seed) {
        SCOPED_TRACE("PELINOR_HISTORY=" + std::to_string(seed));
        History(seed).run();
    }
}

} // namespace
