#include "app/writing/PelinorComposeWindowController.h"

#include "app/look/PelinorAlert.h"
#include "app/look/PelinorDraftColors.h"
#include "app/writing/PelinorAccountMenu.h"
#include "app/writing/PelinorDraftHighlighter.h"
#include "app/writing/PelinorNameCompletion.h"
#include "app/writing/PelinorRecipientSheet.h"
#include "app/writing/PelinorTextView.h"
#include "foundation/KRLog.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/transitions/KRWindowAppearance.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStandardPaths>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

constexpr int AppearanceSteps = 20;
constexpr int CascadeStep = 28;
constexpr int CascadeLength = 8;
constexpr int TextSize = 14;
constexpr int TextInset = 8;
constexpr int BottomBorder = 37;
constexpr QSize InitialSize(460, 190);
constexpr QSize MinimumSize(360, 140);

QPoint topCentreOfMainScreen()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    return { screen.left() + screen.width() / 2, screen.top() };
}

// Of the frame that the desktop draws. Unlike the widget's own flags these change without the window going
// and coming back.
void setFrameButtonsEnabled(const QWidget& window, bool isEnabled)
{
    const Qt::WindowFlags buttons
        = Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint;
    const Qt::WindowFlags flags = window.windowFlags();
    if (QWindow* const handle = window.windowHandle())
        handle->setFlags(
            isEnabled ? flags : (flags & ~buttons) | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
}

// A new file among the user's pictures.
QString newPhotoPath(const QString& suffix)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    folder.mkpath(u"."_s);
    return folder.filePath(
        u"Pelinor %1.%2"_s.arg(QDateTime::currentDateTime().toString(u"yyyy-MM-dd hh.mm.ss.zzz"), suffix));
}

} // namespace

class PelinorComposeWindowController::Window final : public QWidget {
public:
    explicit Window(PelinorComposeWindowController& controller)
        : m_controller(controller)
    {
    }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        if (!m_controller._windowShouldClose()) {
            event->ignore();
            return;
        }
        QWidget::closeEvent(event);
        m_controller._dismiss();
    }
    void changeEvent(QEvent* event) override
    {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            m_controller._paletteDidChange();
    }

private:
    PelinorComposeWindowController& m_controller;
};

PelinorComposeWindowController::PelinorComposeWindowController(Twitter& twitter,
    const KRUserDefaults& defaults,
    const std::shared_ptr<PelinorDraftStore>& store,
    const std::optional<PelinorDraftStore::Stored>& left)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_store(store)
    , m_draft(left ? left->draft : PelinorDraft())
    , m_keeper(store, left ? left->file : nullptr)
    , m_posting(
          std::make_shared<PelinorPosting>(twitter, &defaults, static_cast<PelinorPostingDelegate*>(this)))
    , m_sourcePoint(topCentreOfMainScreen())
    , m_window(std::make_unique<Window>(*this))
    , m_wasLeft(left)
{
    _loadWindow();
    _loadShortcuts();
    auto* const completion = new PelinorNameCompletion(*m_textView, twitter);
    m_textView->setKeyFilter([completion](QKeyEvent& event) { return completion->handleKey(event); });
    m_shortening = std::make_shared<PelinorLinkShortening>(
        PelinorLinkShortening::Editor { [this] { return m_draft.text; },
            [this](KRRange range, const QString& link) { m_textView->replaceRange(range, link); },
            [this](bool isBusy) { _setBusy(isBusy); } });
    m_keeper.setFailureHandler([this](const std::optional<KRError>& error) { _showFailureToKeep(error); });
}

PelinorComposeWindowController::~PelinorComposeWindowController()
{
    // Neither tells a window that is going.
    m_posting->setDelegate(nullptr);
    m_textView->disconnect(this);
}

QWidget& PelinorComposeWindowController::window()
{
    return *m_window;
}

// The window

