#include "compose/PelinorPosting.h"

#include "foundation/KRLog.h"
#include "services/KRImageService.h"

using namespace Qt::StringLiterals;

PelinorPosting::PelinorPosting(Twitter& twitter,
    const KRUserDefaults* defaults,
    PelinorPostingDelegate* delegate)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_delegate(delegate)
{
}

PelinorPosting::~PelinorPosting()
{
    dissociateWeakProxy(this);
    if (m_monitor)
        m_monitor->cancel();
}

TwitterServiceContext PelinorPosting::serviceContext(const Twitter& twitter,
    const TwitterAccount& account,
    const KRUserDefaults* defaults)
{
    TwitterServiceContext context { twitter.accountContext().hosts, defaults };
    context.siteTakesUploads = account.siteTakesUploads();
    const TwitterServiceHosts& own = account.context().hosts;
    for (const QString& key : own.keys())
        context.hosts.setValueForKey(own.valueForKey(key), key);
    return context;
}

void PelinorPosting::post(const PelinorDraft& draft, const TwitterAccountPtr& account)
{
    if (draft.isEmpty() || isPosting() || !account)
        return;
    m_workingDraft = draft;
    m_account = account;
    m_imageCount = int(draft.attachments.size());
    _begin(Phase::Uploading);
    if (_isAccountThere())
        _uploadNextImage();
}

bool PelinorPosting::_isAccountThere()
{
    if (m_twitter.containsAccount(m_account))
        return true;
    _endWithSheet(PelinorSheet::accountRemoved(m_account->qualifiedName()));
    return false;
}

void PelinorPosting::_begin(Phase phase)
{
    m_phase = phase;
    if (m_delegate)
        m_delegate->postingDidBegin();
}

void PelinorPosting::_end()
{
    m_phase = Phase::Editing;
    ++m_step;
    m_monitor.reset();
    if (m_delegate)
        m_delegate->postingDidEnd();
}

void PelinorPosting::_endWithSheet(const PelinorSheet& sheet)
{
    const std::shared_ptr<PelinorPosting> self = shared_from_this();
    _end();
    if (m_delegate)
        m_delegate->postingShowSheet(sheet);
}

void PelinorPosting::cancel()
{
    if (!isCancellable())
        return;
    if (m_monitor)
        m_monitor->cancel();
    _end();
}

// Attachments

void PelinorPosting::_uploadNextImage()
{
    if (m_workingDraft.attachments.isEmpty()) {
        _postFinishedText();
        return;
    }
    const auto self = weakMainThreadProxy(shared_from_this());
    m_monitor
        = std::make_shared<KRUploadMonitor>(Callback(self, &PelinorPosting::_uploadDidProgress, m_step));
    TwitterServiceContext context = serviceContext(m_twitter, *m_account, m_defaults);
    context.monitor = m_monitor;
    // The one nearest to the end: what takes its place moves none of those that are still to come.
    const QString filename = m_workingDraft.attachments.last().filename;
    const KRCallback<QUrl> callback = Callback(self, &PelinorPosting::didUploadImage, m_step);
    if (m_delegate)
        m_delegate->postingDidProgress(m_imageCount - int(m_workingDraft.attachments.size()) + 1,
            m_imageCount,
            {});
    if (PelinorAttachment::kindOfFile(filename) == PelinorAttachment::Kind::Movie)
        KRImageService::postVideo(context, filename, *m_account, callback);
    else
        KRImageService::postImage(context, filename, *m_account, callback);
}

void PelinorPosting::_uploadDidProgress(const KRResult<KRUploadProgress>& progress, Step step)
{
    if (step == m_step && m_phase == Phase::Uploading && m_delegate)
        m_delegate->postingDidProgress(m_imageCount - int(m_workingDraft.attachments.size()) + 1,
            m_imageCount,
            progress.value());
}

