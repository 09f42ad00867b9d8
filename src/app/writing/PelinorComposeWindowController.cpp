#include "app/writing/PelinorComposeWindowController.h"

#include "app/look/PelinorAlert.h"
#include "app/writing/PelinorDraftHighlighter.h"
#include "app/writing/PelinorRecipientSheet.h"
#include "core/Twitter.h"
#include "foundation/KRLog.h"
#include "foundation/KRRunLoop.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/transitions/KRWindowAppearance.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace {

constexpr int AppearanceSteps = 20;
constexpr int TextSize = 14;
constexpr int TextInset = 8;
constexpr int BottomBorder = 37;
constexpr QSize InitialSize(420, 190);
constexpr QSize MinimumSize(320, 140);

/// A response of the background thread, brought to the main one, if its receiver is still there by then.
template <class Result>
KRCallback<Result> onMainThread(PelinorComposeWindowController* receiver,
    void (PelinorComposeWindowController::*method)(const KRResult<Result>&))
{
    return KRCallback<Result>::withFunction(
        [receiver = QPointer(receiver), method](const KRResult<Result>& response) {
            KRRunLoop::main().post([receiver, method, response] {
                if (receiver)
                    (receiver->*method)(response);
            });
        });
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

private:
    PelinorComposeWindowController& m_controller;
};

PelinorComposeWindowController::PelinorComposeWindowController(Twitter& twitter)
    : m_twitter(twitter)
    , m_window(std::make_unique<Window>(*this))
{
    _loadWindow();
}

PelinorComposeWindowController::~PelinorComposeWindowController() = default;

QWidget& PelinorComposeWindowController::window()
{
    return *m_window;
}

void PelinorComposeWindowController::_loadWindow()
{
    m_window->setObjectName(u"composeWindow"_s);
    m_window->setMinimumSize(MinimumSize);
    m_window->resize(InitialSize);
    m_textView = new QPlainTextEdit(m_window.get());
    m_textView->setObjectName(u"textView"_s);
    m_textView->setAccessibleName(tr("Text of the post"));
    m_textView->setFont(KRMessageFont(TextSize));
    m_textView->setFrameShape(QFrame::NoFrame);
    m_textView->setTabChangesFocus(true);
    m_textView->document()->setDocumentMargin(TextInset);
    new PelinorDraftHighlighter(m_textView->document());
    m_accountPopUpButton = new QComboBox(m_window.get());
    m_accountPopUpButton->setObjectName(u"accountPopUpButton"_s);
    m_accountPopUpButton->setAccessibleName(tr("Post as"));
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
    controls->addStretch(1);
    controls->addWidget(m_remainingField);
    controls->addWidget(m_cancelButton);
    controls->addWidget(m_postButton);
    auto* const layout = new QVBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_textView, 1);
    layout->addWidget(border);

    connect(m_postButton, &QPushButton::clicked, this, &PelinorComposeWindowController::post);
    connect(m_cancelButton, &QPushButton::clicked, this, &PelinorComposeWindowController::cancel);
    connect(m_textView, &QPlainTextEdit::textChanged, this, [this] { _textDidChange(); });
    connect(m_accountPopUpButton, &QComboBox::activated, this, [this](int index) {
        m_account = m_twitter.accounts().value(index, m_account);
        _updateRemainingField();
    });
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Enter }) {
        auto* const send = new QShortcut(QKeySequence(Qt::CTRL | key), m_window.get());
        connect(send, &QShortcut::activated, this, &PelinorComposeWindowController::post);
    }
    auto* const close = new QShortcut(QKeySequence(Qt::Key_Escape), m_window.get());
    connect(close, &QShortcut::activated, this, &PelinorComposeWindowController::cancel);
}

void PelinorComposeWindowController::_buildAccountMenu()
{
    m_accountPopUpButton->clear();
    for (const TwitterAccountPtr& account : m_twitter.accounts())
        m_accountPopUpButton->addItem(account->qualifiedName());
    m_accountPopUpButton->setCurrentIndex(int(m_twitter.accounts().indexOf(m_account)));
    m_accountPopUpButton->setVisible(m_twitter.accounts().size() >= 2);
}

void PelinorComposeWindowController::showWindow()
{
    if (!m_account)
        KRLog(u"ERROR: compose screen up, no account set"_s);
    _buildAccountMenu();
    _updateWindowTitle();
    m_initialText = m_textView->toPlainText();
    _updateRemainingField();
    KRWindowAppearance::showWindow(*m_window, m_sourcePoint, AppearanceSteps);
    m_textView->setFocus();
    if (m_promptToDirectMessageUser)
        _promptForRecipient();
}

void PelinorComposeWindowController::_updateWindowTitle()
{
    if (m_directMessageUser) {
        m_window->setWindowTitle(tr("Direct Message: %1").arg(m_directMessageUser->username()) + u"[*]"_s);
        m_postButton->setText(tr("Send"));
        return;
    }
    m_window->setWindowTitle(tr("New Tweet") + u"[*]"_s);
    if (m_promptToDirectMessageUser)
        return;
    if (m_inReplyToStatus && m_inReplyToStatus->fromUser()) {
        const TwitterUserPtr& author = m_inReplyToStatus->fromUser();
        m_window->setWindowTitle(tr("In reply to %1").arg(author->fullName().simplified()) + u"[*]"_s);
        m_textView->insertPlainText(u"@%1 "_s.arg(author->username()));
    } else if (!m_defaultText.isEmpty()) {
        m_textView->insertPlainText(m_defaultText);
    }
}

