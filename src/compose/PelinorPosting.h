#pragma once

#include "compose/PelinorDraft.h"
#include "compose/PelinorSheet.h"
#include "core/Twitter.h"
#include "services/KRUploadMonitor.h"
#include "services/Twitlonger.h"
#include "services/TwitterServiceContext.h"

/// Hears how posting goes. Main thread.
class PelinorPostingDelegate {
public:
    PelinorPostingDelegate() = default;
    PelinorPostingDelegate(const PelinorPostingDelegate&) = delete;
    PelinorPostingDelegate& operator=(const PelinorPostingDelegate&) = delete;
    virtual ~PelinorPostingDelegate() = default;

    /// The draft is not to be changed from here …
    virtual void postingDidBegin() = 0;
    /// … to here.
    virtual void postingDidEnd() = 0;
    /// An attachment is on its way: which of how many (from 1), and its bytes; the total is 0 while it is not
    /// known.
    virtual void postingDidProgress(int /*number*/, int /*count*/, const KRUploadProgress& /*progress*/) { }
    /// What follows cannot be called back. The next call is about how it ended.
    virtual void postingWillSend() { }
    /// After it has ended: something to tell the user.
    virtual void postingShowSheet(const PelinorSheet& sheet) = 0;
    /// After it has ended, and before the next: the message as the service has it now.
    virtual void postingDidSendMessage(const TwitterDirectMessagePtr& /*message*/) { }
    /// After it has ended: it has gone out.
    virtual void postingDidFinish() = 0;
};

/// The way of one draft to the service: its attachments one after the other, then the text. What went wrong
/// ends it with a sheet, and the draft is as it was; nothing is sent a second time without being asked for.
/// Main thread; owned by a std::shared_ptr.
class PelinorPosting final : public std::enable_shared_from_this<PelinorPosting> {
public:
    /// Both outlive it, or it is told before: the delegate is not called any more once it is null.
    PelinorPosting(Twitter& twitter, const KRUserDefaults* defaults, PelinorPostingDelegate* delegate);
    PelinorPosting(const PelinorPosting&) = delete;
    PelinorPosting& operator=(const PelinorPosting&) = delete;
    ~PelinorPosting();
    void setDelegate(PelinorPostingDelegate* delegate) { m_delegate = delegate; }

    [[nodiscard]] bool isPosting() const { return m_phase != Phase::Editing; }
    /// Uploads can be cancelled; what has been sent cannot.
    [[nodiscard]] bool isCancellable() const { return isPosting() && m_phase != Phase::Sending; }

    /// Does nothing with an empty draft, or while posting.
    void post(const PelinorDraft& draft, const TwitterAccountPtr& account);
    /// Goes on where a text was too long.
    void postWithTwitlonger();
    /// Ends the upload that is under way, and the posting.
    void cancel();

    /// What outside services are asked with for the account: its own hosts, and where those say nothing the
    /// program's.
    [[nodiscard]] static TwitterServiceContext
    serviceContext(const Twitter& twitter, const TwitterAccount& account, const KRUserDefaults* defaults);

private:
    enum class Phase { Editing, Uploading, Shortening, Sending };
    /// Which of its steps an answer belongs to; those of steps that were cancelled come too late.
    using Step = int;

    void _begin(Phase phase);
    void _end();
    void _finish();
    void _endWithSheet(const PelinorSheet& sheet);
    void _uploadNextImage();
    void _uploadDidProgress(const KRResult<KRUploadProgress>& progress, Step step);
    void didUploadImage(const KRResult<QUrl>& response, Step step);
    void _postFinishedText();
    void _update();
    void didPostLong(const KRResult<Twitlonger>& response, Step step);
    void didPost(const KRResult<TwitterStatusPtr>& response);
    void didMessage(const KRResult<TwitterDirectMessagePtr>& response);
    [[nodiscard]] TwitterUserPtr _recipient() const;
    [[nodiscard]] bool _isAccountThere();

    Twitter& m_twitter;
    const KRUserDefaults* m_defaults;
    PelinorPostingDelegate* m_delegate;
    TwitterAccountPtr m_account;
    // The copy of the draft in which links take the place of attachments.
    PelinorDraft m_workingDraft;
    int m_imageCount = 0;
    std::shared_ptr<KRUploadMonitor> m_monitor;
    Phase m_phase = Phase::Editing;
    Step m_step = 0;
};
