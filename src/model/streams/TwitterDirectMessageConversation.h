#pragma once

#include "model/records/TwitterDirectMessage.h"

#include <QSet>

#include <compare>
#include <memory>

class TwitterDirectMessageConversation;
class TwitterStreamAccount;

using TwitterDirectMessageConversationPtr = std::shared_ptr<TwitterDirectMessageConversation>;

/// A conversation has gained messages. Posted on the main thread.
struct TwitterDirectMessageConversationDidUpdateNotification {
    static constexpr char name[] = "TwitterDirectMessageConversationDidUpdateNotification";
    const TwitterDirectMessageConversation* object;
};

/// The messages exchanged with one person, in both directions. Main thread.
class TwitterDirectMessageConversation {
public:
    explicit TwitterDirectMessageConversation(TwitterUserPtr correspondent);
    TwitterDirectMessageConversation(const TwitterDirectMessageConversation&) = delete;
    TwitterDirectMessageConversation& operator=(const TwitterDirectMessageConversation&) = delete;
    ~TwitterDirectMessageConversation() = default;

    /// The other party.
    [[nodiscard]] const TwitterUserPtr& correspondent() const { return m_correspondent; }
    void setCorrespondent(TwitterUserPtr user) { m_correspondent = std::move(user); }
    /// Newest first after endAddingMessages().
    [[nodiscard]] const TwitterDirectMessageList& messages() const { return m_messages; }
    void setMessages(const TwitterDirectMessageList& messages);
    /// The first message; null when there is none.
    [[nodiscard]] TwitterDirectMessagePtr mostRecentMessage() const { return m_messages.value(0); }
    /// The first message of which the account is not the author, or null.
    [[nodiscard]] TwitterDirectMessagePtr newestMessageNotFrom(const TwitterStreamAccount& account) const;

    /// Messages are added between a beginning and an end: the end sorts them and posts the notification, if
    /// there were any new ones.
    void beginAddingMessages();
    /// Ignored when an equal message is there.
    void addMessage(const TwitterDirectMessagePtr& message);
    void endAddingMessages();

    /// By the most recent message, the newest first; without messages last.
    [[nodiscard]] std::weak_ordering compare(const TwitterDirectMessageConversation& other) const;

private:
    [[nodiscard]] bool _contains(const TwitterDirectMessagePtr& message) const;

    TwitterUserPtr m_correspondent;
    TwitterDirectMessageList m_messages;
    QSet<QString> m_messageIDs;
    bool m_didAddMessage = false;
};
