#include "PelinorJourney.h"
#include "app/lists/PelinorStatusDetailsViewController.h"
#include "app/people/PelinorUserDetailsViewController.h"
#include "app/searches/PelinorSearchViewController.h"
#include "app/settings/PelinorLoginWindowController.h"
#include "app/settings/PelinorPreferencesWindowController.h"
#include "app/window/PelinorStatusStrip.h"
#include "core/KRKeychain.h"
#include "model/streams/TwitterStatusStreamFilter.h"
#include "toolkit/navigation/KRNavigationController.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

TEST_F(Journey, TheFirstLoginLeadsToTheTimeline)
{
    ASSERT_EQ(m_delegate->mainWindowController(), nullptr);
    PelinorLoginWindowController& login = *m_delegate->loginWindowController();
    auto* const name = find<QLineEdit>(login.window(), u"usernameField"_s);
    auto* const password = find<QLineEdit>(login.window(), u"passwordField"_s);
    auto* const button = find<QAbstractButton>(login.window(), u"loginButton"_s);
    const auto tryWith = [&](const QString& typedName, const QString& typedPassword) {
        name->setText(typedName);
        password->setText(typedPassword);
        button->click();
        EXPECT_TRUE(waitFor([&] { return button->isEnabled(); }));
        return readSheet(login.window());
    };
    EXPECT_EQ(tryWith(u"alice@example.org"_s, u"x"_s),
        u"Please Login with your Twitter username, not your email address.|"
        "You cannot login with your email address."_s);
    EXPECT_TRUE(tryWith(u"alice"_s, u"wrong"_s).startsWith(u"Error|"));
    EXPECT_EQ(name->text(), u"alice"_s) << "what was typed stays for correction";
    EXPECT_EQ(password->selectedText(), password->text()) << "and is replaced by typing";
    EXPECT_TRUE(m_twitter->accounts().isEmpty());
    password->setText(u"wonderland"_s);
    button->click();
    ASSERT_TRUE(waitFor([&] { return m_delegate->mainWindowController() != nullptr; }));
    EXPECT_TRUE(timelineIsFilled());
    EXPECT_TRUE(waitFor([this] {
        const TwitterStatusPtr top = window().topList()->statusForRow(1);
        return top && top->fromUser()->profileImage();
    })) << "avatars come through the network cache";
}

TEST_F(Journey, ASiteOneOnlyHasToName)
{
    end();
    start(Services::ToBeFound);
    PelinorLoginWindowController& login = *m_delegate->loginWindowController();
    auto* const server = find<QComboBox>(login.window(), u"serverField"_s);
    const auto answer = [&] { return find<QLabel>(login.window(), u"serverAnswer"_s)->text(); };
    find<QLineEdit>(login.window(), u"usernameField"_s)->setText(u"alice"_s);
    find<QLineEdit>(login.window(), u"passwordField"_s)->setText(u"wonderland"_s);
    const auto maySignUp = [&] {
        login.help();
        auto* const sheet = find<QMessageBox>(login.window(), {});
        const auto buttons = sheet->buttons();
        const bool may = std::any_of(buttons.begin(), buttons.end(), [](const QAbstractButton* button) {
            return button->text() == u"Sign up..." && button->isEnabled();
        });
        delete sheet;
        return may;
    };
    EXPECT_FALSE(maySignUp()) << "nobody knows where";
    server->setEditText(u"nobody is here"_s);
    login.login();
    EXPECT_TRUE(waitFor([&] { return answer().contains(u"is no server's address"); }));
    const QString host = m_service.httpsHost();
    server->setEditText(u"https://alice@%1/"_s.arg(host));
    login.login();
    EXPECT_TRUE(waitFor([&] { return answer().startsWith(u"Found: "); }));
    EXPECT_TRUE(answer().contains(host)) << answer().toStdString();
    EXPECT_TRUE(maySignUp());
    EXPECT_EQ(m_delegate->mainWindowController(), nullptr) << "no password was sent before that was seen";
    login.login();
    ASSERT_TRUE(waitFor([this] { return m_delegate->mainWindowController() != nullptr; }));
    EXPECT_TRUE(timelineIsFilled());

    // Nothing has to be edited for the next start either.
    end();
    start(Services::ToBeFound);
    ASSERT_NE(m_delegate->mainWindowController(), nullptr);
    EXPECT_TRUE(timelineIsFilled());
}

