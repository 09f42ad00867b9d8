#pragma once

#include "UserStore.h"

namespace localservice {

struct Status {
    std::int64_t id = 0;
    std::int64_t userID = 0;
    std::string text;
    std::string source;
    std::int64_t inReplyToStatusID = 0;
    std::int64_t inReplyToUserID = 0;
    std::int64_t conversationID = 0;
    bool isDeleted = false;
    std::int64_t createdAt = 0;
};

// Posts, mentions and favorites. Every list leaves out deleted posts and what the viewer may not see, newest
// first. A viewer of 0 is nobody signed in.
class StatusStore {
public:
    explicit StatusStore(Database& database)
        : m_database(database)
    {
    }

    // Adds a post written at `createdAt`; the mentions in its text and the post it answers become part of the
    // record.
    std::int64_t add(const Status& status);
    void remove(std::int64_t id);
    // Deleted posts are found too.
    [[nodiscard]] std::optional<Status> withID(std::int64_t id);
    [[nodiscard]] std::optional<Status> newestOf(std::int64_t author);
    [[nodiscard]] bool hasSameText(std::int64_t author, std::string_view text, std::int64_t sinceTime);
    [[nodiscard]] std::int64_t count();

    [[nodiscard]] std::vector<Status> homeTimeline(std::int64_t viewer, const Page& page);
    [[nodiscard]] std::vector<Status> repliesTo(std::int64_t viewer, const Page& page);
    [[nodiscard]] std::vector<Status> userTimeline(std::int64_t author, const Page& page);
    [[nodiscard]] std::vector<Status> publicTimeline(const Page& page);
    [[nodiscard]] std::vector<Status> favoritesOf(std::int64_t viewer, std::int64_t owner, const Page& page);
    [[nodiscard]] std::vector<Status> conversation(std::int64_t viewer, std::int64_t conversationID);
    // Public posts since `sinceTime`, for counting what people talk about.
    [[nodiscard]] std::vector<Status> publicSince(std::int64_t sinceTime);

    [[nodiscard]] bool isFavorite(std::int64_t user, std::int64_t status);
    void addFavorite(std::int64_t user, std::int64_t status);
    void removeFavorite(std::int64_t user, std::int64_t status);

    // Puts `newBase` in the place of `oldBase` in every text, so that links into this service outlive a new
    // port.
    void rebaseLinks(std::string_view oldBase, std::string_view newBase);

private:
    Database& m_database;
};

} // namespace localservice
