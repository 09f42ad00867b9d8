#include "compose/PelinorDraftKeeper.h"

#include "foundation/KRLog.h"
#include "transport/KRBackgroundProxy.h"

#include <algorithm>

/// Where the results of writing arrive for as long as the keeper is there. Main thread.
struct PelinorDraftKeeper::Answers {
    PelinorDraftKeeper* keeper;

    void didWrite(quint64 number, const KRResult<void>& result)
    {
        if (keeper)
            keeper->_didWrite(number, result);
    }
};

/// One draft on its way to the disk.
struct PelinorDraftKeeper::Write {
    std::shared_ptr<PelinorDraftFile> file;
    quint64 number;
    PelinorDraft draft;
    KRMainThreadProxy<Answers> answers;

    void write() { answers.perform(&Answers::didWrite, number, file->write(number, draft)); }
};

PelinorDraftKeeper::PelinorDraftKeeper(std::shared_ptr<PelinorDraftStore> store,
    std::shared_ptr<PelinorDraftFile> file)
    : m_store(std::move(store))
    , m_file(file ? std::move(file) : m_store->makeFile())
    , m_answers(std::make_shared<Answers>(Answers { this }))
{
}

PelinorDraftKeeper::~PelinorDraftKeeper()
{
    m_answers->keeper = nullptr;
    m_failureHandler = nullptr;
    // A write that is under way need not come to its end before the program does.
    if (m_isUnwritten || m_writtenNumber != m_number)
        keepNow(PelinorDraft(m_latest));
}

void PelinorDraftKeeper::setFailureHandler(std::function<void(const std::optional<KRError>&)> handler)
{
    m_failureHandler = std::move(handler);
}

void PelinorDraftKeeper::keep(const PelinorDraft& draft)
{
    if (m_isForgotten || (draft == m_latest && !m_isUnwritten))
        return;
    m_latest = draft;
    m_isUnwritten = true;
    for (const PelinorAttachment& attachment : draft.attachments) {
        if (!m_everAttached.contains(attachment.filename))
            m_everAttached.append(attachment.filename);
    }
    const KRClock::TimePoint now = KRClock::shared().monotonicNow();
    if (!m_firstChange)
        m_firstChange = now;
    const auto waited = std::chrono::duration_cast<KRClock::Duration>(now - *m_firstChange);
    _schedule(std::clamp(longestWait - waited, KRClock::Duration::zero(), pause));
}

void PelinorDraftKeeper::_schedule(KRClock::Duration delay)
{
    m_timer
        = KRRunLoop::main().scheduleTimer(delay, KRRunLoop::Repeats::No, [this] { _writeInBackground(); });
}

void PelinorDraftKeeper::_writeInBackground()
{
    _noteWriting();
    const auto write
        = std::make_shared<Write>(Write { m_file, m_number, m_latest, mainThreadProxy(m_answers) });
    backgroundProxy(write)->perform(&Write::write);
}

void PelinorDraftKeeper::keepNow(const PelinorDraft& draft)
{
    if (m_isForgotten)
        return;
    m_latest = draft;
    _noteWriting();
    _didWrite(m_number, m_file->write(m_number, draft));
}

void PelinorDraftKeeper::_noteWriting()
{
    m_timer.invalidate();
    m_firstChange.reset();
    m_isUnwritten = false;
    ++m_number;
}

void PelinorDraftKeeper::_didWrite(quint64 number, const KRResult<void>& result)
{
    m_writtenNumber = number;
    if (m_isForgotten || (!result.isError() && !m_hasFailed))
        return;
    if (result.isError()) {
        KRLog(QStringLiteral("Error: a draft is not kept: %1").arg(result.error().description));
        m_isUnwritten = true;
        _schedule(retryDelay);
    }
    m_hasFailed = result.isError();
    if (m_failureHandler)
        m_failureHandler(m_hasFailed ? std::optional(result.error()) : std::nullopt);
}

void PelinorDraftKeeper::forget()
{
    m_isForgotten = true;
    m_timer.invalidate();
    m_isUnwritten = false;
    m_writtenNumber = m_number;
    m_file->remove();
    m_store->removeOwnAttachments(m_everAttached);
}