TEST_F(Journey, ACertificateThatOnlyThisPersonTrusts)
{
    end();
    KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
    settings.extraCAFile.clear();
    KRHTTPTransportSettings::setCurrent(settings);
    start(Services::ToBeFound);
    const QString server = m_service.httpsHost();
    const auto trusted = [&server] { return KRTrustedCertificates::fingerprintForServer(server); };
    PelinorLoginWindowController* login = m_delegate->loginWindowController();
    const auto answer = [&] { return find<QLabel>(login->window(), u"serverAnswer"_s)->text(); };
    const auto button = [](QWidget& parent) {
        auto* const one = find<QAbstractButton>(parent, u"certificateButton"_s);
        EXPECT_TRUE(waitFor([one] { return one->isVisible(); }));
        return one;
    };
    find<QLineEdit>(login->window(), u"usernameField"_s)->setText(u"alice"_s);
    find<QLineEdit>(login->window(), u"passwordField"_s)->setText(u"wonderland"_s);
    auto* const field = find<QComboBox>(login->window(), u"serverField"_s);
    field->clearEditText();
    QTest::keyClicks(field->lineEdit(), server);
    login->login();
    QAbstractButton* const trust = button(login->window());
    const QString fingerprint = find<QLabel>(login->window(), u"certificateFingerprint"_s)->text();
    EXPECT_EQ(fingerprint.count(u'\n'), 3) << fingerprint.toStdString();
    // Nothing but the button trusts it, and going elsewhere takes that back.
    login->login();
    EXPECT_TRUE(waitFor([&] { return trust->isVisible(); }));
    EXPECT_EQ(trusted(), QString());
    const auto* const explanation = find<QLabel>(login->window(), u"certificateExplanation"_s);
    EXPECT_TRUE(waitFor([&] {
        return explanation->height() >= explanation->heightForWidth(explanation->width());
    })) << "all of it is there to read";
    // The button stays where it is while the field is left for it.
    ASSERT_TRUE(QTest::qWaitForWindowActive(&login->window()));
    field->setFocus();
    QTest::mouseClick(login->window().windowHandle(),
        Qt::LeftButton,
        {},
        trust->mapTo(&login->window(), trust->rect().center()));
    EXPECT_EQ(trusted(), KRServerCertificate::fingerprintFromText(fingerprint));
    field->setEditText(u"localhost"_s);
    EXPECT_EQ(trusted(), QString());
    field->setEditText(server);
    login->login();
    button(login->window())->click();
    EXPECT_TRUE(waitFor([&] { return answer().startsWith(u"Found: "); })) << answer().toStdString();
    EXPECT_FALSE(trust->isVisible());
    EXPECT_EQ(m_delegate->mainWindowController(), nullptr) << "no password was sent before that was seen";
    login->login();
    ASSERT_TRUE(waitFor([this] { return m_delegate->mainWindowController() != nullptr; }));
    EXPECT_TRUE(timelineIsFilled());

    // The next start knows it, and the account tells of it and can do without.
    end();
    KRTrustedCertificates::stopTrusting(server);
    start(Services::ToBeFound);
    ASSERT_NE(m_delegate->mainWindowController(), nullptr);
    EXPECT_TRUE(timelineIsFilled());
    QMainWindow& preferences = m_delegate->preferencesWindowController().window();
    m_delegate->preferencesWindowController().accounts();
    find<QListWidget>(preferences, u"accountsTable"_s)->setCurrentRow(0);
    find<QAbstractButton>(preferences, u"accountDetailsButton"_s)->click();
    auto* const sheet = find<QDialog>(preferences, u"accountDetailsSheet"_s);
    EXPECT_EQ(find<QLabel>(*sheet, u"certificateFingerprint"_s)->text(), fingerprint);
    button(*sheet)->click();
    EXPECT_EQ(trusted(), QString());
    EXPECT_TRUE(waitFor([this] {
        window().topList()->refresh();
        return window().statusStrip().error().contains(u"could not be verified");
    }));
    const auto checkAndTrust = [&](const QString& told) {
        EXPECT_TRUE(
            waitFor([&] { return sheet->findChildren<QLabel*>(u"certificateFingerprint"_s).isEmpty(); }));
        auto* const ask = find<QAbstractButton>(*sheet, u"checkCertificateButton"_s);
        ask->click();
        EXPECT_FALSE(ask->isEnabled()) << "the server is being asked";
        const auto isOffered = [&] {
            for (QAbstractButton* const one : sheet->findChildren<QAbstractButton*>(u"certificateButton"_s)) {
                if (one->isVisible() && one->text() == u"Trust This Certificate") {
                    const auto* const text
                        = one->parentWidget()->findChild<QLabel*>(u"certificateExplanation"_s);
                    EXPECT_TRUE(text->text().contains(told)) << text->text().toStdString();
                    one->click();
                    return true;
                }
            }
            return false;
        };
        EXPECT_TRUE(waitFor(isOffered));
    };
    checkAndTrust(u"Nobody known vouches"_s);
    EXPECT_EQ(trusted(), KRServerCertificate::fingerprintFromText(fingerprint));
    // Somebody else in the server's place.
    m_twitter->trustCertificate({ server, u"00"_s });
    // A load that is still under way is not asked for again.
    EXPECT_TRUE(waitFor([this] {
        window().topList()->refresh();
        return window().statusStrip().error().contains(u"has changed");
    }));
    find<QAbstractButton>(*sheet, u"checkCertificateButton"_s)->click();
    EXPECT_TRUE(
        waitFor([&] { return sheet->findChildren<QLabel*>(u"certificateFingerprint"_s).size() == 2; }));
    KRTrustedCertificates::stopTrusting(server);
}

