#include "PelinorJourney.h"
#include "app/PelinorShortcutsWindow.h"
#include "app/look/PelinorContrast.h"
#include "app/people/PelinorUserDetailsViewController.h"
#include "app/searches/PelinorSearchViewController.h"
#include "app/settings/PelinorLoginWindowController.h"
#include "app/settings/PelinorPreferencesWindowController.h"
#include "app/window/PelinorStatusStrip.h"
#include "model/streams/TwitterDirectMessagesConversationManager.h"
#include "toolkit/navigation/KRNavigationController.h"

#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSet>
#include <QStyleFactory>

// Takes a picture of every screen, for people to look at, and checks what a program can tell of them. The scale
// factor is that of the environment.

namespace {

enum class Look { Light, Dark, RightToLeft, Contrast };

QPalette darkPalette()
{
    const QColor page(0x1C, 0x20, 0x24);
    const QColor text(0xEA, 0xED, 0xF0);
    QPalette palette(QColor(0x2A, 0x30, 0x36), page);
    palette.setColor(QPalette::Base, QColor(0x15, 0x18, 0x1B));
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(role, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x8C, 0x96, 0xA0));
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x8F, 0xE8));
    palette.setColor(QPalette::Link, QColor(0x5F, 0xAC, 0xF2));
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, QColor(0x76, 0x7F, 0x88));
    return palette;
}

class Pictures : public Journey, public testing::WithParamInterface<Look> {
protected:
    void SetUp() override
    {
        QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
        QApplication::setPalette(
            GetParam() == Look::Dark ? darkPalette() : QApplication::style()->standardPalette());
        QApplication::setLayoutDirection(GetParam() == Look::RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        PelinorContrast::setRaised(GetParam() == Look::Contrast);
        Journey::SetUp();
    }

    void take(QWidget& widget, const QString& name)
    {
        static const char* const suffixes[] = { "", "-dark", "-rtl", "-contrast" };
        QCoreApplication::sendPostedEvents();
        const QImage image = widget.grab().toImage();
        QSet<QRgb> colors;
        for (int y = 0; y < image.height(); y += 2) {
            for (int x = 0; x < image.width(); x += 2)
                colors.insert(image.pixel(x, y));
        }
        EXPECT_GT(colors.size(), 12) << name.toStdString() << " is nearly empty";
        EXPECT_EQ(image.size(), (QSizeF(widget.size()) * widget.devicePixelRatioF()).toSize());
        const QDir folder(
            QStringLiteral(PELINOR_PICTURES) + u'/' + QString::number(widget.devicePixelRatioF()));
        ASSERT_TRUE(folder.mkpath(u"."_s));
        ASSERT_TRUE(image.save(folder.filePath(name + QLatin1String(suffixes[int(GetParam())]) + u".png"_s)));
    }
    void takeWindow(const QString& name) { take(window().window(), name); }

    /// The pictures of the people that the rows in sight are by.
    static bool hasAvatars(PelinorStatusListViewController& list)
    {
        const KRRange rows = list.tableView().visibleRange();
        for (qsizetype row = rows.location; row < rows.location + rows.length; ++row) {
            const TwitterStatusPtr status = list.statusForRow(row);
            if (status && status->fromUser() && status->fromUser()->profileImageURL().isValid()
                && !status->fromUser()->profileImage())
                return false;
        }
        return true;
    }
    /// Pictures of people come when they come; what is missing for good shows its own.
    void waitForAvatars()
    {
        (void)QTest::qWaitFor([this] { return window().topList() && hasAvatars(*window().topList()); }, 3000);
    }
};

} // namespace

TEST_P(Pictures, OfTheFirstStart)
{
    end();
    start(Services::ToBeFound);
    PelinorLoginWindowController& login = *m_delegate->loginWindowController();
    take(login.window(), u"login"_s);
    find<QLineEdit>(login.window(), u"usernameField"_s)->setText(u"alice"_s);
    find<QLineEdit>(login.window(), u"passwordField"_s)->setText(u"wonderland"_s);
    find<QComboBox>(login.window(), u"serverField"_s)->setEditText(m_service.httpsHost());
    login.login();
    auto* const answer = find<QLabel>(login.window(), u"serverAnswer"_s);
    ASSERT_TRUE(waitFor([&] { return answer->text().startsWith(u"Found: "); }));
    take(login.window(), u"login-found"_s);
    find<QLineEdit>(login.window(), u"usernameField"_s)->setText(u"alice@example.org"_s);
    login.login();
    auto* const sheet = login.window().findChild<QMessageBox*>();
    ASSERT_NE(sheet, nullptr);
    take(*sheet, u"login-refused"_s);
    delete sheet;
}

