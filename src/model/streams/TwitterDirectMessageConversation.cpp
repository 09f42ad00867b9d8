#include "model/streams/TwitterDirectMessageConversation.h"

#include "foundation/KRNotificationCenter.h"
#include "model/streams/TwitterStreamAccount.h"
#include "text/KRArrayAdditions.h"

#include <algorithm>

TwitterDirectMessageConversation::TwitterDirectMessageConversation(TwitterUserPtr correspondent)
    : m_correspondent(std::move(correspondent))
{
}

void TwitterDirectMessageConversation::setMessages(const TwitterDirectMessageList& messages)
{
    m_messages = messages;
    m_messageIDs.clear();
    for (const TwitterDirectMessagePtr& message : messages)
        m_messageIDs.insert(message->messageID());
}

TwitterDirectMessagePtr TwitterDirectMessageConversation::newestMessageNotFrom(
    const TwitterStreamAccount& account) const
{
    const auto found = std::find_if(m_messages.begin(),
        m_messages.end(),
        [&account](
            const TwitterDirectMessagePtr& message) { return !account.isAuthorOfDirectMessage(*message); });
    return found == m_messages.end() ? nullptr : *found;
}

void TwitterDirectMessageConversation::beginAddingMessages()
{
    m_didAddMessage = false;
}

bool TwitterDirectMessageConversation::_contains(const TwitterDirectMessagePtr& message) const
{
    // Without an ID a message is equal to itself alone.
    return message->messageID().isNull() ? m_messages.contains(message)
                                         : m_messageIDs.contains(message->messageID());
}

void TwitterDirectMessageConversation::addMessage(const TwitterDirectMessagePtr& message)
{
    if (_contains(message))
        return;
    m_messages.append(message);
    m_messageIDs.insert(message->messageID());
    m_didAddMessage = true;
}

void TwitterDirectMessageConversation::endAddingMessages()
{
    if (!m_didAddMessage)
        return;
    m_didAddMessage = false;
    m_messages = KRAdditions::sortedArray(std::move(m_messages));
    KRNotificationCenter::defaultCenter().post(
        TwitterDirectMessageConversationDidUpdateNotification { this });
}

std::weak_ordering TwitterDirectMessageConversation::compare(
    const TwitterDirectMessageConversation& other) const
{
    const TwitterDirectMessagePtr message = mostRecentMessage();
    const TwitterDirectMessagePtr otherMessage = other.mostRecentMessage();
    if (message && otherMessage)
        return message->compare(*otherMessage);
    return (otherMessage != nullptr) <=> (message != nullptr);
}
