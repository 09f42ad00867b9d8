#include "DirectMessageStore.h"

#include <limits>

namespace localservice {

namespace {

std::vector<DirectMessage> readMessages(Statement& rows, std::int64_t user, const Page& page)
{
    rows.bind(user,
        page.sinceID,
        page.maxID > 0 ? page.maxID : std::numeric_limits<std::int64_t>::max(),
        page.count,
        page.offset);
    std::vector<DirectMessage> messages;
    while (rows.step()) {
        DirectMessage message;
        message.id = rows.nextInteger();
        message.senderID = rows.nextInteger();
        message.recipientID = rows.nextInteger();
        message.text = rows.nextText();
        message.createdAt = rows.nextInteger();
        messages.push_back(std::move(message));
    }
    return messages;
}

} // namespace

std::int64_t DirectMessageStore::add(const DirectMessage& message)
{
    Statement(m_database,
        "INSERT INTO direct_messages (sender, recipient, text, created_at) VALUES (?, ?, ?, ?)")
        .bind(message.senderID, message.recipientID, message.text, message.createdAt)
        .run();
    return m_database.lastInsertedID();
}

std::vector<DirectMessage> DirectMessageStore::receivedBy(std::int64_t user, const Page& page)
{
    Statement rows(m_database,
        "SELECT id, sender, recipient, text, created_at FROM direct_messages WHERE recipient = ? AND id > ? "
        "AND"
        " id <= ? ORDER BY id DESC LIMIT ? OFFSET ?");
    return readMessages(rows, user, page);
}

std::vector<DirectMessage> DirectMessageStore::sentBy(std::int64_t user, const Page& page)
{
    Statement rows(m_database,
        "SELECT id, sender, recipient, text, created_at FROM direct_messages WHERE sender = ? AND id > ? AND"
        " id <= ? ORDER BY id DESC LIMIT ? OFFSET ?");
    return readMessages(rows, user, page);
}

} // namespace localservice