void PelinorComposeWindowController::_promptForRecipient()
{
    QStringList names;
    for (const TwitterUserPtr& user : m_twitter.cachedUsers())
        names.append(user->username().toLower());
    names.sort(Qt::CaseInsensitive);
    auto* const sheet = new PelinorRecipientSheet(m_account, names, m_window.get());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &PelinorRecipientSheet::recipientChosen, this, [this](const TwitterUserPtr& user) {
        m_directMessageUser = user;
        _updateWindowTitle();
    });
    sheet->open();
}

qsizetype PelinorComposeWindowController::_longestPost() const
{
    return m_account ? m_account->longestPost() : TwitterAccount::usualLongestPost;
}

void PelinorComposeWindowController::_textDidChange()
{
    m_window->setWindowModified(m_textView->toPlainText() != m_initialText);
    _updateRemainingField();
}

void PelinorComposeWindowController::_updateRemainingField()
{
    const qsizetype longest = _longestPost();
    // A site without a limit leaves nothing to count down.
    m_remainingField->setVisible(longest > 0);
    const qsizetype remaining = longest - m_textView->toPlainText().size();
    m_remainingField->setText(QString::number(remaining));
    m_remainingField->setAccessibleName(tr("%1 characters left").arg(remaining));
    QPalette palette = m_window->palette();
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(0.5F);
    if (longest > 0 && remaining < 0)
        color = color.lightnessF() > 0.5F ? QColor(0xF2, 0x9A, 0x8E) : QColor::fromRgbF(0.5F, 0, 0, 0.8F);
    palette.setColor(QPalette::WindowText, color);
    m_remainingField->setPalette(palette);
}

void PelinorComposeWindowController::post()
{
    const QString text = m_textView->toPlainText();
    if (text.isEmpty() || !m_account || m_isPosting)
        return;
    if (m_directMessageUser) {
        _setPosting(true);
        m_account->sendDirectMessage(text,
            *m_directMessageUser,
            onMainThread(this, &PelinorComposeWindowController::_didMessage));
        return;
    }
    if (m_promptToDirectMessageUser) {
        _promptForRecipient();
        return;
    }
    if (_longestPost() > 0 && text.size() > _longestPost()) {
        _showSheet(tr("Message too long"), tr("Your post must be under %1 characters.").arg(_longestPost()));
        return;
    }
    _setPosting(true);
    m_account->update(text,
        m_inReplyToStatus ? m_inReplyToStatus->statusID() : QString(),
        onMainThread(this, &PelinorComposeWindowController::_didPost));
}

void PelinorComposeWindowController::_setPosting(bool isPosting)
{
    m_isPosting = isPosting;
    m_textView->setReadOnly(isPosting);
    m_postButton->setEnabled(!isPosting);
    m_cancelButton->setEnabled(!isPosting);
    m_accountPopUpButton->setEnabled(!isPosting);
}

void PelinorComposeWindowController::_didPost(const KRResult<TwitterStatusPtr>& response)
{
    _setPosting(false);
    if (!response.isError()) {
        _dismiss();
        return;
    }
    KRLog(u"Posting error: %1"_s.arg(response.error().description));
    _showSheet(tr("There was an error posting your tweet."), response.error().description);
}

void PelinorComposeWindowController::_didMessage(const KRResult<TwitterDirectMessagePtr>& response)
{
    _setPosting(false);
    if (response.isError())
        _showSheet(tr("There was an error sending your direct message."), response.error().description);
    else
        _dismiss();
}

void PelinorComposeWindowController::_showSheet(const QString& message, const QString& information)
{
    PelinorShowAlert(QMessageBox::Critical, message, information, m_window.get());
}

void PelinorComposeWindowController::cancel()
{
    m_window->close();
}

bool PelinorComposeWindowController::_windowShouldClose()
{
    // What is on its way cannot be called back.
    if (m_isPosting)
        return false;
    if (!m_window->isWindowModified())
        return true;
    QMessageBox* const sheet = PelinorMakeAlert(QMessageBox::Question,
        tr("Are you sure you want to discard this unsaved tweet?"),
        tr("Your tweet will be lost."),
        m_window.get());
    QPushButton* const discard = sheet->addButton(tr("Discard"), QMessageBox::DestructiveRole);
    sheet->setDefaultButton(discard);
    sheet->setEscapeButton(sheet->addButton(tr("Cancel"), QMessageBox::RejectRole));
    connect(discard, &QPushButton::clicked, this, [this] {
        m_window->setWindowModified(false);
        m_window->close();
    });
    sheet->open();
    return false;
}

void PelinorComposeWindowController::_dismiss()
{
    if (std::exchange(m_isDismissed, true))
        return;
    m_window->hide();
    if (m_delegate)
        m_delegate->composeWindowDismiss(*this);
}