void PelinorComposeWindowController::_loadWindow()
{
    m_window->setObjectName(u"composeWindow"_s);
    m_window->setMinimumSize(MinimumSize);
    m_window->resize(InitialSize);
    m_textView = new PelinorTextView(m_window.get());
    m_textView->setObjectName(u"textView"_s);
    m_textView->setAccessibleName(tr("Text of the post"));
    m_textView->setFont(KRMessageFont(TextSize));
    m_textView->setFrameShape(QFrame::NoFrame);
    m_textView->setTabChangesFocus(true);
    m_textView->document()->setDocumentMargin(TextInset);
    m_textView->setNewAttachmentPath([this] { return m_store->newAttachmentPath(u"png"_s); });
    m_highlighter = new PelinorDraftHighlighter(m_textView->document());
    m_noticeField = new QLabel(m_window.get());
    m_noticeField->setObjectName(u"noticeField"_s);
    m_noticeField->setTextFormat(Qt::PlainText);
    m_noticeField->setWordWrap(true);
    m_noticeField->setContentsMargins(10, 4, 10, 4);
    m_noticeField->hide();
    auto* const layout = new QVBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_textView, 1);
    layout->addWidget(m_noticeField);
    _loadControls();
    connect(m_textView, &PelinorTextView::textChanged, this, [this] { _textDidChange(); });
    connect(m_textView, &PelinorTextView::pictureNotStored, this, [this](const QString& path) {
        const KRError error { {}, -1, tr("The picture could not be stored as %1").arg(path) };
        _showSheet(PelinorSheet::uploadFailed(&error));
    });
}

void PelinorComposeWindowController::_loadControls()
{
    m_accountPopUpButton = new PelinorAccountMenu(m_twitter, m_window.get());
    m_actionPopUpButton = new QPushButton(tr("Add"), m_window.get());
    m_actionPopUpButton->setObjectName(u"actionPopUpButton"_s);
    m_actionPopUpButton->setAccessibleName(tr("Attachments and links"));
    m_actionPopUpButton->setFocusPolicy(Qt::TabFocus);
    m_composeProgressIndicator = new QProgressBar(m_window.get());
    m_composeProgressIndicator->setObjectName(u"composeProgressIndicator"_s);
    m_composeProgressIndicator->setAccessibleName(tr("Progress"));
    m_composeProgressIndicator->setMaximumWidth(90);
    m_composeProgressIndicator->setTextVisible(false);
    m_composeProgressIndicator->hide();
    m_remainingField = new QLabel(m_window.get());
    m_remainingField->setObjectName(u"remainingField"_s);
    m_cancelButton = new QPushButton(tr("Cancel"), m_window.get());
    m_cancelButton->setObjectName(u"cancelButton"_s);
    m_postButton = new QPushButton(tr("Post"), m_window.get());
    m_postButton->setObjectName(u"postButton"_s);
    m_postButton->setToolTip(tr("Ctrl+Enter"));

    auto* const border = new QWidget(m_window.get());
    border->setMinimumHeight(BottomBorder);
    auto* const controls = new QHBoxLayout(border);
    controls->setContentsMargins(10, 4, 10, 4);
    controls->addWidget(m_accountPopUpButton);
    controls->addWidget(m_actionPopUpButton);
    controls->addWidget(m_composeProgressIndicator);
    controls->addStretch(1);
    controls->addWidget(m_remainingField);
    controls->addWidget(m_cancelButton);
    controls->addWidget(m_postButton);
    m_window->layout()->addWidget(border);
    connect(m_postButton, &QPushButton::clicked, this, &PelinorComposeWindowController::post);
    connect(m_cancelButton, &QPushButton::clicked, this, &PelinorComposeWindowController::cancel);
    connect(m_accountPopUpButton,
        &PelinorAccountMenu::accountChosen,
        this,
        [this](const TwitterAccountPtr& account) {
            m_account = account;
            _updateDraft();
        });
}

