#include "model/streams/TwitterDirectMessagesConversationManager.h"

#include "foundation/KRMainThreadObject.h"
#include "text/KRArrayAdditions.h"

#include <QHash>

#include <algorithm>

namespace {

// Finds what a search through the list would find first, without searching: users are equal by ID or by exact
// name. Serves one folding, during which no user changes.
class ConversationIndex {
public:
    explicit ConversationIndex(QList<TwitterDirectMessageConversationPtr>& conversations)
        : m_conversations(conversations)
    {
        for (qsizetype position = 0; position < conversations.size(); ++position)
            _note(*conversations[position]->correspondent(), position);
    }

    /// The conversation with the user; a new one at the end of the list when there is none.
    TwitterDirectMessageConversation& conversationWith(const TwitterUserPtr& user)
    {
        const qsizetype end = m_conversations.size();
        const qsizetype position
            = std::min(m_byID.value(user->userID(), end), m_byUsername.value(user->username(), end));
        if (position == end) {
            m_conversations.append(std::make_shared<TwitterDirectMessageConversation>(user));
            _note(*user, position);
        }
        return *m_conversations[position];
    }

private:
    void _note(const TwitterUser& user, qsizetype position)
    {
        // The first one counts, and what is not known makes nobody equal.
        if (!user.userID().isNull() && !m_byID.contains(user.userID()))
            m_byID.insert(user.userID(), position);
        if (!user.username().isNull() && !m_byUsername.contains(user.username()))
            m_byUsername.insert(user.username(), position);
    }

    QList<TwitterDirectMessageConversationPtr>& m_conversations;
    QHash<QString, qsizetype> m_byID;
    QHash<QString, qsizetype> m_byUsername;
};

} // namespace

TwitterDirectMessagesConversationManager::TwitterDirectMessagesConversationManager(
    const std::shared_ptr<TwitterUniquingTables>& tables,
    const std::shared_ptr<TwitterStreamAccount>& account)
    : m_receivedStream(KRMakeMainThreadObject<TwitterReceivedDirectMessagesStream>(tables, account))
    , m_sentStream(KRMakeMainThreadObject<TwitterSentDirectMessagesStream>(tables, account))
{
    KRNotificationCenter& center = KRNotificationCenter::defaultCenter();
    m_sentObservation
        = center.observe<TwitterStreamDidUpdateNotification>([this](const auto&) { sentDidUpdate(); },
            m_sentStream.get());
    m_receivedObservation
        = center.observe<TwitterStreamDidUpdateNotification>([this](const auto&) { receivedDidUpdate(); },
            m_receivedStream.get());
}

TwitterDirectMessageConversationPtr TwitterDirectMessagesConversationManager::conversationWith(
    const TwitterUser& user) const
{
    const auto isWithUser = [&user](const TwitterDirectMessageConversationPtr& conversation) {
        return conversation->correspondent()->isEqual(user);
    };
    const auto found = std::find_if(m_conversations.begin(), m_conversations.end(), isWithUser);
    return found == m_conversations.end() ? nullptr : *found;
}

void TwitterDirectMessagesConversationManager::refresh()
{
    m_receivedStream->loadNewer();
    m_sentStream->loadNewer();
}

void TwitterDirectMessagesConversationManager::loadOlder()
{
    m_receivedStream->loadOlder();
    m_sentStream->loadOlder();
}

void TwitterDirectMessagesConversationManager::receivedDidUpdate()
{
    addMessages(m_receivedStream->messages(), FromMe::No);
}

void TwitterDirectMessagesConversationManager::sentDidUpdate()
{
    addMessages(m_sentStream->messages(), FromMe::Yes);
}

void TwitterDirectMessagesConversationManager::addMessages(const TwitterDirectMessageList& messages,
    FromMe fromMe)
{
    // Whoever hears of an update may remove the account that owns all this.
    const auto self = shared_from_this();
    for (const TwitterDirectMessageConversationPtr& conversation : std::as_const(m_conversations))
        conversation->beginAddingMessages();
    ConversationIndex index(m_conversations);
    for (const TwitterDirectMessagePtr& message : messages) {
        const TwitterUserPtr& correspondent
            = fromMe == FromMe::Yes ? message->recipient() : message->sender();
        // A message that does not say with whom belongs nowhere.
        if (correspondent)
            index.conversationWith(correspondent).addMessage(message);
    }
    // A copy, as whoever hears of an update may add messages in turn.
    const QList<TwitterDirectMessageConversationPtr> conversations = m_conversations;
    for (const TwitterDirectMessageConversationPtr& conversation : conversations)
        conversation->endAddingMessages();
    m_conversations = KRAdditions::sortedArray(std::move(m_conversations));
    KRNotificationCenter::defaultCenter().post(
        TwitterDirectMessageConversationManagerDidUpdateNotification { this });
}

QDateTime TwitterDirectMessagesConversationManager::newestMessageDate() const
{
    if (m_conversations.isEmpty())
        return {};
    const TwitterDirectMessagePtr message = m_conversations.first()->mostRecentMessage();
    return message ? message->date() : QDateTime();
}

TwitterDirectMessagePtr TwitterDirectMessagesConversationManager::newestMessageNotFromMe() const
{
    const std::shared_ptr<TwitterStreamAccount> account = m_receivedStream->account();
    if (!account)
        return nullptr;
    for (const TwitterDirectMessageConversationPtr& conversation : m_conversations) {
        if (TwitterDirectMessagePtr message = conversation->newestMessageNotFrom(*account))
            return message;
    }
    return nullptr;
}

QDateTime TwitterDirectMessagesConversationManager::newestMessageDateNotFromMe() const
{
    const TwitterDirectMessagePtr message = newestMessageNotFromMe();
    return message ? message->date() : QDateTime();
}
