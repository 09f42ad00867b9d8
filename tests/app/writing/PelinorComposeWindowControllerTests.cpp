#include "app/look/PelinorDraftColors.h"
#include "app/writing/PelinorComposeWindowController.h"
#include "app/writing/PelinorTextView.h"
#include "compose/ComposeFixture.h"
#include "model/records/KRTestRecords.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTestLocalService.h"
#include "toolkit/transitions/KRMotion.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QHelpEvent>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

/// Sees what it is told, and films nothing into a file.
class FakeCamera final : public PelinorCamera {
public:
    void start(PelinorCameraListener& listener) override
    {
        seen = &listener;
        QTimer::singleShot(0, qApp, [&] { listener.cameraDidShow(QImage(64, 48, QImage::Format_RGB32)); });
    }
    QString movieSuffix() const override { return u"mp4"_s; }
    void beginRecording(const QString& path) override { QFile(path).open(QIODevice::WriteOnly); }
    void endRecording() override
    {
        QTimer::singleShot(0, qApp, [this] { seen->cameraDidRecord(); });
    }

private:
    PelinorCameraListener* seen = nullptr;
};

constexpr char update[] = "/statuses/update.xml";
constexpr char upload[] = "/YFrogAPIHost/api/upload";

class PelinorComposeWindowTest : public ComposeFixture, public PelinorComposeWindowControllerDelegate {
protected:
    PelinorComposeWindowTest()
    {
        KRMotion::setEnabledByProgram(false);
        answer(update, KRTestServer::always(200, "<status><id>7</id><text>x</text></status>"));
        answer(upload, KRTestServer::always(200, "<rsp><mediaurl>http://p.example/1</mediaurl></rsp>"));
        open();
    }
    ~PelinorComposeWindowTest() override { KRMotion::setEnabledByProgram(true); }

    void open(const std::optional<PelinorDraftStore::Stored>& left = std::nullopt,
        const std::function<void(PelinorComposeWindowController&)>& prepare = {})
    {
        isDismissed = false;
        controller = std::make_unique<PelinorComposeWindowController>(*twitter, defaults, store, left);
        controller->setDelegate(this);
        controller->setAccount(account);
        if (prepare)
            prepare(*controller);
        controller->showWindow();
        controller->window().activateWindow();
        EXPECT_TRUE(isDialogOpen() || QTest::qWaitForWindowActive(&controller->window()));
    }
    bool isDialogOpen() { return controller->window().findChild<QDialog*>(); }
    void composeWindowDismiss(PelinorComposeWindowController&) override { isDismissed = true; }
    void composeWindowShowTimeline(PelinorComposeWindowController&) override { showsTimeline = true; }

    PelinorTextView& view() { return controller->textView(); }
    PelinorDraft draft()
    {
        PelinorDraft found;
        view().fillDraft(found);
        return found;
    }
    /// One after the other, as "Ctrl+A Ctrl+X".
    void keys(const char* pressed)
    {
        for (const QString& one : QString::fromLatin1(pressed).split(u' ')) {
            const QKeyCombination combination = QKeySequence(one)[0];
            QTest::keyClick(&view(), combination.key(), combination.keyboardModifiers());
        }
    }
    void know(const QStringList& names)
    {
        for (const QString& name : names)
            twitter->definitiveUser(KRTestUser(name, name));
    }
    template <class Predicate>
    static bool waitFor(Predicate predicate)
    {
        return QTest::qWaitFor(predicate, 20'000);
    }
    QMessageBox* sheet() { return controller->window().findChild<QMessageBox*>(); }
    /// Answers the sheet, and what it said.
    QString answerSheet(const QString& button)
    {
        QMessageBox* const box = sheet();
        if (!box)
            return {};
        const QString text = box->text();
        for (QAbstractButton* const one : box->buttons()) {
            if (one->text() == button)
                one->click();
        }
        EXPECT_TRUE(waitFor([this] { return !sheet(); }));
        controller->window().activateWindow();
        EXPECT_TRUE(isDismissed || QTest::qWaitForWindowActive(&controller->window()));
        return text;
    }
    QString remaining() { return find<QLabel>("remainingField").text(); }
    QString picture(const QString& name) const
    {
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(directory.filePath(name)));
        return directory.filePath(name);
    }
    bool frameHasCloseButton()
    {
        return controller->window().windowHandle()->flags() & Qt::WindowCloseButtonHint;
    }
    template <class Widget>
    Widget& find(const char* name)
    {
        auto* const found = controller->window().findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    QStringList draftsOnDisk() const { return QDir(folder).entryList({ u"*.draft"_s }, QDir::Files); }

    KRQtRunLoopDriver driver;
    QString folder = directory.filePath(u"drafts"_s);
    std::shared_ptr<PelinorDraftStore> store
        = std::make_shared<PelinorDraftStore>(folder, directory.filePath(u"pictures"_s));
    std::unique_ptr<PelinorComposeWindowController> controller;
    bool isDismissed = false;
    bool showsTimeline = false;
};

} // namespace

