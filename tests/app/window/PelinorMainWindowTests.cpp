#include "app/lists/PelinorFakes.h"
#include "app/lists/PelinorPlaceholderTableViewCells.h"
#include "app/look/PelinorCellColors.h"
#include "app/window/PelinorErrorStrip.h"
#include "app/window/PelinorMainWindow.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "text/render/KRColorConversion.h"
#include "transport/KRHTTPRequest.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int Limit = 20000;

TwitterStatusList communityPosts()
{
    const auto marion = makeUser(QStringLiteral("marion"), QStringLiteral("Marion Lindqvist"));
    const auto tomas = makeUser(QStringLiteral("tomas_w"), QStringLiteral("Tomás Weiß"));
    const auto layla = makeUser(QStringLiteral("layla"), QStringLiteral("ليلى حداد"));
    const auto ken = makeUser(QStringLiteral("ken"), QStringLiteral("高橋健"));
    const auto noa = makeUser(QStringLiteral("noa"), QStringLiteral("נועה ברק"));
    const auto wordy = makeUser(QStringLiteral("harbour_office_news"),
        QStringLiteral("The Harbour Office of the Northern Islands and Surrounding Waters"));
    const auto me = makeUser(QStringLiteral("me"), QStringLiteral("Ada Morgan"));
    int number = 5000;
    int age = 7;
    const auto post = [&](const TwitterUserPtr& user, const QString& text) {
        age = age * 3 / 2 + 40;
        return makeStatus(number--, text, user, age);
    };
    return {
        post(marion,
            QStringLiteral("The ferry is late again, so here is the tide table for tomorrow: "
                           "http://example.org/tides #harbour")),
        post(me, QStringLiteral("@marion thank you! I will take the early one then.")),
        post(layla,
            QStringLiteral(
                "صباح الخير من الميناء ☀️ الطقس جميل اليوم #صباح "
                "@marion")),
        post(tomas,
            QStringLiteral("Bought two more of $HRBR this morning; write to me at tomas@example.org if you "
                           "want the notes.")),
        post(ken, QStringLiteral("今朝の港はとても静かでした。波の音だけが聞こえます。 #朝 🌊")),
        post(wordy, QStringLiteral("Short.")),
        post(noa, QStringLiteral("@tomas_w בוקר טוב, המעבורת יוצאת בשמונה. פרטים: http://example.org/a_(b)")),
        post(me, QStringLiteral("Line one\nline two\n\nand a last one after a gap 👩‍👩‍👧 🎉")),
        post(marion,
            QStringLiteral("averyveryverylongwordwithoutanyplacetobreakitthatgoesonandonandonuntiltheendofthe"
                           "line and <b>no</b> &amp; markup")),
        post(tomas,
            QStringLiteral(
                "Wer heute Abend noch zum Leuchtturm will: Treffpunkt 18 Uhr an der Mole, festes Schuhwerk, "
                "Taschenlampe. Es wird kalt und schön. #leuchtturm www.example.net/treffen")),
        post(layla, QStringLiteral("See you there 🚢🚢🚢")),
    };
}

/// Shows a window and waits for the list, which comes after the window's first painting.
bool showsList(PelinorMainWindow& window)
{
    window.show();
    return QTest::qWaitFor([&] { return window.list().tableView().numberOfRows() > 0; });
}

class PelinorMainWindowTest : public testing::Test {
protected:
    PelinorListEnvironment environment() { return { defaults, center, preferences, heights }; }

    QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(QStringLiteral("defaults.ini")) };
    KRNotificationCenter center;
    PelinorDisplayPreferences preferences;
    KRTextHeightCache heights;
    FakeAccount account { center };
    KRQtRunLoopDriver driver;
};

TEST_F(PelinorMainWindowTest, ShowsAFilledTimelineInBothColourSchemes)
{
    account.stream->posts = communityPosts();
    const QString folder = qEnvironmentVariable("PELINOR_SCREENSHOTS", directory.path());
    const QPalette usual = QApplication::palette();
    QPalette dark(QColor(0x2B, 0x30, 0x36), QColor(0x1C, 0x20, 0x24));
    for (const auto& [name, palette] : { std::pair("light", usual), std::pair("dark", dark) }) {
        QApplication::setPalette(palette);
        PelinorMainWindow window(environment(), account);
        window.resize(420, 900);
        ASSERT_TRUE(showsList(window));
        window.list().tableView().selectRow(3);
        window.errorStrip().setText(qEnvironmentVariable("PELINOR_SCREENSHOT_ERROR"));
        const QImage image = window.grab().toImage();
        EXPECT_TRUE(image.save(QDir(folder).filePath(
            QStringLiteral("window-%1-%2x.png").arg(QLatin1String(name)).arg(window.devicePixelRatioF()))));
        const PelinorCellColors& colors = PelinorCellColors::forPalette(palette);
        const auto showsColor = [&image](const QColor& color) {
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    if (image.pixelColor(x, y).rgb() == color.rgb())
                        return true;
                }
            }
            return false;
        };
        for (const QColor& color : { colors.background,
                 colors.ownBackground,
                 colors.selectedBackground,
                 colors.separator,
                 colors.placeholder,
                 KRQColor(colors.spans.links) })
            EXPECT_TRUE(showsColor(color)) << name << ' ' << color.name().toStdString();
    }
    QApplication::setPalette(usual);
}