TEST_F(Journey, ReadsAnswersAndLooksAround)
{
    signIn(u"alice"_s, u"wonderland"_s);
    signIn(u"bob"_s, u"builder"_s);
    start();
    ASSERT_TRUE(timelineIsFilled());
    PelinorStatusListViewController* const timeline = window().topList();
    KRTableView& table = timeline->tableView();
    const auto navigation = window().switcher().currentNavigationController();
    table.selectRow(1);
    const TwitterStatusPtr post = timeline->statusForRow(1);

    // A reply.
    key(Qt::Key_R);
    ASSERT_EQ(m_delegate->composeControllers().size(), 1U);
    PelinorComposeWindowController& compose = *m_delegate->composeControllers().front();
    EXPECT_EQ(compose.textView().toPlainText(), u"@%1 "_s.arg(post->fromUser()->username()));
    compose.textView().insertPlainText(u"I came here by foot \U0001f3d7"_s);
    compose.post();
    ASSERT_TRUE(waitFor([this] { return m_delegate->composeControllers().empty(); }));
    EXPECT_TRUE(waitFor([&] { return timeline->statusForRow(1)->text().contains(u"by foot"); }));
    EXPECT_EQ(timeline->statusForRow(1)->inReplyToStatusID(), post->statusID());

    // Its conversation, and back.
    table.selectRow(1);
    key(Qt::Key_Return);
    auto* const details
        = qobject_cast<PelinorStatusDetailsViewController*>(window().topViewController().get());
    ASSERT_NE(details, nullptr);
    EXPECT_TRUE(waitFor([&] { return details->rowForStatus(*post) != details->NoRow; }));
    navigation->popViewControllerAnimated(KRAnimated::No);

    // Thought better of, everywhere.
    const TwitterStatusPtr reply = timeline->statusForRow(1);
    table.selectRow(2);
    key(Qt::Key_Delete);
    EXPECT_EQ(window().window().findChild<QMessageBox*>(), nullptr) << "somebody else's";
    table.selectRow(1);
    key(Qt::Key_Delete);
    auto* const question = window().window().findChild<QMessageBox*>(u"deletePostSheet"_s);
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->informativeText().contains(reply->text()));
    question->buttons().last()->click();
    EXPECT_TRUE(waitFor([&] { return timeline->rowForStatus(*reply) == timeline->NoRow; }));

    // Its author, with posts of the author's own.
    table.selectRow(timeline->rowForStatus(*post));
    key(Qt::Key_P);
    auto* const person = qobject_cast<PelinorUserDetailsViewController*>(window().topViewController().get());
    ASSERT_NE(person, nullptr);
    auto* const follow = find<QAbstractButton>(*person->view(), u"followButton"_s);
    EXPECT_TRUE(waitFor([&] { return person->list() && person->list()->statuses().size() > 2; }));
    EXPECT_EQ(person->list()->statusForRow(1)->fromUser(), post->fromUser());
    EXPECT_EQ(window().topList(), person->list()) << "the menus are about these posts now";
    auto* const fullName = find<QLabel>(*person->view(), u"fullName"_s);
    fullName->resize(30, fullName->height());
    EXPECT_TRUE(fullName->text().endsWith(u'…')) << "who is not told whole is not told to be";
    ASSERT_TRUE(waitFor([&] { return follow->isEnabled(); }));
    EXPECT_EQ(follow->text(), u"Unfollow"_s);
    follow->click();
    EXPECT_EQ(follow->text(), u"Undo"_s) << "the service is not told yet";
    follow->click();
    navigation->popToRootViewControllerAnimated(KRAnimated::No);

    // A favourite, and a search that is kept.
    table.selectRow(2);
    key(Qt::Key_F);
    EXPECT_TRUE(m_twitter->accounts().first()->isFavoriteStatus(*timeline->statusForRow(2)));
    window().selectSearch();
    auto* const field = find<QLineEdit>(*window().topViewController()->view(), u"searchField"_s);
    field->setText(u"#cycling"_s);
    QTest::keyClick(field, Qt::Key_Return);
    auto* const search = qobject_cast<PelinorSearchViewController*>(window().topViewController().get());
    ASSERT_NE(search, nullptr);
    EXPECT_TRUE(waitFor([&] { return search->statuses().size() > 2; }));
    search->toggleSaved();
    EXPECT_EQ(m_twitter->accounts().first()->savedSearches().size(), 1);

    // Messages, and the other account.
    window().selectDirectMessages();
    EXPECT_TRUE(waitFor([this] {
        return !m_twitter->accounts().first()->directMessagesManager()->conversations().isEmpty();
    }));
    window().selectNextAccount();
    EXPECT_EQ(window().selectedTwitterAccount()->username(), u"bob"_s);
    EXPECT_TRUE(timelineIsFilled());

    m_service.stop();
    window().topList()->refresh();
    EXPECT_TRUE(waitFor([this] { return window().statusStrip().error().contains(u"127.0.0.1"); }));
    EXPECT_GE(window().topList()->statuses().size(), 100) << "a failed load loses nothing";
}

