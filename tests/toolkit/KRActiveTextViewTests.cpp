#include "support/KRTest.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/KRActiveTextView.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>

#include <gmock/gmock.h>

namespace {

class KRActiveTextViewTest : public testing::Test {
protected:
    KRActiveTextViewTest()
    {
        auto* const layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(before);
        layout->addWidget(view);
        before->setFocusPolicy(Qt::StrongFocus);
        window.resize(600, 300);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        view->setClickHandler([this](const QString& text, KRActiveStringType type) {
            clicks.append(QString::number(type) + u' ' + text);
        });
    }

    void show(const QString& text)
    {
        const KRActiveTextRanges ranges(text);
        view->setAttributedString(AttributedStringForStatus(text, ranges, KRStatusTextSize::Normal), ranges);
        view->setFocus();
    }
    QPoint placeOf(QStringView part) const
    {
        const qsizetype at = view->text().indexOf(part);
        return view->renderer().rectArrayForRange({ at, part.size() }).first().center().toPoint();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(window.focusWidget(), key, modifiers);
    }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(view, Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(view, &move);
        QTest::mouseRelease(view, Qt::LeftButton, {}, to);
    }
    QImage picture() const { return view->grab().toImage(); }

    QWidget window;
    QWidget* before = new QWidget;
    KRActiveTextView* view = new KRActiveTextView;
    QStringList clicks;
};

TEST_F(KRActiveTextViewTest, APressAndAReleaseOnTheSameSpanIsAClick)
{
    show(u"hi @bob see http://example.org/#faq and #tag or $SYM, a@example.org"_s);
    struct {
        QStringView press;
        QStringView release;
        QString click;
    } const cases[] = {
        { u"bob", u"bob", u"3 bob"_s },
        { u"http", u"http", u"1 http://example.org/#faq"_s },
        { u"#faq", u"#faq", u"1 http://example.org/#faq"_s },
        { u"tag", u"tag", u"2 #tag"_s },
        { u"$SYM", u"$SYM", u"4 $SYM"_s },
        { u"a@", u"a@", u"5 a@example.org"_s },
        { u"bob", u"tag", {} },
        { u"bob", u"see", {} },
        { u"see", u"bob", {} },
        { u"see", u"see", {} },
    };
    for (const auto& [press, release, click] : cases) {
        clicks.clear();
        QTest::mousePress(view, Qt::LeftButton, {}, placeOf(press));
        QTest::mouseRelease(view, Qt::LeftButton, {}, placeOf(release));
        EXPECT_EQ(clicks.join(u'|'), click) << qPrintable(press.toString());
    }
    clicks.clear();
    QTest::mouseClick(view, Qt::RightButton, {}, placeOf(u"bob"));
    drag(placeOf(u"http"), placeOf(u"#faq"));
    EXPECT_TRUE(clicks.isEmpty()) << "what selects is no click";
    EXPECT_GT(view->selection().range().length, 10);
    if (QMenu* const menu = view->findChild<QMenu*>())
        menu->close();
}

TEST_F(KRActiveTextViewTest, AHandIsOverSpansOnly)
{
    show(u"hi @bob and #tag"_s);
    const QImage plain = picture();
    QTest::mouseMove(view, placeOf(u"hi"));
    EXPECT_EQ(view->cursor().shape(), Qt::IBeamCursor);
    QTest::mouseMove(view, placeOf(u"bob"));
    EXPECT_EQ(view->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_NE(picture(), plain) << "the span shows that it is one";
    show(u"something else entirely"_s);
    EXPECT_EQ(view->cursor().shape(), Qt::IBeamCursor) << "the span is gone from under the pointer";
    QTest::mouseMove(view, QPoint(250, 5));
    EXPECT_EQ(view->cursor().shape(), Qt::IBeamCursor);
}

TEST_F(KRActiveTextViewTest, TabWalksTheSpansAndGoesOn)
{
    show(u"see http://example.org/#faq, @bob"_s);
    auto* const tracker = view->findChild<KRActiveTextTracker*>();
    ASSERT_EQ(tracker->spanCount(), 2) << "the hashtag in the link cannot be clicked";
    const QImage plain = picture();
    key(Qt::Key_Tab);
    EXPECT_EQ(tracker->focusedSpan(), 0);
    EXPECT_NE(picture(), plain) << "the focus is visible";
    key(Qt::Key_Return);
    key(Qt::Key_Tab);
    key(Qt::Key_Enter);
    EXPECT_EQ(clicks, QStringList({ u"1 http://example.org/#faq"_s, u"3 bob"_s }));
    key(Qt::Key_Tab);
    EXPECT_FALSE(view->hasFocus());
    EXPECT_EQ(tracker->focusedSpan(), std::nullopt);
    view->setFocus();
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(tracker->focusedSpan(), 1) << "backwards it begins at the end";
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before->hasFocus());

    view->setClickHandler([this](const QString&, KRActiveStringType) { delete view; });
    show(u"@bob"_s);
    QTest::mouseClick(view, Qt::LeftButton, {}, placeOf(u"bob"));
    EXPECT_EQ(window.findChild<KRActiveTextView*>(), nullptr);
}

TEST_F(KRActiveTextViewTest, SelectsAndCopies)
{
    show(u"one two three"_s);
    QClipboard* const clipboard = QApplication::clipboard();
    clipboard->setText(u"old"_s);
    view->copy();
    EXPECT_EQ(clipboard->text(), u"old"_s) << "nothing is selected";
    QTest::mouseDClick(view, Qt::LeftButton, {}, placeOf(u"two"));
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard->text(), u"two"_s);
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view->selection().selectedText(), u"one two three"_s);
    const std::pair<const char*, QString> steps[] = {
        { "Left", u""_s },
        { "Shift+Right", u"o"_s },
        { "Ctrl+Shift+Right", u"one"_s },
        { "Shift+Left", u"on"_s },
        { "Shift+End", u"one two three"_s },
        { "Home", u""_s },
        { "Shift+Down", u"one two three"_s },
        { "Up", u""_s },
        { "Shift+Left", u""_s },
    };
    for (const auto& [name, selected] : steps) {
        const QKeyCombination pressed = QKeySequence(QLatin1String(name))[0];
        key(pressed.key(), pressed.keyboardModifiers());
        EXPECT_EQ(view->selection().selectedText(), selected) << name;
    }
    // As a row of the text is read, whatever it is made of: the whole text comes back.
    for (const QString& text :
        { u"שלום @name וגם"_s, u"a 👩‍👩‍👧 b"_s, u"مرحبا #وسم"_s, u"x\ny"_s }) {
        show(text);
        drag({ 0, 2 }, { view->width() - 1, view->height() - 1 });
        const QImage selected = picture();
        key(Qt::Key_A, Qt::ControlModifier);
        view->copy();
        EXPECT_EQ(clipboard->text(), text);
        key(Qt::Key_Home);
        EXPECT_NE(picture(), selected);
    }
}

