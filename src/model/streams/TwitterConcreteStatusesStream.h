#pragma once

#include "model/streams/TwitterStream.h"
#include "transport/KRCallback.h"

#include <atomic>
#include <memory>

class TwitterUniquingTables;

/// A stream with its statuses: loading and paging state, merging, and the rows around the posts. Made with
/// KRMakeMainThreadObject, since a response may hold the last reference. Main thread, but for the responses
/// and markAtEnd(), which come on the background thread; what they touch is atomic.
class TwitterConcreteStatusesStream : public TwitterStream,
                                      public std::enable_shared_from_this<TwitterConcreteStatusesStream> {
public:
    /// Above this number of statuses a merged list is cut ...
    static constexpr qsizetype maximumStatuses = 500;
    /// ... to this one.
    static constexpr qsizetype statusesAfterCut = 499;
    /// An older page with so many statuses or fewer was the last one.
    static constexpr qsizetype largestLastPage = 18;

    explicit TwitterConcreteStatusesStream(std::shared_ptr<TwitterUniquingTables> tables);

    /// The rows to show: a header, the statuses, and at the bottom the end of the stream or a row that stands
    /// for what can still be loaded. The rows that are no posts are made afresh by every call.
    [[nodiscard]] TwitterStatusList statuses() const override;
    /// The posts alone, newest first.
    [[nodiscard]] const TwitterStatusList& storedStatuses() const { return m_statuses; }
    /// Replaces the posts.
    void setStatuses(const TwitterStatusList& statuses) override;

    /// Asks for what is newer than the newest status. Ignored while such a load runs.
    void loadNewer() override;
    /// Asks for what is older than the oldest status. Ignored while such a load runs, and at the end.
    void loadOlder() override;

    [[nodiscard]] bool isLoadingNewer() const { return m_isLoadingNewer; }
    [[nodiscard]] bool isLoadingOlder() const { return m_isLoadingOlder; }
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

    /// The first, or last, stored status with an ID; null when there is none.
    [[nodiscard]] TwitterStatusPtr newestStatus() const;
    [[nodiscard]] TwitterStatusPtr oldestStatus() const;
    [[nodiscard]] QString newestStatusID() const;
    [[nodiscard]] QString oldestStatusID() const;

    /// The old end was reached: at once for loadOlder(), with the update that shows it on the main thread.
    /// Any thread.
    void markAtEnd();

    /// Merges a page into the list: definitive records, the user's filter, no duplicates, newest first, cut.
    void addStatuses(const TwitterStatusList& statuses);

protected:
    /// Issue the request of a load, with one of the callbacks below.
    virtual void _loadNewer();
    virtual void _loadOlder();
    [[nodiscard]] KRCallback<TwitterStatusList> loadNewerResponseCallback();
    [[nodiscard]] KRCallback<TwitterStatusList> loadOlderResponseCallback();

    [[nodiscard]] const std::shared_ptr<TwitterUniquingTables>& tables() const { return m_tables; }

private:
    void loadNewerResponse(KRResult<TwitterStatusList> response);
    void loadOlderResponse(KRResult<TwitterStatusList> response);
    void statusesResponse(const KRResult<TwitterStatusList>& response);
    void _markAtEnd();

    std::shared_ptr<TwitterUniquingTables> m_tables;
    TwitterStatusList m_statuses;
    std::atomic<bool> m_isLoadingNewer = false;
    std::atomic<bool> m_isLoadingOlder = false;
    std::atomic<bool> m_isAtEnd = false;
};