TEST_F(PelinorMainWindowTest, AnEmptyTimelineSaysSo)
{
    PelinorMainWindow window(environment(), account);
    ASSERT_TRUE(showsList(window));
    const auto textOfRow = [&](qint64 row) {
        const auto* const cell
            = qobject_cast<PelinorPlaceholderTableViewCell*>(window.list().tableView().cellForRow(row));
        return cell ? cell->text() : QString();
    };
    EXPECT_EQ(textOfRow(1), QStringLiteral("Loading…"));
    account.stream->isAtEnd = true;
    account.stream->setStatuses({});
    EXPECT_EQ(textOfRow(1), QStringLiteral("No posts yet"));
    const QString folder = qEnvironmentVariable("PELINOR_SCREENSHOTS", directory.path());
    EXPECT_TRUE(window.grab().save(QDir(folder).filePath(QStringLiteral("window-empty.png"))));
    account.stream->setStatuses({ makeStatus(1, QStringLiteral("x"), makeUser(QStringLiteral("someone"))) });
    EXPECT_EQ(textOfRow(2), QStringLiteral("No older posts"));
}

TEST_F(PelinorMainWindowTest, AFailedLoadShowsUntilTheNextGoodOne)
{
    account.stream->posts = communityPosts();
    PelinorMainWindow window(environment(), account);
    ASSERT_TRUE(showsList(window));
    PelinorErrorStrip& strip = window.errorStrip();
    EXPECT_FALSE(strip.isVisible());
    const auto fail = [&](const QString& description) {
        std::thread([&] {
            center.post(
                TwitterStreamErrorNotification { nullptr, { QStringLiteral("test"), 503, description } });
        }).join();
    };
    fail(QStringLiteral("<b>Over\ncapacity</b>"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return strip.isVisible(); }, Limit));
    EXPECT_EQ(strip.text(), QStringLiteral("<b>Over capacity</b>"));
    EXPECT_EQ(strip.findChild<QLabel*>()->textFormat(), Qt::PlainText);
    fail(QStringLiteral("word ").repeated(5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return strip.text().size() == 300; }, Limit));
    EXPECT_LT(strip.height(), window.height() / 2);
    QTest::mouseClick(strip.findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_FALSE(strip.isVisible());

    fail(QStringLiteral("again"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return strip.isVisible(); }, Limit));
    account.stream->setStatuses(communityPosts());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !strip.isVisible(); }, Limit));
    fail(QStringLiteral("again"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return strip.isVisible(); }, Limit));
    fail(QString());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !strip.isVisible(); }, Limit)) << "there is nothing to read";
}

TEST_F(PelinorMainWindowTest, FailuresThatArriveAfterTheWindowAreDropped)
{
    {
        PelinorMainWindow window(environment(), account);
        center.post(TwitterStreamErrorNotification { nullptr,
            { QStringLiteral("test"), 1, QStringLiteral("late") } });
    }
    bool hasRun = false;
    KRRunLoop::main().post([&] { hasRun = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasRun; }, Limit));
}

TEST_F(PelinorMainWindowTest, RemembersItsGeometryAndTheReadersPlace)
{
    account.stream->posts = communityPosts();
    {
        PelinorMainWindow window(environment(), account);
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Pelinor"));
        window.resize(100, 100);
        EXPECT_GE(window.width(), 300);
        window.resize(555, 444);
        ASSERT_TRUE(showsList(window));
        window.list().tableView().scrollToRow(9);
        window.close();
    }
    PelinorMainWindow window(environment(), account);
    EXPECT_EQ(window.size(), QSize(555, 444));
    ASSERT_TRUE(showsList(window));
    EXPECT_FALSE(window.list().tableView().isScrolledToTop());
    EXPECT_TRUE(window.list().tableView().visibleRange().contains(9));

    defaults.setData("MainWindowGeometry", "not a geometry");
    EXPECT_GT(PelinorMainWindow(environment(), account).height(), 500);
}

} // namespace