void PelinorComposeWindowController::_loadShortcuts()
{
    const auto onKeys = [this](const QKeySequence& keys, void (PelinorComposeWindowController::*method)()) {
        connect(new QShortcut(keys, m_window.get()), &QShortcut::activated, this, method);
    };
    onKeys(QKeySequence(Qt::CTRL | Qt::Key_Return), &PelinorComposeWindowController::post);
    onKeys(QKeySequence(Qt::CTRL | Qt::Key_Enter), &PelinorComposeWindowController::post);
    onKeys(QKeySequence(Qt::Key_Escape), &PelinorComposeWindowController::cancel);
    auto* const menu = new QMenu(m_actionPopUpButton);
    const auto addAction = [&](const QString& title,
                               const QKeySequence& keys,
                               const QString& name,
                               void (PelinorComposeWindowController::*method)()) {
        QAction* const action = menu->addAction(title, keys);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, method);
        // The menu is closed most of the time, and the keys are the window's.
        m_window->addAction(action);
    };
    using Controller = PelinorComposeWindowController;
    addAction(tr("&Attach a File..."), QKeySequence(u"Ctrl+Shift+A"_s), u"addImage"_s, &Controller::addImage);
    addAction(tr("&Record a Movie..."),
        QKeySequence(u"Ctrl+Shift+M"_s),
        u"recordVideo"_s,
        &Controller::recordVideo);
    addAction(tr("Take a &Photo..."), {}, u"takePhoto"_s, &Controller::takePhoto);
    menu->addSeparator();
    addAction(tr("&Shorten Links"),
        QKeySequence(u"Ctrl+Shift+L"_s),
        u"shortenURLs"_s,
        &Controller::shortenURLs);
    m_actionPopUpButton->setMenu(menu);
}

void PelinorComposeWindowController::showWindow()
{
    for (const TwitterAccountPtr& account : m_twitter.accounts()) {
        if (m_wasLeft && account->qualifiedName() == m_draft.accountName)
            m_account = account;
    }
    if (!m_account)
        KRLog(u"ERROR: compose screen up, no account set"_s);
    m_accountPopUpButton->setAccount(m_account);
    const PelinorDraft left = m_draft;
    _updateWindowTitle();
    if (m_wasLeft) {
        m_textView->setDraft(left);
        m_draft.mayHaveGoneOut = left.mayHaveGoneOut;
    }
    // What the window put in itself is nothing to lose, and nothing to undo.
    m_edits.begin(m_draft, m_wasLeft);
    m_textView->document()->clearUndoRedoStacks();
    m_window->setWindowModified(m_edits.isEdited());
    _updateRemainingField();
    const int steps = m_windowsBefore % CascadeLength;
    KRWindowAppearance::showWindow(*m_window,
        m_sourcePoint,
        AppearanceSteps,
        { steps * CascadeStep, steps * CascadeStep });
    m_textView->setFocus();
    if (m_draft.mayHaveGoneOut)
        _showSheet(m_draft.isDirectMessage ? PelinorSheet::messageMayHaveGoneOut(nullptr)
                                           : PelinorSheet::postMayHaveGoneOut(nullptr));
    else if (m_draft.isDirectMessage && m_draft.recipientUsername.isEmpty())
        _promptForRecipient();
    else if (m_forceVideo)
        recordVideo();
}

void PelinorComposeWindowController::_updateWindowTitle()
{
    if (!m_draft.recipientUsername.isEmpty()) {
        m_window->setWindowTitle(tr("Direct Message: %1").arg(m_draft.recipientUsername) + u"[*]"_s);
        m_postButton->setText(tr("Send"));
        return;
    }
    if (m_draft.isDirectMessage) {
        m_window->setWindowTitle(tr("New Direct Message") + u"[*]"_s);
        m_postButton->setText(tr("Send"));
        return;
    }
    m_window->setWindowTitle(tr("New Tweet") + u"[*]"_s);
    if (!m_draft.inReplyToUsername.isEmpty()) {
        m_window->setWindowTitle(tr("In reply to %1").arg(m_draft.inReplyToFullName.simplified()) + u"[*]"_s);
        m_textView->insertPlainText(m_draft.replyPrefix());
    } else if (!m_defaultText.isEmpty()) {
        m_textView->insertPlainText(m_defaultText);
    }
}

void PelinorComposeWindowController::_promptForRecipient()
{
    auto* const sheet = new PelinorRecipientSheet(m_twitter, m_account, m_window.get());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &PelinorRecipientSheet::recipientChosen, this, [this](const TwitterUserPtr& user) {
        m_draft.setRecipient(user.get());
        _updateWindowTitle();
        _updateDraft();
    });
    KRWindowAppearance::openDialog(*sheet, *m_window);
}

// The text

void PelinorComposeWindowController::_textDidChange()
{
    m_draft.mayHaveGoneOut = false;
    _updateDraft();
}