TEST_F(Journey, QuitsOnlyWhenNothingIsLostAndComesBackToTheSamePlace)
{
    signIn(u"alice"_s, u"wonderland"_s);
    signIn(u"bob"_s, u"builder"_s);
    end();
    start();
    ASSERT_TRUE(timelineIsFilled());
    window().selectNextAccount();
    ASSERT_TRUE(timelineIsFilled());
    window().topList()->tableView().scrollToRow(40, -7);
    const TwitterStatusPtr reading = window().topList()->statusForRow(40);
    const QRect content = window().window().centralWidget()->geometry();

    m_delegate->newDocument();
    m_delegate->newDocument();
    PelinorComposeWindowController& compose = *m_delegate->composeControllers().front();
    answerAlert(u"Review Tweets..."_s);
    EXPECT_FALSE(m_delegate->applicationShouldTerminate());
    compose.cancel();
    EXPECT_EQ(m_delegate->composeControllers().size(), 1U) << "an untouched window closes at once";
    PelinorComposeWindowController& other = *m_delegate->composeControllers().front();
    EXPECT_EQ(other.account()->username(), u"bob"_s);
    other.textView().setPlainText(u"x"_s.repeated(141));
    other.post();
    EXPECT_TRUE(readSheet(other.window()).startsWith(u"Message too long|"));
    other.cancel();
    EXPECT_EQ(readSheet(other.window()),
        u"Are you sure you want to discard this unsaved tweet?|Your tweet will be lost."_s);
    EXPECT_EQ(m_delegate->composeControllers().size(), 1U);
    QTimer::singleShot(0, [this] {
        answerAlert(u"Discard Tweets"_s);
        m_delegate->terminate();
    });
    QTimer deadline;
    deadline.callOnTimeout([] { QApplication::exit(1); });
    deadline.start(patience);
    EXPECT_EQ(QApplication::exec(), 0) << "nobody asks once more for each of them";

    end();
    start();
    EXPECT_EQ(window().window().centralWidget()->geometry(), content) << "the menus have their room";
    EXPECT_EQ(window().selectedTwitterAccount()->username(), u"bob"_s);
    ASSERT_TRUE(timelineIsFilled());
    EXPECT_EQ(window().window().centralWidget()->geometry(), content);
    const qint64 row = window().topList()->rowForStatus(*reading);
    EXPECT_EQ(window().topList()->tableView().relativeVisibleOffsetForRow(row), -7);
}

