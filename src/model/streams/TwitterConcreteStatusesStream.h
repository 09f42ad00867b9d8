#pragma once

#include "model/streams/TwitterStream.h"
#include "model/streams/TwitterStreamGaps.h"
#include "transport/KRCallback.h"

#include <atomic>
#include <memory>

class TwitterUniquingTables;

/// A stream with its statuses: loading and paging state, merging, and the rows around the posts. Made with
/// KRMakeMainThreadObject, since a response may hold the last reference. Main thread, but for the responses
/// and markAtEnd(), which come on the background thread; what they touch is atomic.
///
/// A full page of newer posts may not reach the newest one known: a stream whose service can be asked from an
/// ID down then goes on below the page until it meets that post, or the list is full. Where that fails a
/// TwitterDummyMissingStatus stands.
class TwitterConcreteStatusesStream : public TwitterStream,
                                      public std::enable_shared_from_this<TwitterConcreteStatusesStream> {
public:
    /// Above this number of statuses a merged list is cut ...
    static constexpr qsizetype maximumStatuses = 500;
    /// ... to this one.
    static constexpr qsizetype statusesAfterCut = 499;
    /// An older page with so many statuses or fewer was the last one.
    static constexpr qsizetype largestLastPage = TwitterStreamGaps::largestLastPage;

    explicit TwitterConcreteStatusesStream(std::shared_ptr<TwitterUniquingTables> tables);

    /// The rows to show: a header, the statuses with the places where some are missing, and at the bottom the
    /// end of the stream or a row that stands for what can still be loaded. The rows that are no posts are
    /// made afresh by every call.
    [[nodiscard]] TwitterStatusList statuses() const override;
    /// The posts alone, newest first.
    [[nodiscard]] const TwitterStatusList& storedStatuses() const { return m_statuses; }
    /// Replaces the posts.
    void setStatuses(const TwitterStatusList& statuses) override;
    void removeStatus(const TwitterStatus& status) override;

    /// Asks for what is newer than the newest status. Ignored while such a load runs.
    void loadNewer() override;
    /// Asks for what is older than the oldest status. Ignored while such a load runs, and at the end.
    void loadOlder() override;
    void loadOlderAgain() override;
    void loadMissing(const TwitterDummyMissingStatus& row) override;

    [[nodiscard]] bool isLoadingNewer() const { return m_isLoadingNewer; }
    [[nodiscard]] bool isLoadingOlder() const { return m_isLoadingOlder; }
    /// What lies between two posts is on its way.
    [[nodiscard]] bool isLoadingMissing() const { return m_gaps.isLoading(); }
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

    /// The first, or last, stored status with an ID; null when there is none.
    [[nodiscard]] TwitterStatusPtr newestStatus() const;
    [[nodiscard]] TwitterStatusPtr oldestStatus() const;
    [[nodiscard]] QString newestStatusID() const;
    /// After which status a newer load asks: the newest one, but for those dated more than a day ahead while
    /// there are others. A service that compares dates instead of IDs would answer nothing for good.
    [[nodiscard]] QString sinceID() const;
    [[nodiscard]] QString oldestStatusID() const;
    /// Where the next older page begins: at the oldest status, or at the lowest one of a page that has brought
    /// nothing older, be it that the user's filter has dropped it all or that one of the list came late and is
    /// dated long before its neighbours. The same page would be asked for again and again otherwise.
    [[nodiscard]] QString olderPageID() const;

    /// The old end was reached: at once for loadOlder(), with the update that shows it on the main thread.
    /// Any thread.
    void markAtEnd();

    /// Merges a page into the list: definitive records, the user's filter, no duplicates, newest first. A
    /// list that is cut is full, and at its end.
    void addStatuses(const TwitterStatusList& statuses);

protected:
    /// Issue the request of a load, with one of the callbacks below.
    virtual void _loadNewer();
    virtual void _loadOlder();
    /// The next older load asks for the page that the last one failed to bring.
    virtual void _takeBackOlderPage() { }
    /// Whether pages can be asked for from an ID down; how many statuses are asked for with a page, 0 when
    /// the service decides; and asking for such a page.
    [[nodiscard]] virtual bool _canLoadBelow() const { return false; }
    [[nodiscard]] virtual qsizetype _pageCount() const { return 0; }
    virtual void _loadBelow(const QString& /*maxID*/, const KRCallback<TwitterStatusList>& /*callback*/) { }
    [[nodiscard]] KRCallback<TwitterStatusList> loadNewerResponseCallback();
    [[nodiscard]] KRCallback<TwitterStatusList> loadOlderResponseCallback();

    [[nodiscard]] const std::shared_ptr<TwitterUniquingTables>& tables() const { return m_tables; }

private:
    using Response = KRResult<TwitterStatusList>;

    void loadNewerResponse(const Response& response, const QString& newestKnownID);
    void loadOlderResponse(const Response& response);
    void loadMissingResponse(const Response& response, const QString& belowID);
    void _postError(const KRError& error);
    void _addNewer(const TwitterStatusList& statuses, const QString& newestKnownID);
    void _addOlder(const TwitterStatusList& statuses);
    void _addMissing(const TwitterStatusList& statuses, const QString& belowID);
    void _failMissing(const QString& belowID);
    void _loadGap(const QString& belowID);
    [[nodiscard]] bool _isKnownWithoutID(const TwitterStatus& status) const;
    void _postDidUpdate();
    void _markAtEnd();

    std::shared_ptr<TwitterUniquingTables> m_tables;
    TwitterStatusList m_statuses;
    TwitterStreamGaps m_gaps;
    // The last older page, if the oldest status is the one from before it.
    QString m_lowestOfIdlePage;
    std::atomic<bool> m_isLoadingNewer = false;
    std::atomic<bool> m_isLoadingOlder = false;
    std::atomic<bool> m_isAtEnd = false;
    // That is because an older load failed.
    std::atomic<bool> m_didFailOlder = false;
};
