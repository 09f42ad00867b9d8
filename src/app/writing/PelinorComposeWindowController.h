#pragma once

#include "core/TwitterAccount.h"

#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <memory>

class PelinorComposeWindowController;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class Twitter;

/// Hears that a compose window is through. Main thread.
class PelinorComposeWindowControllerDelegate {
public:
    PelinorComposeWindowControllerDelegate() = default;
    PelinorComposeWindowControllerDelegate(const PelinorComposeWindowControllerDelegate&) = delete;
    PelinorComposeWindowControllerDelegate& operator=(const PelinorComposeWindowControllerDelegate&) = delete;
    virtual ~PelinorComposeWindowControllerDelegate() = default;

    /// Sent, or closed. The controller may be let go of; it is destroyed later.
    virtual void composeWindowDismiss(PelinorComposeWindowController& controller) = 0;
};

/// A window for a new post, a reply or a direct message. What did not go out stays in it. Main thread.
class PelinorComposeWindowController : public QObject {
    Q_OBJECT

public:
    /// The root object outlives the controller.
    explicit PelinorComposeWindowController(Twitter& twitter);
    ~PelinorComposeWindowController() override;

    /// Not owned; outlives the controller.
    void setDelegate(PelinorComposeWindowControllerDelegate* delegate) { m_delegate = delegate; }

    // Before the window is shown.
    void setAccount(TwitterAccountPtr account) { m_account = std::move(account); }
    void setInReplyToStatus(TwitterStatusPtr status) { m_inReplyToStatus = std::move(status); }
    void setDefaultText(const QString& text) { m_defaultText = text; }
    void setSourcePoint(QPoint point) { m_sourcePoint = point; }
    void setDirectMessageUser(TwitterUserPtr user) { m_directMessageUser = std::move(user); }
    void setPromptToDirectMessageUser(bool prompts) { m_promptToDirectMessageUser = prompts; }

    void showWindow();
    QWidget& window();
    QPlainTextEdit& textView() { return *m_textView; }
    const TwitterAccountPtr& account() const { return m_account; }

    void post();
    /// Asks before it drops what was written.
    void cancel();

private:
    class Window;

    void _loadWindow();
    void _buildAccountMenu();
    void _updateWindowTitle();
    void _textDidChange();
    qsizetype _longestPost() const;
    void _updateRemainingField();
    void _promptForRecipient();
    void _setPosting(bool isPosting);
    void _didPost(const KRResult<TwitterStatusPtr>& response);
    void _didMessage(const KRResult<TwitterDirectMessagePtr>& response);
    bool _windowShouldClose();
    void _dismiss();
    void _showSheet(const QString& message, const QString& information);

    Twitter& m_twitter;
    PelinorComposeWindowControllerDelegate* m_delegate = nullptr;
    TwitterAccountPtr m_account;
    TwitterStatusPtr m_inReplyToStatus;
    QString m_defaultText;
    QPoint m_sourcePoint;
    TwitterUserPtr m_directMessageUser;
    bool m_promptToDirectMessageUser = false;

    std::unique_ptr<Window> m_window;
    QPlainTextEdit* m_textView = nullptr;
    QComboBox* m_accountPopUpButton = nullptr;
    QLabel* m_remainingField = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_postButton = nullptr;
    // What the window put in itself is nothing to lose.
    QString m_initialText;
    bool m_isPosting = false;
    bool m_isDismissed = false;
};