void PelinorComposeWindowController::_updateDraft()
{
    m_textView->fillDraft(m_draft);
    m_draft.accountName = m_account ? m_account->qualifiedName() : QString();
    const bool wasChanged = m_edits.isChanged();
    m_edits.note(m_draft);
    if (m_window->isVisible()) {
        m_window->setWindowModified(m_edits.isEdited());
        if (wasChanged || m_edits.isChanged())
            m_keeper.keep(m_draft);
    }
    _updateRemainingField();
}

void PelinorComposeWindowController::_showFailureToKeep(const std::optional<KRError>& error)
{
    m_noticeField->setVisible(error.has_value());
    if (error)
        m_noticeField->setText(
            tr("This text would be lost if the computer stopped now. %1").arg(error->description));
}

void PelinorComposeWindowController::_updateRemainingField()
{
    const PelinorDraftCount count(m_draft,
        m_account ? m_account->longestPost() : TwitterAccount::usualLongestPost);
    // A site without a limit leaves nothing to count down.
    m_remainingField->setVisible(count.isLimited);
    m_remainingField->setText(QString::number(count.remaining));
    m_remainingField->setAccessibleName(tr("%1 characters left").arg(count.remaining));
    QPalette palette = m_window->palette();
    const PelinorDraftColors& colors = PelinorDraftColors::forPalette(palette);
    palette.setColor(QPalette::WindowText, count.isOver() ? colors.tooMany : colors.remaining);
    m_remainingField->setPalette(palette);
}

void PelinorComposeWindowController::_paletteDidChange()
{
    m_highlighter->rehighlight();
    _updateRemainingField();
}

