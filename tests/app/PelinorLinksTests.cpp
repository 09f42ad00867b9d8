#include "PelinorFakes.h"
#include "api/TwitterServiceHostKeys.h"
#include "app/PelinorLinks.h"
#include "app/PelinorTweetsListViewController.h"
#include "foundation/KRUserDefaults.h"
#include "services/KRLinkAction.h"
#include "support/KRTestLog.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Workspace final : public KRWorkspace {
public:
    explicit Workspace(QStringList& log)
        : m_log(log)
    {
    }
    bool openURL(const QUrl& url, Launch launch) override
    {
        m_log.append((launch == Launch::Normal ? u"open "_s : u"open behind "_s) + url.toString());
        return true;
    }
    void beep() override { m_log.append(u"beep"_s); }

private:
    QStringList& m_log;
};

class Presenter final : public PelinorLinkPresenter {
public:
    explicit Presenter(QStringList& log)
        : m_log(log)
    {
    }
    void openImageViewer(const QUrl& url, const QString& source) override
    {
        m_log.append(u"image %1 of %2"_s.arg(url.toString(), source));
    }
    void openMovieViewer(const QUrl& url) override { m_log.append(u"movie "_s + url.toString()); }
    void openShortLinkChecker(const QString& url) override { m_log.append(u"check "_s + url); }
    void pushSearchView(const QString& query) override { m_log.append(u"search "_s + query); }
    void pushUserDetailsView(const QString& name) override { m_log.append(u"user "_s + name); }

private:
    QStringList& m_log;
};

class PelinorLinksTest : public testing::Test {
protected:
    PelinorLinksTest()
    {
        using namespace TwitterServiceHostKeys;
        for (const auto& [key, host] : { std::pair(TwitPicLinkHost, u"tp.example"_s),
                 std::pair(YFrogSecondLinkHost, u"yf2.example"_s),
                 std::pair(BitlyLinkHost, u"bit.example"_s) })
            hosts.setValueForKey(host, QLatin1String(key));
    }
    QString taken() { return std::exchange(events, {}).join(u'|'); }

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(u"defaults.ini"_s) };
    TwitterServiceHosts hosts;
    QStringList events;
    Workspace workspace { events };
    Presenter presenter { events };
    PelinorLinkEnvironment links { hosts, defaults, workspace, presenter };
};

TEST_F(PelinorLinksTest, EveryKindIsCarriedOut)
{
    KRTestLog log;
    defaults.setBool(PreviewShortURLsDefaultsKey, true);
    struct {
        QString text;
        int type;
        bool isHandled;
        QString event;
    } const cases[] = {
        { u"?"_s, 0, false, u"beep"_s },
        { u"www.example.org"_s, 1, true, u"open http://www.example.org"_s },
        { u"http://tp.example/a"_s,
            1,
            true,
            u"image http://tp.example/show/iphone/a of http://tp.example/a"_s },
        { u"http://yf2.example/z"_s, 1, true, u"movie http://yf2.example/z:iphone"_s },
        { u"http://bit.example/a"_s, 1, true, u"check http://bit.example/a"_s },
        { u"#tag"_s, 2, true, u"search #tag"_s },
        { u"bob"_s, 3, true, u"user bob"_s },
        { u"$SYM"_s, 4, true, u"search $SYM"_s },
        { u"a@example.org"_s, 5, true, u"open mailto:a@example.org"_s },
        { u"x"_s, 6, false, {} },
    };
    for (const auto& test : cases) {
        EXPECT_EQ(KRHandleLink(test.text, test.type, links, nullptr), test.isHandled);
        EXPECT_EQ(taken(), test.event);
    }
    EXPECT_EQ(log.lines(), QStringList(u"ERROR: unknown link type <?>"_s));

    defaults.setBool(OpenLinksInBackgroundDefaultsKey, true);
    KRActuallyOpenURLString(u"http://bit.example/a b"_s, links, nullptr);
    KRHandleLink(u"a@example.org"_s, 5, links, nullptr);
    KROpenURLString(QString(), links, nullptr);
    EXPECT_EQ(taken(), u"open behind http://bit.example/a b|open mailto:a@example.org"_s);
}

TEST_F(PelinorLinksTest, OtherSchemesAreAskedAbout)
{
    QWidget window;
    QWidget view(&window);
    window.show();
    const auto sheet = [&] { return window.findChild<QDialog*>(); };
    const QString address = u"ssh://host/%E2%80%AEx?y=ü"_s;
    for (const QString& button : { u"Cancel"_s, u"Open"_s }) {
        KROpenURLString(address, links, &view);
        ASSERT_NE(sheet(), nullptr);
        EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
        EXPECT_EQ(sheet()->findChild<QPlainTextEdit*>()->toPlainText(), u"ssh://host/%E2%80%AEx?y=%C3%BC"_s);
        EXPECT_EQ(taken(), QString()) << "not yet";
        for (QPushButton* const candidate : sheet()->findChildren<QPushButton*>()) {
            EXPECT_EQ(candidate->isDefault(), candidate->text() == u"Cancel");
            if (candidate->text() == button)
                candidate->click();
        }
        ASSERT_TRUE(QTest::qWaitFor([&] { return !sheet(); }));
        EXPECT_EQ(!taken().isEmpty(), button == u"Open");
    }
    KROpenURLString(address, links, &view);
    QTest::keyClick(sheet(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !sheet(); }));
    EXPECT_EQ(taken(), QString());
}

TEST_F(PelinorLinksTest, AListFollowsTheLinksOfItsRows)
{
    KRNotificationCenter center;
    FakeAccount account(center);
    PelinorDisplayPreferences preferences;
    KRTextHeightCache heights;
    PelinorTweetsListViewController list({ defaults, center, preferences, heights, &links }, account);
    auto user = std::make_shared<TwitterUser>();
    user->setUsername(u"marion"_s);
    user->setFullName(u"Marion"_s);
    for (const QString& text : { u"one @bob #tag"_s, u"nothing"_s }) {
        auto post = std::make_shared<TwitterStatus>();
        post->setStatusID(QString::number(account.stream->posts.size()));
        post->setText(text);
        post->setFromUser(user);
        post->setDate(KRNow());
        account.stream->posts.append(post);
    }
    KRTableView& table = list.tableView();
    table.setFrame({ 0, 0, 415, 300 });
    table.show();
    list.viewWillAppear(false);
    table.setFocus();
    QTest::keyClick(table.focusWidget(), Qt::Key_Down);
    auto* const cell = static_cast<PelinorStatusTableViewCell*>(table.selectedCell());
    ASSERT_EQ(table.selectedRow(), 1);
    const QImage plain = cell->grab().toImage();
    QTest::keyClick(cell, Qt::Key_Tab);
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(taken(), u"user bob"_s);
    EXPECT_NE(cell->grab().toImage(), plain) << "the focus is visible";
    QTest::keyClick(cell, Qt::Key_Tab);
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(taken(), u"search #tag"_s);
    QTest::mouseClick(cell,
        Qt::LeftButton,
        {},
        cell->findChild<KRActiveTextTracker*>()->spanRect(0).center());
    EXPECT_EQ(taken(), u"user bob"_s);
    EXPECT_EQ(cell->accessibleName(), u"Marion: one @bob #tag, 0 seconds ago"_s);
    EXPECT_EQ(list.tableViewAccessibleNameForRow(table, 1), cell->accessibleName());
    QTest::keyClick(cell, Qt::Key_Down);
    QTest::keyClick(table.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(table.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(taken(), QString()) << "a row without spans";
    list.viewWillDisappear(false);
}

} // namespace