TEST_F(PelinorComposeWindowTest, FilesComeByDropAndPasteAndGoWithTheirCharacter)
{
    EXPECT_EQ(remaining(), u"140"_s);
    QTest::keyClicks(&view(), u"ab"_s);
    QMimeData dropped;
    const QString first = picture(u"1.png"_s);
    const QString second = picture(u"2.jpg"_s);
    dropped.setUrls({ QUrl::fromLocalFile(first),
        QUrl::fromLocalFile(fileWith(u"words.txt"_s, "words")),
        QUrl::fromLocalFile(second) });
    QDragEnterEvent enter({ 5, 5 }, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view().viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({ 400, 20 },
        Qt::CopyAction | Qt::MoveAction,
        &dropped,
        Qt::LeftButton,
        Qt::ShiftModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(view().viewport(), &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "what is moved would be gone";
    EXPECT_EQ(draft().text, u"ab\ufffc\ufffc"_s);
    EXPECT_EQ(draft().attachments, (QList<PelinorAttachment> { { 2, first }, { 3, second } }));
    EXPECT_EQ(remaining(), u"76"_s);
    const QPoint last = view().cursorRect().center() - QPoint(6, 0);
    QHelpEvent help(QEvent::ToolTip, last, view().viewport()->mapToGlobal(last));
    QApplication::sendEvent(view().viewport(), &help);
    EXPECT_EQ(QToolTip::text(), u"2.jpg"_s);

    auto* const copied = new QMimeData;
    copied->setImageData(QImage(QSize(3, 3), QImage::Format_RGB32));
    QApplication::clipboard()->setMimeData(copied);
    keys("Ctrl+V");
    ASSERT_EQ(draft().attachments.size(), 3);
    const QString pasted = draft().attachments[2].filename;
    EXPECT_EQ(QImage(pasted).size(), QSize(3, 3));
    QTest::keyClicks(&view(), u"c"_s);
    EXPECT_EQ(draft().attachments.size(), 3) << "what is written behind one is none";
    keys("Backspace Backspace Backspace");
    EXPECT_EQ(draft().attachments.size(), 1);
    while (view().document()->isUndoAvailable() && draft().attachments.size() < 3)
        keys("Ctrl+Z");
    EXPECT_EQ(draft().attachments.size(), 3) << "undone";
    const PelinorDraft before = draft();
    keys("Ctrl+A Ctrl+X");
    EXPECT_TRUE(draft().isEmpty());
    keys("Ctrl+V");
    EXPECT_EQ(draft(), before) << "cut and pasted with its files";
    keys("Ctrl+Z");
    EXPECT_TRUE(draft().isEmpty()) << "as one step";
    keys("Ctrl+Shift+Z Escape");
    EXPECT_EQ(answerSheet(u"Discard"_s), u"Are you sure you want to discard this unsaved tweet?"_s);
    EXPECT_TRUE(isDismissed);
    EXPECT_FALSE(QFile::exists(pasted));
    EXPECT_TRUE(QFile::exists(first)) << "the user's";
}

TEST_F(PelinorComposeWindowTest, IsPostedWithItsPicturesByKeys)
{
    controller.reset();
    const TwitterUserPtr bob = KRTestUser(u"2"_s, u"bob"_s);
    bob->setFullName(u"Bob B."_s);
    open(std::nullopt, [&](auto& made) { made.setInReplyToStatus(KRTestStatus(u"42"_s, bob)); });
    EXPECT_EQ(controller->window().windowTitle(), u"In reply to Bob B.[*]"_s);
    EXPECT_EQ(draft().text, u"@bob "_s);
    keys("Ctrl+Z");
    EXPECT_FALSE(controller->window().isWindowModified()) << "nothing to undo, nothing to lose";
    QTest::keyClicks(&view(), u"see http://long.example/page"_s);
    defaults.setInteger("URLShorteningServicePreferredService", 1);
    answer("/TinyURLAPIHost/api-create.php", KRTestServer::always(200, "http://s.example/1"));
    keys("Ctrl+Shift+L");
    ASSERT_TRUE(waitFor([this] { return draft().text == u"@bob see http://s.example/1"; }));
    keys("Ctrl+Z");
    EXPECT_EQ(draft().text, u"@bob see http://long.example/page"_s);
    keys("Ctrl+Shift+Z");
    EXPECT_TRUE(view().attachFile(picture(u"1.png"_s)));
    EXPECT_TRUE(frameHasCloseButton());
    keys("Ctrl+Return");
    EXPECT_TRUE(view().isReadOnly());
    EXPECT_FALSE(frameHasCloseButton());
    ASSERT_TRUE(waitFor([this] { return isDismissed; }));
    ASSERT_EQ(requestsTo(update).size(), 1);
    const QByteArray body = requestsTo(update)[0].body;
    EXPECT_TRUE(body.contains("see+http%3A%2F%2Fs.example%2F1+http%3A%2F%2Fp.example%2F1+"))
        << body.constData();
    EXPECT_TRUE(draftsOnDisk().isEmpty());
}

TEST_F(PelinorComposeWindowTest, WhatWasWrittenComesBackInTheNextRun)
{
    const QString file = picture(u"1.png"_s);
    QTest::keyClicks(&view(), u"a b"_s);
    view().attachFile(file);
    keys("Return");
    QTest::keyClicks(&view(), u"c"_s);
    ASSERT_TRUE(waitFor([this] { return !draftsOnDisk().isEmpty(); }));
    const QPoint place = controller->window().pos();
    controller.reset();
    store = std::make_shared<PelinorDraftStore>(folder, directory.filePath(u"pictures"_s));
    QList<PelinorDraftStore::Stored> left = store->takeLeftDrafts();
    ASSERT_EQ(left.size(), 1);
    open(left[0], [](auto& made) { made.setWindowsBefore(1); });
    EXPECT_EQ(controller->window().pos() - place, QPoint(28, 28)) << "not over another one";
    EXPECT_EQ(draft().text, u"a b\ufffc\nc"_s);
    EXPECT_EQ(draft().attachments, (QList<PelinorAttachment> { { 3, file } }));
    EXPECT_EQ(sheet(), nullptr);
    keys("Escape");
    answerSheet(u"Cancel"_s);
    EXPECT_FALSE(isDismissed) << "it is as good as newly written";

    // Killed while it was on its way.
    left[0].draft.mayHaveGoneOut = true;
    open(left[0]);
    EXPECT_EQ(answerSheet(u"Look There"_s), u"Your tweet may have gone out."_s);
    EXPECT_TRUE(showsTimeline);
    EXPECT_TRUE(requestsTo(update).isEmpty()) << "nothing is sent by itself";
}

TEST_F(PelinorComposeWindowTest, AFailureAndACancelledUploadLeaveTheTextToBeEdited)
{
    answer(update, KRTestServer::always(403));
    QTest::keyClicks(&view(), u"abc"_s);
    keys("Ctrl+Return");
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(answerSheet(u"OK"_s), u"There was an error posting your tweet."_s);
    EXPECT_FALSE(view().isReadOnly());
    answer(upload, [](const auto&, auto& connection) { connection.waitForClose(); });
    view().attachFile(picture(u"1.png"_s));
    keys("Ctrl+Return");
    auto* const notice = &find<QLabel>("noticeField");
    ASSERT_TRUE(waitFor([&] { return notice->isVisible(); }));
    EXPECT_TRUE(notice->text().startsWith(u"Uploading file 1 of 1"_s));
    EXPECT_EQ(notice->textFormat(), Qt::PlainText);
    const auto* const indicator = controller->window().findChild<QProgressBar*>();
    EXPECT_TRUE(indicator->isVisible() && indicator->value() <= indicator->maximum());
    keys("Escape");
    EXPECT_FALSE(view().isReadOnly());
    EXPECT_FALSE(isDismissed);
    EXPECT_FALSE(notice->isVisible());
    EXPECT_EQ(draft().text, u"abc\ufffc"_s);
}

TEST_F(PelinorComposeWindowTest, KnownNamesAreOfferedAndEnterStaysEnter)
{
    know({ u"Bob"_s, u"bonnie"_s, u"carol"_s });
    auto* const list = &find<QListWidget>("nameCompletion");
    const auto type = [&](const QString& text) {
        QTest::keyClicks(&view(), text);
        EXPECT_TRUE(waitFor([&] { return list->isVisible(); }));
    };
    type(u"a@b.org @BO"_s);
    EXPECT_EQ(list->count(), 2);
    EXPECT_GE(list->y(), view().cursorRect().bottom()) << "below the line";
    EXPECT_TRUE(list->parentWidget()->rect().contains(list->geometry()));
    keys("Return");
    EXPECT_EQ(draft().text, u"a@b.org @BO\n"_s) << "nothing was chosen";
    EXPECT_FALSE(list->isVisible());
    type(u"@bo"_s);
    keys("Down Down Return");
    EXPECT_EQ(draft().text, u"a@b.org @BO\n@bonnie "_s);
    type(u"@c"_s);
    EXPECT_EQ(list->count(), 1);
    type(u"a"_s);
    EXPECT_TRUE(draft().text.endsWith(u"@ca"));
    keys("Escape");
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(sheet(), nullptr) << "it was for the list";
    keys("Escape");
    EXPECT_NE(sheet(), nullptr);
}

TEST_F(PelinorComposeWindowTest, LinksTagsAndNamesAreSeen)
{
    // Pixels of a colour in the picture of the text.
    const auto count = [this](const QColor& color) {
        const QImage image = view().viewport()->grab().toImage();
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                found += image.pixel(x, y) == color.rgb();
        }
        return found;
    };
    const PelinorDraftColors& colors = PelinorDraftColors::forPalette(view().palette());
    const struct {
        QString text;
        QColor ink;
        bool isLink;
    } cases[] = {
        { u"plain words"_s, Qt::black, false },
        { u"#####tag"_s, colors.hashtags, false },
        { u"@mmmmmmm"_s, colors.usernames, false },
        { u"http://www.example.org/"_s, colors.links, true },
        { u"\u05e9\u05dc\u05d5\u05dd http://www.example.org/ \u05e9"_s, colors.links, true },
    };
    for (const auto& test : cases) {
        view().setPlainText(test.text);
        EXPECT_GT(count(test.ink), 5) << qPrintable(test.text);
        EXPECT_EQ(count(colors.backdrop) > 500, test.isLink) << qPrintable(test.text);
        EXPECT_EQ(count(colors.backdropRim) > 50, test.isLink) << qPrintable(test.text);
    }
    const int whole = count(colors.backdrop);
    view().setPlainText(u"\u05e9\u05dc\u05d5\u05dd http://example.org/ \u05e9"_s);
    EXPECT_LT(count(colors.backdrop), whole) << "as wide as the link";
}

TEST_F(PelinorComposeWindowTest, MoviesAreAttachedAndPhotosGoToThePictures)
{
    controller.reset();
    bool isThere = true;
    open(std::nullopt, [&](auto& made) {
        made.setForceVideo(true);
        made.setCameraMaker(
            [&] { return isThere ? std::make_unique<FakeCamera>() : std::unique_ptr<PelinorCamera>(); });
    });
    const auto press = [this](const QString& title) {
        auto& button = find<QPushButton>("captureButton");
        ASSERT_TRUE(waitFor([&] { return button.isEnabled() && button.text() == title; }));
        button.click();
    };
    const QDir movies(directory.filePath(u"pictures"_s));
    press(u"Record"_s);
    EXPECT_EQ(movies.entryList(QDir::Files).size(), 1);
    find<QDialog>("captureSheet").reject();
    EXPECT_TRUE(waitFor([this] { return !isDialogOpen(); }));
    EXPECT_TRUE(movies.isEmpty(QDir::Files)) << "not wanted";
    keys("Ctrl+Shift+M");
    press(u"Record"_s);
    press(u"Stop"_s);
    EXPECT_TRUE(waitFor([this] { return !isDialogOpen(); }));
    ASSERT_EQ(draft().attachments.size(), 1);
    EXPECT_EQ(QFileInfo(draft().attachments[0].filename).dir(), movies);
    controller->takePhoto();
    press(u"Take Photo"_s);
    EXPECT_TRUE(log.contains(u"got output image "_s));
    EXPECT_TRUE(find<QLabel>("noticeField").text().contains(u".jpg"));
    EXPECT_EQ(draft().attachments.size(), 1);
    EXPECT_TRUE(waitFor([this] { return !isDialogOpen(); }));
    isThere = false;
    controller->recordVideo();
    EXPECT_FALSE(find<QPushButton>("captureButton").isVisible());
}

TEST_F(PelinorComposeWindowTest, TheRecipientIsCompletedOrLookedUp)
{
    know({ u"Bob"_s, u"bonnie"_s, u"carol"_s });
    controller.reset();
    KRMotion::setEnabledByProgram(true);
    open(std::nullopt, [](auto& made) { made.setPromptToDirectMessageUser(true); });
    const QPoint middle = controller->window().screen()->availableGeometry().center();
    EXPECT_LT(controller->window().geometry().top(), middle.y() / 2) << "on its way from the top";
    EXPECT_LT((find<QDialog>("directMessageUserPanel").geometry().center() - middle).manhattanLength(), 9);
    auto& field = *find<QComboBox>("directMessageUserComboBox").lineEdit();
    QTest::keyClicks(&field, u"@bo"_s);
    EXPECT_EQ(field.text() + u'|' + field.selectedText(), u"@bob|b"_s);
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), u"@bo"_s) << "what was deleted stays away";
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_EQ(field.text(), u"bonnie"_s);
    field.selectAll();
    QTest::keyClicks(&field, u"dora"_s);
    answer("/users/show/dora.xml", 404, "");
    answer("/users/show.xml", 404, "");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_FALSE(field.isEnabled());
    EXPECT_TRUE(find<QWidget>("directMessageProgressIndicator").isVisible());
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    delete sheet();
    EXPECT_TRUE(field.isEnabled());
    field.setText(u" @BOB "_s);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(controller->window().windowTitle(), u"Direct Message: Bob[*]"_s);
    auto& send = find<QPushButton>("postButton");
    EXPECT_EQ(send.text(), u"Send"_s);
    EXPECT_GT(send.x(), find<QPushButton>("cancelButton").x());
    EXPECT_EQ(send.parentWidget(), find<QPushButton>("actionPopUpButton").parentWidget());
}

