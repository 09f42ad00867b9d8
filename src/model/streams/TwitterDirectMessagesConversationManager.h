#pragma once

#include "foundation/KRNotificationCenter.h"
#include "model/streams/TwitterDirectMessageConversation.h"
#include "model/streams/TwitterDirectMessagesStream.h"

class TwitterDirectMessagesConversationManager;

/// A list of messages was folded into the conversations, whether that changed anything or not. Posted on the
/// main thread.
struct TwitterDirectMessageConversationManagerDidUpdateNotification {
    static constexpr char name[] = "TwitterDirectMessageConversationManagerDidUpdateNotification";
    const TwitterDirectMessagesConversationManager* object;
};

/// Folds what an account has received and sent into conversations, one for each person. Main thread; made
/// with KRMakeMainThreadObject.
class TwitterDirectMessagesConversationManager
    : public std::enable_shared_from_this<TwitterDirectMessagesConversationManager> {
public:
    enum class FromMe { No, Yes };

    TwitterDirectMessagesConversationManager(const std::shared_ptr<TwitterUniquingTables>& tables,
        const std::shared_ptr<TwitterStreamAccount>& account);
    TwitterDirectMessagesConversationManager(const TwitterDirectMessagesConversationManager&) = delete;
    TwitterDirectMessagesConversationManager& operator=(const TwitterDirectMessagesConversationManager&)
        = delete;
    ~TwitterDirectMessagesConversationManager() = default;

    [[nodiscard]] const std::shared_ptr<TwitterReceivedDirectMessagesStream>& receivedStream() const
    {
        return m_receivedStream;
    }
    [[nodiscard]] const std::shared_ptr<TwitterSentDirectMessagesStream>& sentStream() const
    {
        return m_sentStream;
    }
    /// The one with the newest message first. None is ever removed.
    [[nodiscard]] const QList<TwitterDirectMessageConversationPtr>& conversations() const
    {
        return m_conversations;
    }
    /// The first with somebody equal to the user, or null.
    [[nodiscard]] TwitterDirectMessageConversationPtr conversationWith(const TwitterUser& user) const;

    /// Both lists load what is newer, or older.
    void refresh();
    void loadOlder();

    /// Folds messages that the account has sent, or received, into the conversations. Those that are there
    /// already are passed over.
    void addMessages(const TwitterDirectMessageList& messages, FromMe fromMe);

    /// No date when there is no such message.
    [[nodiscard]] QDateTime newestMessageDate() const;
    [[nodiscard]] TwitterDirectMessagePtr newestMessageNotFromMe() const;
    [[nodiscard]] QDateTime newestMessageDateNotFromMe() const;

private:
    void receivedDidUpdate();
    void sentDidUpdate();

    std::shared_ptr<TwitterReceivedDirectMessagesStream> m_receivedStream;
    std::shared_ptr<TwitterSentDirectMessagesStream> m_sentStream;
    QList<TwitterDirectMessageConversationPtr> m_conversations;
    KRObservation m_receivedObservation;
    KRObservation m_sentObservation;
};
