#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/streams/TwitterStream.h"
#include "model/streams/TwitterStreamAccount.h"

#include <atomic>
#include <memory>

class TwitterUniquingTables;

/// One of an account's two lists of messages, newest first: every message of the run. Posts the stream
/// notifications. Made with KRMakeMainThreadObject, since a response may hold the last reference. Main
/// thread, but for the responses, which come on the background thread; what they touch is atomic.
///
/// Unlike a stream of statuses it goes on asking for older pages after the last one.
class TwitterDirectMessagesStream : public TwitterLoadingStream,
                                    public std::enable_shared_from_this<TwitterDirectMessagesStream> {
public:
    /// An older page with so many messages or fewer was the last one.
    static constexpr qsizetype largestLastPage = 18;

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

    /// Merges a page into the list: definitive records, no duplicates, newest first.
    void addMessages(const TwitterDirectMessageList& messages);

protected:
    /// Sends the request of a load as one operation.
    virtual void
    _request(TwitterDirectMessagesOperations& request, const QString& sinceID, std::optional<int> page)
        = 0;

private:
    using Response = KRResult<TwitterDirectMessageList>;

    void _loadNewer();
    void _loadOlder();
    [[nodiscard]] KRCallback<TwitterDirectMessageList> loadNewerResponseCallback();
    [[nodiscard]] KRCallback<TwitterDirectMessageList> loadOlderResponseCallback();
    void loadNewerResponse(const Response& response);
    void loadOlderResponse(const Response& response);
    void messagesResponse(const Response& response);

    std::shared_ptr<TwitterUniquingTables> m_tables;
    // An account owns its streams.
    std::weak_ptr<TwitterStreamAccount> m_account;
    TwitterDirectMessageList m_messages;
    qint32 m_page = 0;
    std::atomic<bool> m_isLoadingNewer = false;
    std::atomic<bool> m_isLoadingOlder = false;
    std::atomic<bool> m_isAtEnd = false;
};

/// What the account has received.
class TwitterReceivedDirectMessagesStream final : public TwitterDirectMessagesStream {
public:
    using TwitterDirectMessagesStream::TwitterDirectMessagesStream;

private:
    void _request(TwitterDirectMessagesOperations& request,
        const QString& sinceID,
        std::optional<int> page) override;
};

/// What the account has sent.
class TwitterSentDirectMessagesStream final : public TwitterDirectMessagesStream {
public:
    using TwitterDirectMessagesStream::TwitterDirectMessagesStream;

private:
    void _request(TwitterDirectMessagesOperations& request,
        const QString& sinceID,
        std::optional<int> page) override;
};
