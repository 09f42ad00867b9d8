#pragma once

#include "Database.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace localservice {

struct User {
    std::int64_t id = 0;
    std::string screenName;
    std::string password;
    std::string name;
    std::string location;
    std::string description;
    std::string url;
    bool hasAvatar = true;
    bool isProtected = false;
    std::int64_t createdAt = 0;
};

struct UserCounts {
    std::int64_t followers = 0;
    std::int64_t following = 0;
    std::int64_t statuses = 0;
    std::int64_t favorites = 0;
};

// A stretch of a list, newest first: `sinceID` is left out, `maxID` belongs to it.
struct Page {
    std::int64_t sinceID = 0;
    std::int64_t maxID = 0; // 0: no upper end
    std::int64_t count = 20;
    std::int64_t offset = 0;
};

// People and who follows whom.
class UserStore {
public:
    explicit UserStore(Database& database)
        : m_database(database)
    {
    }

    std::int64_t add(const User& user);
    [[nodiscard]] std::vector<User> all();
    [[nodiscard]] std::optional<User> withID(std::int64_t id);
    [[nodiscard]] std::optional<User> withScreenName(std::string_view screenName);
    // A number is an ID first and a screen name second.
    [[nodiscard]] std::optional<User> withIDOrScreenName(std::string_view text);

    [[nodiscard]] UserCounts counts(std::int64_t id);

    [[nodiscard]] bool isFollowing(std::int64_t follower, std::int64_t followed);
    [[nodiscard]] bool hasAsked(std::int64_t follower, std::int64_t followed);
    // Following a protected person is only a question, which they have not answered yet.
    void follow(const User& follower, const User& followed, bool isAccepted);
    void unfollow(std::int64_t follower, std::int64_t followed);
    // May `viewer` (0: nobody signed in) read what `author` writes?
    [[nodiscard]] bool maySee(std::int64_t viewer, const User& author);

    [[nodiscard]] std::vector<User> friendsOf(std::int64_t id, const Page& page);
    [[nodiscard]] std::vector<User> followersOf(std::int64_t id, const Page& page);

private:
    Database& m_database;
};

} // namespace localservice