TEST_F(PelinorComposeWindowTest, TheAccountIsChosenAmongThoseThatAreThere)
{
    auto& menu = find<QComboBox>("accountPopUpButton");
    EXPECT_FALSE(menu.isVisible());
    const auto bob = TwitterAccount::accountWithUsername(u"bob"_s, u"x"_s, twitter->accountContext());
    twitter->addAccount(bob);
    EXPECT_EQ(menu.currentText(), u"alice"_s);
    EXPECT_FALSE(menu.itemIcon(1).isNull());
    QTest::keyClick(&menu, Qt::Key_Down);
    EXPECT_EQ(controller->account(), bob);
    twitter->removeAccount(bob);
    EXPECT_TRUE(menu.isVisible()) << "another one is needed";
    EXPECT_EQ(menu.currentIndex(), -1);
    QTest::keyClicks(&view(), u"abcd"_s);
    keys("Ctrl+Return");
    EXPECT_EQ(answerSheet(u"OK"_s), u"Error"_s);
    EXPECT_NE(find<QPushButton>("actionPopUpButton").menu(), nullptr);
    keys("Ctrl+Shift+A");
    ASSERT_TRUE(isDialogOpen());
    EXPECT_TRUE(controller->window().findChild<QDialog*>()->isVisible());
}

