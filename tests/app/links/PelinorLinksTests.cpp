#include "PelinorLinkFakes.h"
#include "api/TwitterServiceHostKeys.h"
#include "app/links/PelinorLinks.h"
#include "foundation/KRUserDefaults.h"
#include "services/KRLinkAction.h"
#include "support/KRTestLog.h"

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

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
    FakeWorkspace workspace { events };
    FakeLinkPresenter presenter { events };
    PelinorLinkEnvironment links { hosts, defaults, workspace, presenter };
};

TEST_F(PelinorLinksTest, EveryKindIsCarriedOut)
{
    KRTestLog log;
    defaults.setInteger(PreviewShortURLsDefaultsKey, 1);
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

    defaults.setInteger(OpenLinksInBackgroundDefaultsKey, 1);
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
        auto* const shown = sheet()->findChild<QPlainTextEdit*>();
        EXPECT_EQ(shown->toPlainText(), u"ssh://host/%E2%80%AEx?y=%C3%BC"_s);
        EXPECT_LE(shown->height(), 80);
        const auto* const question = sheet()->findChild<QLabel*>();
        EXPECT_EQ(question->buddy(), shown) << "a screen reader says the question with it";
        EXPECT_LT(question->geometry().bottom(), shown->y());
        EXPECT_EQ(sheet()->width(), 380) << "the question takes two lines";
        const auto* const first = qobject_cast<QPushButton*>(sheet()->focusWidget());
        EXPECT_TRUE(first && first->text() == u"Cancel");
        shown->setFocus();
        QTest::keyClick(shown, Qt::Key_Tab);
        EXPECT_NE(sheet()->focusWidget(), shown);
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

} // namespace