void PelinorPosting::didUploadImage(const KRResult<QUrl>& response, Step step)
{
    if (step != m_step)
        return;
    if (response.isError() || response.value().isEmpty()) {
        _endWithSheet(PelinorSheet::uploadFailed(response.isError() ? &response.error() : nullptr));
        return;
    }
    m_workingDraft.replaceLastAttachment(response.value().toString(QUrl::FullyEncoded));
    ++m_step;
    if (_isAccountThere())
        _uploadNextImage();
}

// The text

void PelinorPosting::_postFinishedText()
{
    if (m_workingDraft.isDirectMessage) {
        const TwitterUserPtr recipient = _recipient();
        m_phase = Phase::Sending;
        if (m_delegate)
            m_delegate->postingWillSend();
        m_account->sendDirectMessage(m_workingDraft.text,
            *recipient,
            Callback(weakMainThreadProxy(shared_from_this()), &PelinorPosting::didMessage));
        return;
    }
    const qsizetype longest = m_account->longestPost();
    if (longest > 0 && m_workingDraft.text.size() > longest)
        _endWithSheet(PelinorSheet::messageTooLong(longest));
    else
        _update();
}

void PelinorPosting::_update()
{
    m_phase = Phase::Sending;
    if (m_delegate)
        m_delegate->postingWillSend();
    m_account->update(m_workingDraft.text,
        m_workingDraft.inReplyToStatusID,
        Callback(weakMainThreadProxy(shared_from_this()), &PelinorPosting::didPost));
}

TwitterUserPtr PelinorPosting::_recipient() const
{
    if (TwitterUserPtr user = m_account->cachedUserWithID(m_workingDraft.recipientID))
        return user;
    const auto user = std::make_shared<TwitterUser>();
    user->setUserID(m_workingDraft.recipientID);
    user->setUsername(m_workingDraft.recipientUsername);
    return user;
}

void PelinorPosting::postWithTwitlonger()
{
    if (isPosting() || m_workingDraft.isEmpty() || !m_account)
        return;
    _begin(Phase::Shortening);
    if (!_isAccountThere())
        return;
    Twitlonger::post(serviceContext(m_twitter, *m_account, m_defaults).hosts,
        m_workingDraft.text,
        m_account->username(),
        Callback(weakMainThreadProxy(shared_from_this()), &PelinorPosting::didPostLong, m_step));
}

void PelinorPosting::didPostLong(const KRResult<Twitlonger>& response, Step step)
{
    if (step != m_step)
        return;
    const QString content = response.isError() ? QString() : response.value().content();
    const qsizetype longest = m_account->longestPost();
    if (content.isEmpty() || (longest > 0 && content.size() > longest)) {
        _endWithSheet(PelinorSheet::longPostFailed());
        return;
    }
    m_workingDraft.text = content;
    if (_isAccountThere())
        _update();
}

// Answers

void PelinorPosting::didPost(const KRResult<TwitterStatusPtr>& response)
{
    const std::shared_ptr<PelinorPosting> self = shared_from_this();
    if (!response.isError()) {
        _finish();
        return;
    }
    const KRError& error = response.error();
    KRLog(u"Posting error: %1"_s.arg(error.description));
    _endWithSheet(PelinorMayHaveGoneOut(error) ? PelinorSheet::postMayHaveGoneOut(&error)
                                               : PelinorSheet::postFailed(error));
}

void PelinorPosting::didMessage(const KRResult<TwitterDirectMessagePtr>& response)
{
    const std::shared_ptr<PelinorPosting> self = shared_from_this();
    if (!response.isError()) {
        _end();
        if (m_delegate)
            m_delegate->postingDidSendMessage(response.value());
        if (m_delegate)
            m_delegate->postingDidFinish();
        return;
    }
    const KRError& error = response.error();
    _endWithSheet(PelinorMayHaveGoneOut(error) ? PelinorSheet::messageMayHaveGoneOut(&error)
                                               : PelinorSheet::messageFailed(error));
}

void PelinorPosting::_finish()
{
    _end();
    if (m_delegate)
        m_delegate->postingDidFinish();
}
