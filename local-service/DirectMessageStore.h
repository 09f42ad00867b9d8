#pragma once

#include "UserStore.h"

namespace localservice {

struct DirectMessage {
    std::int64_t id = 0;
    std::int64_t senderID = 0;
    std::int64_t recipientID = 0;
    std::string text;
    std::int64_t createdAt = 0;
};

class DirectMessageStore {
public:
    explicit DirectMessageStore(Database& database)
        : m_database(database)
    {
    }

    std::int64_t add(const DirectMessage& message);
    [[nodiscard]] std::vector<DirectMessage> receivedBy(std::int64_t user, const Page& page);
    [[nodiscard]] std::vector<DirectMessage> sentBy(std::int64_t user, const Page& page);

private:
    Database& m_database;
};

} // namespace localservice