TEST_F(KRActiveTextViewTest, AssistiveTechnologyReadsTextAndLinks)
{
    show(u"see @bob, #tag"_s);
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(view);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    QAccessibleTextInterface* const text = accessible->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text(4, 8), u"@bob"_s);
    text->setSelection(0, 4, 8);
    EXPECT_EQ(view->selection().selectedText(), u"@bob"_s);
    int start = 0;
    int end = 0;
    text->selection(0, &start, &end);
    EXPECT_EQ(end - start, 4);
    EXPECT_EQ(text->offsetAtPoint(text->characterRect(5).center()), 5);
    ASSERT_EQ(accessible->childCount(), 2);
    QAccessibleInterface* const link = accessible->child(1);
    EXPECT_EQ(link->role(), QAccessible::Link);
    EXPECT_EQ(link->text(QAccessible::Name), u"#tag"_s);
    EXPECT_EQ(link->parent(), accessible);
    EXPECT_EQ(accessible->indexOfChild(link), 1);
    EXPECT_EQ(accessible->childAt(link->rect().center().x(), link->rect().center().y()), link);
    link->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(link->state().focused);
    EXPECT_EQ(accessible->focusChild(), link);
    link->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, QStringList(u"2 #tag"_s));
    show(u"see nothing"_s);
    EXPECT_FALSE(link->isValid());
    EXPECT_EQ(accessible->child(0), nullptr);
}

} // namespace