TEST_P(Pictures, OfTheMainWindow)
{
    for (const auto& [name, password] : { std::pair(u"alice"_s, u"wonderland"_s),
             std::pair(u"bob"_s, u"builder"_s),
             std::pair(u"omar"_s, u"yakamoz"_s) })
        signIn(name, password);
    end();
    start();
    for (const TwitterAccountPtr& account : m_twitter->accounts()) {
        if (account->username() == u"omar")
            account->setPassword(u"yakamoz"_s);
    }
    window().window().resize(460, 760);
    window().window().show();
    ASSERT_TRUE(timelineIsFilled());
    window().topList()->tableView().selectRow(2);
    waitForAvatars();
    takeWindow(u"timeline"_s);

    key(Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return window().topList() && window().topList()->statuses().size() > 0; }));
    waitForAvatars();
    takeWindow(u"conversation"_s);
    const auto navigation = window().switcher().currentNavigationController();
    navigation->popToRootViewControllerAnimated(KRAnimated::No);
    window().topList()->tableView().selectRow(2);
    key(Qt::Key_P);
    auto* const person = qobject_cast<PelinorUserDetailsViewController*>(window().topViewController().get());
    ASSERT_NE(person, nullptr);
    ASSERT_TRUE(waitFor([&] { return person->list() && person->list()->statuses().size() > 2; }));
    (void)QTest::qWaitFor([&] { return hasAvatars(*person->list()); }, 3000);
    takeWindow(u"person"_s);
    navigation->popToRootViewControllerAnimated(KRAnimated::No);

    window().selectReplies();
    ASSERT_TRUE(waitFor([this] { return window().topList() && window().topList()->statuses().size() > 5; }));
    waitForAvatars();
    takeWindow(u"mentions"_s);
    window().selectDirectMessages();
    ASSERT_TRUE(waitFor([this] {
        return m_twitter->accounts().first()->directMessagesManager()->conversations().size() > 5;
    }));
    const auto& conversations = m_twitter->accounts().first()->directMessagesManager()->conversations();
    ASSERT_TRUE(waitFor([&] {
        return std::ranges::all_of(conversations,
            [](const auto& one) { return one->correspondent()->profileImage() != nullptr; });
    }));
    takeWindow(u"messages"_s);
    KRTableView& table = *qobject_cast<KRTableView*>(window().topViewController()->view());
    table.selectRow(0);
    QTest::keyClick(table.selectedCell(), Qt::Key_Return);
    takeWindow(u"messages-one"_s);

    window().selectSearch();
    auto* const field = find<QLineEdit>(*window().topViewController()->view(), u"searchField"_s);
    field->setText(u"#letterpress"_s);
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return window().topList() && window().topList()->statuses().size() > 2; }));
    waitForAvatars();
    takeWindow(u"search-results"_s);
    auto* const search = qobject_cast<PelinorSearchViewController*>(window().topViewController().get());
    ASSERT_NE(search, nullptr);
    search->toggleSaved();
    window().switcher().currentNavigationController()->popToRootViewControllerAnimated(KRAnimated::No);
    ASSERT_TRUE(waitFor([this] { return !m_twitter->trends().isEmpty(); }));
    takeWindow(u"searches"_s);
    window().goToUser();
    auto* const panel = window().window().findChild<QDialog*>();
    ASSERT_NE(panel, nullptr);
    take(*panel, u"go-to-user"_s);
    panel->reject();

    // Names and texts from right to left, and an error.
    window().selectNextAccount();
    window().selectNextAccount();
    ASSERT_TRUE(timelineIsFilled());
    waitForAvatars();
    m_service.stop();
    window().topList()->refresh();
    ASSERT_TRUE(waitFor([this] { return !window().statusStrip().error().isEmpty(); }));
    takeWindow(u"error"_s);
    window().selectReplies();
    const auto lastRow = [this] {
        KRTableView& rows = window().topList()->tableView();
        return window().topList()->tableViewAccessibleNameForRow(rows, rows.numberOfRows() - 1);
    };
    ASSERT_TRUE(waitFor([&] { return lastRow().contains(u"Try again"); })) << lastRow().toStdString();
    takeWindow(u"unreachable"_s);
}

TEST_P(Pictures, OfTheOtherWindows)
{
    signIn(u"alice"_s, u"wonderland"_s);
    signIn(u"bob"_s, u"builder"_s);
    end();
    start();
    ASSERT_TRUE(timelineIsFilled());
    m_delegate->newTweetFromAccount(nullptr, window().topList()->statusForRow(1), {}, std::nullopt);
    PelinorComposeWindowController& compose = *m_delegate->composeControllers().front();
    compose.textView().insertPlainText(
        u"Yes! See http://example.org/a/rather/long/address?with=query \U0001f6b2 #cycling"_s);
    take(compose.window(), u"compose-reply"_s);
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(QColor(200, 90, 40));
    ASSERT_TRUE(picture.save(m_directory.filePath(u"picture.png"_s)));
    EXPECT_TRUE(compose.textView().attachFile(m_directory.filePath(u"picture.png"_s)));
    take(compose.window(), u"compose-attachment"_s);
    compose.textView().setPlainText(u"Far more than fits into one post. "_s.repeated(5));
    take(compose.window(), u"compose-too-long"_s);
    compose.cancel();
    if (auto* const sheet = compose.window().findChild<QMessageBox*>())
        take(*sheet, u"compose-discard"_s);

    PelinorPreferencesWindowController& preferences = m_delegate->preferencesWindowController();
    preferences.showWindow();
    take(preferences.window(), u"preferences-general"_s);
    preferences.advanced();
    take(preferences.window(), u"preferences-advanced"_s);
    preferences.accounts();
    find<QListWidget>(preferences.window(), u"accountsTable"_s)->setCurrentRow(0);
    take(preferences.window(), u"preferences-accounts"_s);
    for (const char* const button : { "accountDetailsButton", "addAccountButton" }) {
        find<QAbstractButton>(preferences.window(), QLatin1String(button))->click();
        auto* const sheet = preferences.window().findChild<QDialog*>();
        ASSERT_NE(sheet, nullptr) << button;
        take(*sheet, QLatin1String(button));
        delete sheet;
    }
    m_delegate->showShortcuts();
    auto* const shortcuts = find<QDialog>(window().window(), u"shortcutsWindow"_s);
    take(*shortcuts, u"shortcuts"_s);
}

namespace {

std::string nameOf(const testing::TestParamInfo<Look>& look)
{
    static constexpr const char* lookNames[] = { "Light", "Dark", "RightToLeft", "Contrast" };
    return lookNames[int(look.param)];
}

} // namespace

INSTANTIATE_TEST_SUITE_P(,
    Pictures,
    testing::Values(Look::Light, Look::Dark, Look::RightToLeft, Look::Contrast),
    nameOf);
