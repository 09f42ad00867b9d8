#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/streams/TwitterStream.h"
#include "model/streams/TwitterStreamAccount.h"
#include "model/streams/TwitterStreamGaps.h"

#include <atomic>
#include <memory>

class TwitterUniquingTables;

/// One of an account's two lists of messages, newest first: every message of the run. Posts the stream
/// notifications. Made with KRMakeMainThreadObject, since a response may hold the last reference. Main
/// thread, but for the responses, which come on the background thread; what they touch is atomic.
///
/// Unlike a stream of statuses it goes on asking for older pages after the last one. As those do, it goes on
/// below a full page of newer messages until it meets what it had; where that fails, the next newer load
/// tries again.
class TwitterDirectMessagesStream : public TwitterLoadingStream,
                                    public std::enable_shared_from_this<TwitterDirectMessagesStream> {
public:
    /// An older page with so many messages or fewer was the last one.
    static constexpr qsizetype largestLastPage = TwitterStreamGaps::largestLastPage;

    TwitterDirectMessagesStream(std::shared_ptr<TwitterUniquingTables> tables,
        const std::shared_ptr<TwitterStreamAccount>& account);

    /// Null when it has gone.
    [[nodiscard]] std::shared_ptr<TwitterStreamAccount> account() const { return m_account.lock(); }

    [[nodiscard]] const TwitterDirectMessageList& messages() const { return m_messages; }
    void setMessages(const TwitterDirectMessageList& messages);
    /// Null when there is no message.
    [[nodiscard]] QString newestMessageID() const;
    [[nodiscard]] QString oldestMessageID() const;

    /// Each is ignored while a load of its kind runs.
    void loadNewer();
    void loadOlder();
    [[nodiscard]] bool isLoadingNewer() const { return m_isLoadingNewer; }
    [[nodiscard]] bool isLoadingOlder() const { return m_isLoadingOlder; }
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }
    /// The last older page could not be loaded; the next older load asks for it once more.
    [[nodiscard]] bool didFailOlder() const { return m_didFailOlder; }

    /// What lies between two messages is on its way.
    [[nodiscard]] bool isLoadingMissing() const { return m_gaps.isLoading(); }
    /// Loading has failed somewhere between the messages.
    [[nodiscard]] bool isMissingMessages() const;

    /// Merges a page into the list: definitive records, no duplicates, newest first.
    void addMessages(const TwitterDirectMessageList& messages);

protected:
    /// Sends the request of a load as one operation.
    virtual void _request(TwitterDirectMessagesOperations& request,
        const QString& sinceID,
        const QString& maxID,
        std::optional<int> page)
        = 0;

private:
    using Response = KRResult<TwitterDirectMessageList>;

    void _loadNewer();
    void _loadOlder();
    [[nodiscard]] KRCallback<TwitterDirectMessageList> loadNewerResponseCallback();
    [[nodiscard]] KRCallback<TwitterDirectMessageList> loadOlderResponseCallback();
    void loadNewerResponse(const Response& response, const QString& newestKnownID);
    void loadOlderResponse(const Response& response);
    void loadMissingResponse(const Response& response, const QString& belowID);
    void _postError(const KRError& error);
    void _addNewer(const TwitterDirectMessageList& messages, const QString& newestKnownID);
    void _addOlder(const TwitterDirectMessageList& messages);
    void _addMissing(const TwitterDirectMessageList& messages, const QString& belowID);
    void _failMissing(const QString& belowID);
    void _loadGap(const QString& belowID);

    std::shared_ptr<TwitterUniquingTables> m_tables;
    // An account owns its streams.
    std::weak_ptr<TwitterStreamAccount> m_account;
    TwitterDirectMessageList m_messages;
    TwitterStreamGaps m_gaps;
    qint32 m_page = 0;
    std::atomic<bool> m_isLoadingNewer = false;
    std::atomic<bool> m_isLoadingOlder = false;
    std::atomic<bool> m_isAtEnd = false;
    std::atomic<bool> m_didFailOlder = false;
};

/// What the account has received.
class TwitterReceivedDirectMessagesStream final : public TwitterDirectMessagesStream {
public:
    using TwitterDirectMessagesStream::TwitterDirectMessagesStream;

private:
    void _request(TwitterDirectMessagesOperations& request,
        const QString& sinceID,
        const QString& maxID,
        std::optional<int> page) override;
};

/// What the account has sent.
class TwitterSentDirectMessagesStream final : public TwitterDirectMessagesStream {
public:
    using TwitterDirectMessagesStream::TwitterDirectMessagesStream;

private:
    void _request(TwitterDirectMessagesOperations& request,
        const QString& sinceID,
        const QString& maxID,
        std::optional<int> page) override;
};