TEST_F(Journey, PreferencesApplyAtOnce)
{
    signIn(u"alice"_s, u"wonderland"_s);
    signIn(u"bob"_s, u"builder"_s);
    end();
    start();
    ASSERT_TRUE(timelineIsFilled());
    KRTableView& table = window().topList()->tableView();
    QMainWindow& preferences = m_delegate->preferencesWindowController().window();
    EXPECT_EQ(preferences.windowTitle(), u"General"_s);
    auto* const size = find<QComboBox>(preferences, u"StatusCellFontSize"_s);
    const int height = table.totalHeight();
    size->setCurrentIndex(size->findText(u"Huge"_s));
    Q_EMIT size->activated(size->currentIndex());
    EXPECT_TRUE(waitFor([&] { return table.totalHeight() > height; }));
    EXPECT_EQ(m_defaults.integerForKey("StatusCellFontSize"), 2);
    find<QPlainTextEdit>(preferences, u"filterTerms"_s)->setPlainText(u" one \n\ntwo"_s);
    EXPECT_EQ(m_defaults.stringListForKey("filterTerms"), QStringList({ u"one"_s, u"two"_s }));
    auto post = std::make_shared<TwitterStatus>();
    post->setText(u"one post"_s);
    EXPECT_EQ(FilterWithUserDefaults(post), post) << "what is still being typed drops nothing";
    find<QPlainTextEdit>(preferences, u"filterTerms"_s)->clear();

    m_delegate->preferencesWindowController().accounts();
    auto* const list = find<QListWidget>(preferences, u"accountsTable"_s);
    // Dragging a row below the other.
    ASSERT_TRUE(list->model()->moveRow({}, 0, {}, 2));
    EXPECT_EQ(m_twitter->accounts().first()->username(), u"bob"_s);
    EXPECT_TRUE(waitFor([&] { return list->item(0)->text() == u"bob"; }));
    EXPECT_EQ(window().sideTabs().accounts().first()->username(), u"bob"_s);
    list->setCurrentRow(0);
    find<QAbstractButton>(preferences, u"accountDetailsButton"_s)->click();
    auto* const growl
        = find<QAbstractButton>(preferences, u"option%1"_s.arg(int(TwitterAccountMentionsGrowl)));
    EXPECT_FALSE(growl->isChecked());
    growl->click();
    auto* const sheet = qobject_cast<QDialog*>(growl->window());
    sheet->accept();
    find<QAbstractButton>(preferences, u"removeAccountButton"_s)->click();
    auto* const question = preferences.findChild<QMessageBox*>();
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->informativeText(), u"Are you sure you want to remove \"bob\"?"_s);
    for (QAbstractButton* const button : question->buttons()) {
        if (button->text() == u"Delete")
            button->click();
    }
    EXPECT_EQ(m_twitter->accounts().size(), 1);
    EXPECT_TRUE(waitFor([&] { return list->count() == 1; }));
    EXPECT_EQ(window().selectedTwitterAccount()->username(), u"alice"_s);

    // Signing in once more is no second account.
    find<QAbstractButton>(preferences, u"addAccountButton"_s)->click();
    auto* const adding = find<QDialog>(preferences, u"addAccountSheet"_s);
    find<QLineEdit>(*adding, u"usernameField"_s)->setText(u"Alice"_s);
    find<QLineEdit>(*adding, u"passwordField"_s)->setText(u"wonderland"_s);
    m_twitter->accounts().first()->setPassword(u"an old one"_s);
    find<QAbstractButton>(*adding, u"addAccountButton"_s)->click();
    EXPECT_TRUE(waitFor([this] { return m_twitter->accounts().first()->password() == u"wonderland"; }));
    EXPECT_EQ(m_twitter->accounts().size(), 1);

    // Where no keyring answers the password is asked for.
    m_twitter->accounts().first()->setPassword({});
    KRNotificationCenter::defaultCenter().post(KRKeychainUnavailableNotification());
    auto* const asking = find<QDialog>(window().window(), u"addAccountSheet"_s);
    EXPECT_EQ(find<QLineEdit>(*asking, u"usernameField"_s)->text(), u"alice"_s);
    EXPECT_FALSE(find<QLineEdit>(*asking, u"usernameField"_s)->isEnabled());
    find<QLineEdit>(*asking, u"passwordField"_s)->setText(u"wonderland"_s);
    find<QAbstractButton>(*asking, u"addAccountButton"_s)->click();
    EXPECT_TRUE(waitFor([this] { return m_twitter->accounts().first()->password() == u"wonderland"; }));
    EXPECT_EQ(m_twitter->accounts().size(), 1);

    m_twitter->removeAccount(m_twitter->accounts().first());
    m_delegate->newDocument();
    EXPECT_TRUE(m_delegate->composeControllers().empty()) << "there is nobody to write as";
    EXPECT_TRUE(preferences.isVisible());
    find<QAbstractButton>(window().window(), u"addAccountButton"_s)->click();
    EXPECT_TRUE(find<QDialog>(window().window(), u"addAccountSheet"_s)->isVisible()) << "nor an empty window";
    EXPECT_LE((preferences.geometry().center() - preferences.screen()->availableGeometry().center())
                  .manhattanLength(),
        2);
}
