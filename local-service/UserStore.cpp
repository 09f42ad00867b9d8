#include "UserStore.h"

#include "Text.h"

namespace localservice {

namespace {

#define USER_COLUMNS                                                                                         \
    "u.id, u.screen_name, u.password, u.name, u.location, u.description, u.url, u.has_avatar, "              \
    "u.is_protected, "                                                                                       \
    "u.created_at "

User readUser(Statement& row)
{
    User user;
    user.id = row.nextInteger();
    user.screenName = row.nextText();
    user.password = row.nextText();
    user.name = row.nextText();
    user.location = row.nextText();
    user.description = row.nextText();
    user.url = row.nextText();
    user.hasAvatar = row.nextFlag();
    user.isProtected = row.nextFlag();
    user.createdAt = row.nextInteger();
    return user;
}

} // namespace

std::int64_t UserStore::add(const User& user)
{
    Statement(m_database,
        "INSERT INTO users (screen_name, password, name, location, description, url, has_avatar, "
        "is_protected, "
        "created_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .bind(user.screenName,
            user.password,
            user.name,
            user.location,
            user.description,
            user.url,
            user.hasAvatar,
            user.isProtected,
            user.createdAt)
        .run();
    return m_database.lastInsertedID();
}

std::vector<User> UserStore::all()
{
    Statement rows(m_database, "SELECT " USER_COLUMNS "FROM users u ORDER BY u.id");
    return rows.all(readUser);
}

std::optional<User> UserStore::withID(std::int64_t id)
{
    Statement row(m_database, "SELECT " USER_COLUMNS "FROM users u WHERE u.id = ?");
    return row.bind(id).first(readUser);
}

std::optional<User> UserStore::withScreenName(std::string_view screenName)
{
    Statement row(m_database, "SELECT " USER_COLUMNS "FROM users u WHERE u.screen_name = ?");
    return row.bind(screenName).first(readUser);
}

std::optional<User> UserStore::withIDOrScreenName(std::string_view text)
{
    if (const auto id = decimalNumber(text)) {
        if (auto user = withID(*id))
            return user;
    }
    return withScreenName(text);
}

UserCounts UserStore::counts(std::int64_t id)
{
    Statement row(m_database,
        "SELECT (SELECT count(*) FROM follows WHERE followed = ?1 AND is_accepted),"
        " (SELECT count(*) FROM follows WHERE follower = ?1 AND is_accepted),"
        " (SELECT count(*) FROM statuses WHERE user_id = ?1 AND NOT is_deleted),"
        " (SELECT count(*) FROM favorites WHERE user_id = ?1)");
    UserCounts counts;
    if (row.bind(id).step()) {
        counts.followers = row.nextInteger();
        counts.following = row.nextInteger();
        counts.statuses = row.nextInteger();
        counts.favorites = row.nextInteger();
    }
    return counts;
}

bool UserStore::isFollowing(std::int64_t follower, std::int64_t followed)
{
    Statement row(m_database, "SELECT 1 FROM follows WHERE follower = ? AND followed = ? AND is_accepted");
    return row.bind(follower, followed).step();
}

bool UserStore::hasAsked(std::int64_t follower, std::int64_t followed)
{
    Statement row(m_database,
        "SELECT 1 FROM follows WHERE follower = ? AND followed = ? AND NOT is_accepted");
    return row.bind(follower, followed).step();
}

void UserStore::follow(const User& follower, const User& followed, bool isAccepted)
{
    Statement(m_database, "INSERT OR REPLACE INTO follows (follower, followed, is_accepted) VALUES (?, ?, ?)")
        .bind(follower.id, followed.id, isAccepted)
        .run();
}

void UserStore::unfollow(std::int64_t follower, std::int64_t followed)
{
    Statement(m_database, "DELETE FROM follows WHERE follower = ? AND followed = ?")
        .bind(follower, followed)
        .run();
}

bool UserStore::maySee(std::int64_t viewer, const User& author)
{
    return !author.isProtected || viewer == author.id || isFollowing(viewer, author.id);
}

std::vector<User> UserStore::friendsOf(std::int64_t id, const Page& page)
{
    Statement rows(m_database,
        "SELECT " USER_COLUMNS "FROM follows f JOIN users u ON u.id = f.followed WHERE f.follower = ? AND"
        " f.is_accepted ORDER BY f.sequence DESC LIMIT ? OFFSET ?");
    return rows.bind(id, page.count, page.offset).all(readUser);
}

std::vector<User> UserStore::followersOf(std::int64_t id, const Page& page)
{
    Statement rows(m_database,
        "SELECT " USER_COLUMNS "FROM follows f JOIN users u ON u.id = f.follower WHERE f.followed = ? AND"
        " f.is_accepted ORDER BY f.sequence DESC LIMIT ? OFFSET ?");
    return rows.bind(id, page.count, page.offset).all(readUser);
}

} // namespace localservice
