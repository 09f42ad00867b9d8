#pragma once

#include "compose/PelinorDraftStore.h"
#include "foundation/KRRunLoop.h"

#include <functional>

/// Keeps one draft on disk while its window is open. Writing is done on a thread of its own, for the disk may
/// take its time. Main thread.
class PelinorDraftKeeper {
public:
    /// A draft is written when nothing has changed for so long, …
    static constexpr KRClock::Duration pause = std::chrono::milliseconds(500);
    /// … and somebody who writes without a pause has it written this often.
    static constexpr KRClock::Duration longestWait = std::chrono::seconds(3);
    /// After a failure it is tried again.
    static constexpr KRClock::Duration retryDelay = std::chrono::seconds(10);

    /// The draft is new, or one that was found in the store.
    explicit PelinorDraftKeeper(std::shared_ptr<PelinorDraftStore> store,
        std::shared_ptr<PelinorDraftFile> file = nullptr);
    PelinorDraftKeeper(const PelinorDraftKeeper&) = delete;
    PelinorDraftKeeper& operator=(const PelinorDraftKeeper&) = delete;
    /// What was not written yet is written now, unless it was forgotten.
    ~PelinorDraftKeeper();

    /// Told why the draft is not on disk, and with nothing when it is again.
    void setFailureHandler(std::function<void(const std::optional<KRError>&)> handler);

    /// The draft has changed.
    void keep(const PelinorDraft& draft);
    /// Writes it before it returns.
    void keepNow(const PelinorDraft& draft);
    /// Nothing is left of it: it has gone out, or is not wanted.
    void forget();
    [[nodiscard]] const std::shared_ptr<PelinorDraftFile>& file() const { return m_file; }

private:
    struct Write;
    struct Answers;
    void _schedule(KRClock::Duration delay);
    void _writeInBackground();
    void _noteWriting();
    void _didWrite(quint64 number, const KRResult<void>& result);

    std::shared_ptr<PelinorDraftStore> m_store;
    std::shared_ptr<PelinorDraftFile> m_file;
    std::shared_ptr<Answers> m_answers;
    std::function<void(const std::optional<KRError>&)> m_failureHandler;
    PelinorDraft m_latest;
    bool m_isUnwritten = false;
    // Files of pictures that are in the text no more may come back by undoing, and go with the draft.
    QStringList m_everAttached;
    KRTimer m_timer;
    std::optional<KRClock::TimePoint> m_firstChange;
    quint64 m_number = 0;
    quint64 m_writtenNumber = 0;
    bool m_hasFailed = false;
    bool m_isForgotten = false;
};