void PelinorComposeWindowController::addImage()
{
    if (m_posting->isPosting())
        return;
    auto* const panel = new QFileDialog(m_window.get(),
        tr("Attach a File"),
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setNameFilters(
        { tr("Pictures and movies (*.png *.jpg *.jpeg *.gif *.webp *.bmp *.tif *.tiff *.svg "
             "*.mp4 *.mov *.webm *.mkv *.avi *.ogv *.mpg)"),
            tr("All files (*)") });
    connect(panel, &QFileDialog::fileSelected, this, [this](const QString& path) {
        m_textView->attachFile(path);
    });
    panel->open();
}

void PelinorComposeWindowController::recordVideo()
{
    _capture(PelinorCaptureSheet::Kind::Movie);
}

void PelinorComposeWindowController::takePhoto()
{
    _capture(PelinorCaptureSheet::Kind::Photo);
}

void PelinorComposeWindowController::_capture(PelinorCaptureSheet::Kind kind)
{
    if (m_posting->isPosting())
        return;
    const bool isMovie = kind == PelinorCaptureSheet::Kind::Movie;
    const auto newMoviePath
        = [store = m_store](const QString& suffix) { return store->newAttachmentPath(suffix); };
    auto* const sheet = new PelinorCaptureSheet(kind,
        m_cameraMaker(),
        isMovie ? PelinorCaptureSheet::NewPath(newMoviePath) : &newPhotoPath,
        m_window.get());
    connect(sheet, &PelinorCaptureSheet::captured, this, [this, isMovie](const QString& path) {
        if (isMovie) {
            m_textView->attachFile(path);
            return;
        }
        KRLog(u"got output image %1"_s.arg(path));
        m_noticeField->setText(tr("The photo is in your pictures, as %1.").arg(QFileInfo(path).fileName()));
        m_noticeField->show();
    });
    KRWindowAppearance::openDialog(*sheet, *m_window);
}

void PelinorComposeWindowController::shortenURLs()
{
    if (m_account && !m_posting->isPosting())
        m_shortening->shortenURLs(PelinorPosting::serviceContext(m_twitter, *m_account, &m_defaults));
}

// Posting

void PelinorComposeWindowController::post()
{
    if (m_draft.isDirectMessage && m_draft.recipientUsername.isEmpty())
        _promptForRecipient();
    else
        m_posting->post(m_draft, m_account);
}

void PelinorComposeWindowController::_setPosting(bool isPosting)
{
    setFrameButtonsEnabled(*m_window, !isPosting);
    m_textView->setReadOnly(isPosting);
    m_postButton->setEnabled(!isPosting);
    m_accountPopUpButton->setEnabled(!isPosting);
    m_actionPopUpButton->setEnabled(!isPosting);
    // What has been sent cannot be called back; until then it can.
    m_cancelButton->setEnabled(true);
    m_noticeField->hide();
    _setBusy(isPosting);
}

void PelinorComposeWindowController::_setBusy(bool isBusy)
{
    m_busyCount += isBusy ? 1 : -1;
    m_composeProgressIndicator->setRange(0, 0);
    m_composeProgressIndicator->setToolTip({});
    m_composeProgressIndicator->setVisible(m_busyCount > 0);
}

void PelinorComposeWindowController::postingDidProgress(int number,
    int count,
    const KRUploadProgress& progress)
{
    const QLocale locale;
    const QString text = progress.total > 0
        ? tr("Uploading file %1 of %2: %3 of %4")
              .arg(number)
              .arg(count)
              .arg(locale.formattedDataSize(progress.sent), locale.formattedDataSize(progress.total))
        : tr("Uploading file %1 of %2").arg(number).arg(count);
    m_composeProgressIndicator->setRange(0, progress.total > 0 ? 1000 : 0);
    m_composeProgressIndicator->setValue(progress.total > 0 ? int(1000 * progress.sent / progress.total) : 0);
    m_composeProgressIndicator->setToolTip(text);
    m_noticeField->setText(text);
    m_noticeField->show();
}

void PelinorComposeWindowController::postingWillSend()
{
    m_cancelButton->setEnabled(false);
    m_noticeField->hide();
    m_composeProgressIndicator->setRange(0, 0);
    m_draft.mayHaveGoneOut = true;
    m_keeper.keepNow(m_draft);
}

void PelinorComposeWindowController::postingShowSheet(const PelinorSheet& sheet)
{
    m_draft.mayHaveGoneOut = sheet.choice == PelinorSheet::Choice::ShowTimeline;
    m_keeper.keep(m_draft);
    _showSheet(sheet);
}

void PelinorComposeWindowController::_showSheet(const PelinorSheet& sheet)
{
    QMessageBox* const box = PelinorMakeAlert(sheet.isCritical ? QMessageBox::Critical
            : sheet.choice == PelinorSheet::Choice::None       ? QMessageBox::Warning
                                                               : QMessageBox::Question,
        sheet.message,
        sheet.informativeText,
        m_window.get());
    QPushButton* choice = nullptr;
    if (!sheet.choiceButton.isEmpty()) {
        choice = box->addButton(sheet.choiceButton, QMessageBox::AcceptRole);
        connect(choice, &QPushButton::clicked, this, [this, made = sheet.choice] { _choose(made); });
    }
    QPushButton* const cancel = box->addButton(sheet.cancelButton, QMessageBox::RejectRole);
    box->setDefaultButton(choice && sheet.isChoiceDefault ? choice : cancel);
    box->setEscapeButton(cancel);
    KRWindowAppearance::openDialog(*box, *m_window);
}

void PelinorComposeWindowController::_choose(PelinorSheet::Choice choice)
{
    if (choice == PelinorSheet::Choice::PostWithTwitlonger) {
        m_posting->postWithTwitlonger();
    } else if (choice == PelinorSheet::Choice::ShowTimeline) {
        if (m_delegate)
            m_delegate->composeWindowShowTimeline(*this);
    } else if (choice == PelinorSheet::Choice::Discard) {
        m_mayClose = true;
        m_window->close();
    }
}

// The end

void PelinorComposeWindowController::cancel()
{
    if (m_posting->isPosting())
        m_posting->cancel();
    else
        m_window->close();
}

bool PelinorComposeWindowController::_windowShouldClose()
{
    m_posting->cancel();
    // What is on its way cannot be called back.
    if (m_posting->isPosting())
        return false;
    if (m_mayClose || !m_window->isWindowModified())
        return true;
    _showSheet(PelinorSheet::askToDiscard());
    return false;
}

void PelinorComposeWindowController::_dismiss()
{
    if (std::exchange(m_isDismissed, true))
        return;
    m_keeper.forget();
    m_window->hide();
    if (m_delegate)
        m_delegate->composeWindowDismiss(*this);
}
