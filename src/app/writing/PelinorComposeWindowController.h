#pragma once

#include "app/capture/PelinorCaptureSheet.h"
#include "compose/PelinorDraftKeeper.h"
#include "compose/PelinorLinkShortening.h"
#include "compose/PelinorPosting.h"

#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <memory>

class PelinorComposeWindowController;
class PelinorAccountMenu;
class PelinorDraftHighlighter;
class PelinorTextView;
class QLabel;
class QProgressBar;
class QPushButton;

/// Hears that a compose window is through. Main thread.
class PelinorComposeWindowControllerDelegate {
public:
    PelinorComposeWindowControllerDelegate() = default;
    PelinorComposeWindowControllerDelegate(const PelinorComposeWindowControllerDelegate&) = delete;
    PelinorComposeWindowControllerDelegate& operator=(const PelinorComposeWindowControllerDelegate&) = delete;
    virtual ~PelinorComposeWindowControllerDelegate() = default;

    /// Sent, or closed. The controller may be let go of; it is destroyed later.
    virtual void composeWindowDismiss(PelinorComposeWindowController& controller) = 0;
    /// The user wants to see whether what was sent has arrived.
    virtual void composeWindowShowTimeline(PelinorComposeWindowController& /*controller*/) { }
};

/// A window for a new post, a reply or a direct message. What did not go out stays in it. Main thread.
/// Until it has gone out, or was thrown away, it is on disk as well.
class PelinorComposeWindowController : public QObject, private PelinorPostingDelegate {
    Q_OBJECT

public:
    /// The root object and the defaults outlive the controller. The draft is a new one, or one that an
    /// earlier run left in the store.
    PelinorComposeWindowController(Twitter& twitter,
        const KRUserDefaults& defaults,
        const std::shared_ptr<PelinorDraftStore>& store,
        const std::optional<PelinorDraftStore::Stored>& left = std::nullopt);
    ~PelinorComposeWindowController() override;

    /// Not owned; outlives the controller.
    void setDelegate(PelinorComposeWindowControllerDelegate* delegate) { m_delegate = delegate; }

    // Before the window is shown.
    void setAccount(TwitterAccountPtr account) { m_account = std::move(account); }
    void setInReplyToStatus(const TwitterStatusPtr& status) { m_draft.setInReplyTo(status.get()); }
    void setDefaultText(const QString& text) { m_defaultText = text; }
    void setSourcePoint(QPoint point) { m_sourcePoint = point; }
    void setDirectMessageUser(const TwitterUserPtr& user) { m_draft.setRecipient(user.get()); }
    void setPromptToDirectMessageUser(bool prompts) { m_draft.isDirectMessage = prompts; }
    /// How many windows of its kind are open already: it is not to cover them.
    void setWindowsBefore(int count) { m_windowsBefore = count; }
    /// The recorder opens with the window.
    void setForceVideo(bool forces) { m_forceVideo = forces; }
    /// What photos and movies are taken with; the computer's camera without this.
    void setCameraMaker(PelinorCameraMaker maker) { m_cameraMaker = std::move(maker); }

    void showWindow();
    QWidget& window();
    PelinorTextView& textView() { return *m_textView; }
    const TwitterAccountPtr& account() const { return m_account; }

    void post();
    /// Ends an upload that is under way; otherwise closes, and asks before it drops what was written.
    void cancel();
    /// Lets the user choose a file to attach.
    void addImage();
    /// Records a movie and attaches it.
    void recordVideo();
    /// Takes a photo, which goes to the user's pictures and is not attached.
    void takePhoto();
    void shortenURLs();
    /// The text is not wanted any more; the window stays.
    void discardDraft() { m_keeper.forget(); }
    /// Whether it is about a message rather than a post.
    [[nodiscard]] bool isDirectMessage() const { return m_draft.isDirectMessage; }

private:
    class Window;

    void _loadWindow();
    void _updateWindowTitle();
    void _textDidChange();
    void _paletteDidChange();
    void _updateRemainingField();
    void _capture(PelinorCaptureSheet::Kind kind);
    void _promptForRecipient();
    void _loadControls();
    void _loadShortcuts();
    void _updateDraft();
    void _setPosting(bool isPosting);
    void _setBusy(bool isBusy);
    void _showFailureToKeep(const std::optional<KRError>& error);
    void postingDidBegin() override { _setPosting(true); }
    void postingDidEnd() override { _setPosting(false); }
    void postingDidProgress(int number, int count, const KRUploadProgress& progress) override;
    void postingWillSend() override;
    void postingShowSheet(const PelinorSheet& sheet) override;
    void postingDidFinish() override { _dismiss(); }
    void _choose(PelinorSheet::Choice choice);
    bool _windowShouldClose();
    void _dismiss();
    void _showSheet(const PelinorSheet& sheet);

    Twitter& m_twitter;
    const KRUserDefaults& m_defaults;
    std::shared_ptr<PelinorDraftStore> m_store;
    PelinorComposeWindowControllerDelegate* m_delegate = nullptr;
    TwitterAccountPtr m_account;
    // What is written, as of the last change.
    PelinorDraft m_draft;
    PelinorDraftKeeper m_keeper;
    std::shared_ptr<PelinorPosting> m_posting;
    std::shared_ptr<PelinorLinkShortening> m_shortening;
    QString m_defaultText;
    QPoint m_sourcePoint;
    PelinorCameraMaker m_cameraMaker = &PelinorMakeDeviceCamera;
    bool m_forceVideo = false;
    int m_windowsBefore = 0;

    std::unique_ptr<Window> m_window;
    PelinorTextView* m_textView = nullptr;
    PelinorDraftHighlighter* m_highlighter = nullptr;
    PelinorAccountMenu* m_accountPopUpButton = nullptr;
    QPushButton* m_actionPopUpButton = nullptr;
    QProgressBar* m_composeProgressIndicator = nullptr;
    QLabel* m_noticeField = nullptr;
    QLabel* m_remainingField = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_postButton = nullptr;
    PelinorDraftEdits m_edits;
    const bool m_wasLeft;
    int m_busyCount = 0;
    bool m_mayClose = false;
    bool m_isDismissed = false;
};