// The whole road: a real service over TLS, its own picture store and a shortener beside it.
TEST(PelinorComposeJourneyTest, AReplyWithTwoPicturesAndAShortLinkArrives)
{
    KRMotion::setEnabledByProgram(false);
    KRQtRunLoopDriver driver;
    KRTestLocalService service;
    ASSERT_TRUE(service.isRunning());
    KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
    settings.extraCAFile = service.authorityFile();
    KRHTTPTransportSettings::setCurrent(settings);
    const QTemporaryDir directory;
    KRUserDefaults defaults { directory.filePath(u"pelinor.ini"_s) };
    const TwitterServiceHosts hosts
        = TwitterServiceHosts::hostsWithDefaults(defaults, service.servicesFile()).value();
    const auto twitter = std::make_shared<Twitter>(TwitterEnvironment { &defaults, hosts, false });
    const auto account = TwitterAccount::accountWithUsername(u"alice"_s,
        u"wonderland"_s,
        twitter->accountContextForSite({ .hosts = hosts, .takesUploads = true }));
    twitter->addAccount(account);
    const auto posts = [&] { return account->timelineStream()->storedStatuses(); };
    account->refresh();
    ASSERT_TRUE(QTest::qWaitFor([&] { return posts().size() > 5; }, 20'000));
    const TwitterStatusPtr answered = posts().first();

    PelinorComposeWindowController controller(*twitter,
        defaults,
        std::make_shared<PelinorDraftStore>(directory.filePath(u"drafts"_s), directory.path()));
    controller.setAccount(account);
    controller.setInReplyToStatus(answered);
    controller.showWindow();
    PelinorTextView& view = controller.textView();
    QTest::keyClicks(&view, u"look http://example.org/a/rather/long/address "_s);
    for (const char* const name : { "1.png", "2.png" }) {
        const QString path = directory.filePath(QLatin1String(name));
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        ASSERT_TRUE(image.save(path) && view.attachFile(path));
    }
    controller.shortenURLs();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.toPlainText().contains(u"address"); }, 20'000));
    controller.post();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !controller.window().isVisible(); }, 20'000));
    account->refresh();
    ASSERT_TRUE(QTest::qWaitFor([&] { return posts().first()->text().contains(u"look"); }, 20'000));
    const QRegularExpression expected(
        u"^@%1 look http://\\S+/\\S+  https://%2/attachment/\\S+  https://%2/attachment/\\S+$"_s.arg(
            answered->fromUser()->username(),
            QRegularExpression::escape(service.httpsHost())));
    EXPECT_TRUE(expected.match(posts().first()->text().trimmed()).hasMatch())
        << qPrintable(posts().first()->text());
    EXPECT_EQ(posts().first()->inReplyToStatusID(), answered->statusID());
    KRMotion::setEnabledByProgram(true);
}
