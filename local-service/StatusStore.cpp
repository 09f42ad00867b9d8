#include "StatusStore.h"

#include "Text.h"

#include <limits>

namespace localservice {

namespace {

#define STATUS_COLUMNS                                                                                       \
    "s.id, s.user_id, s.text, s.source, s.in_reply_to_status_id, s.in_reply_to_user_id, s.conversation_id, " \
    "s.is_deleted, s.created_at "

// Parameters 1 to 4 are the page's ends, count and offset, parameter 5 is the viewer.
#define IN_PAGE "NOT s.is_deleted AND s.id > ?1 AND s.id <= ?2 "
#define ORDERED "ORDER BY s.id DESC LIMIT ?3 OFFSET ?4"
#define VISIBLE                                                                                              \
    "(NOT u.is_protected OR u.id = ?5 OR EXISTS (SELECT 1 FROM follows f WHERE f.follower = ?5 AND"          \
    " f.followed = u.id AND f.is_accepted)) "

Status readStatus(Statement& row)
{
    Status status;
    status.id = row.nextInteger();
    status.userID = row.nextInteger();
    status.text = row.nextText();
    status.source = row.nextText();
    status.inReplyToStatusID = row.nextInteger();
    status.inReplyToUserID = row.nextInteger();
    status.conversationID = row.nextInteger();
    status.isDeleted = row.nextFlag();
    status.createdAt = row.nextInteger();
    return status;
}

Statement& bindPage(Statement& statement, const Page& page)
{
    const std::int64_t maxID = page.maxID > 0 ? page.maxID : std::numeric_limits<std::int64_t>::max();
    return statement.bind(page.sinceID, maxID, page.count, page.offset);
}

} // namespace

std::int64_t StatusStore::add(const Status& status)
{
    std::int64_t answeredUser = 0;
    std::int64_t conversation = 0;
    if (status.inReplyToStatusID > 0) {
        if (const auto parent = withID(status.inReplyToStatusID)) {
            answeredUser = parent->userID;
            conversation = parent->conversationID;
        }
    }
    Statement(m_database,
        "INSERT INTO statuses (user_id, text, source, in_reply_to_status_id, in_reply_to_user_id, "
        "conversation_id,"
        " created_at) VALUES (?, ?, ?, ?, ?, ?, ?)")
        .bind(status.userID,
            status.text,
            status.source,
            status.inReplyToStatusID,
            answeredUser,
            conversation,
            status.createdAt)
        .run();
    const std::int64_t id = m_database.lastInsertedID();
    if (conversation == 0)
        Statement(m_database, "UPDATE statuses SET conversation_id = id WHERE id = ?").bind(id).run();

    if (answeredUser != 0 && answeredUser != status.userID)
        Statement(m_database, "INSERT OR IGNORE INTO mentions VALUES (?, ?)").bind(answeredUser, id).run();
    for (const TextPiece& piece : piecesOfText(status.text)) {
        if (piece.kind == TextPiece::Kind::Mention)
            Statement(m_database,
                "INSERT OR IGNORE INTO mentions SELECT id, ? FROM users WHERE screen_name = ?")
                .bind(id, piece.text.substr(1))
                .run();
    }
    return id;
}

void StatusStore::remove(std::int64_t id)
{
    Statement(m_database, "UPDATE statuses SET is_deleted = 1, text = '' WHERE id = ?").bind(id).run();
    Statement(m_database, "DELETE FROM favorites WHERE status_id = ?").bind(id).run();
    Statement(m_database, "DELETE FROM mentions WHERE status_id = ?").bind(id).run();
}

std::optional<Status> StatusStore::withID(std::int64_t id)
{
    Statement row(m_database, "SELECT " STATUS_COLUMNS "FROM statuses s WHERE s.id = ?");
    return row.bind(id).first(readStatus);
}

std::optional<Status> StatusStore::newestOf(std::int64_t author)
{
    Statement row(m_database,
        "SELECT " STATUS_COLUMNS
        "FROM statuses s WHERE s.user_id = ? AND NOT s.is_deleted ORDER BY s.id DESC LIMIT 1");
    return row.bind(author).first(readStatus);
}

bool StatusStore::hasSameText(std::int64_t author, std::string_view text, std::int64_t sinceTime)
{
    Statement row(m_database,
        "SELECT 1 FROM statuses WHERE user_id = ? AND text = ? AND created_at > ? AND NOT is_deleted");
    return row.bind(author, text, sinceTime).step();
}

std::int64_t StatusStore::count()
{
    Statement row(m_database, "SELECT count(*) FROM statuses WHERE NOT is_deleted");
    return row.step() ? row.nextInteger() : 0;
}

std::vector<Status> StatusStore::homeTimeline(std::int64_t viewer, const Page& page)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS "FROM statuses s WHERE " IN_PAGE
        "AND (s.user_id = ?5 OR s.user_id IN (SELECT followed FROM follows WHERE follower = ?5 AND "
        "is_accepted)) " ORDERED);
    return bindPage(rows, page).bind(viewer).all(readStatus);
}

std::vector<Status> StatusStore::repliesTo(std::int64_t viewer, const Page& page)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS
        "FROM mentions m JOIN statuses s ON s.id = m.status_id JOIN users u ON u.id = s.user_id "
        "WHERE m.user_id = ?5 AND s.user_id <> ?5 AND " IN_PAGE "AND " VISIBLE ORDERED);
    return bindPage(rows, page).bind(viewer).all(readStatus);
}

std::vector<Status> StatusStore::userTimeline(std::int64_t author, const Page& page)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS "FROM statuses s WHERE s.user_id = ?5 AND " IN_PAGE ORDERED);
    return bindPage(rows, page).bind(author).all(readStatus);
}

std::vector<Status> StatusStore::publicTimeline(const Page& page)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS "FROM statuses s JOIN users u ON u.id = s.user_id "
        "WHERE NOT u.is_protected AND " IN_PAGE ORDERED);
    return bindPage(rows, page).all(readStatus);
}

std::vector<Status> StatusStore::favoritesOf(std::int64_t viewer, std::int64_t owner, const Page& page)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS
        "FROM favorites v JOIN statuses s ON s.id = v.status_id JOIN users u ON u.id = s.user_id "
        "WHERE v.user_id = ?6 AND " IN_PAGE "AND " VISIBLE ORDERED);
    return bindPage(rows, page).bind(viewer, owner).all(readStatus);
}

std::vector<Status> StatusStore::conversation(std::int64_t viewer, std::int64_t conversationID)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS "FROM statuses s JOIN users u ON u.id = s.user_id "
        "WHERE s.conversation_id = ?6 AND " IN_PAGE "AND " VISIBLE ORDERED);
    Page everything;
    everything.count = 1000;
    return bindPage(rows, everything).bind(viewer, conversationID).all(readStatus);
}

std::vector<Status> StatusStore::publicSince(std::int64_t sinceTime)
{
    Statement rows(m_database,
        "SELECT " STATUS_COLUMNS "FROM statuses s JOIN users u ON u.id = s.user_id "
        "WHERE NOT u.is_protected AND NOT s.is_deleted AND s.created_at > ? ORDER BY s.id DESC");
    return rows.bind(sinceTime).all(readStatus);
}

bool StatusStore::isFavorite(std::int64_t user, std::int64_t status)
{
    return Statement(m_database, "SELECT 1 FROM favorites WHERE user_id = ? AND status_id = ?")
        .bind(user, status)
        .step();
}

void StatusStore::addFavorite(std::int64_t user, std::int64_t status)
{
    Statement(m_database, "INSERT OR IGNORE INTO favorites VALUES (?, ?)").bind(user, status).run();
}

void StatusStore::removeFavorite(std::int64_t user, std::int64_t status)
{
    Statement(m_database, "DELETE FROM favorites WHERE user_id = ? AND status_id = ?")
        .bind(user, status)
        .run();
}

void StatusStore::rebaseLinks(std::string_view oldBase, std::string_view newBase)
{
    Statement(m_database, "UPDATE statuses SET text = replace(text, ?1, ?2) WHERE instr(text, ?1) > 0")
        .bind(oldBase, newBase)
        .run();
    Statement(m_database, "UPDATE direct_messages SET text = replace(text, ?1, ?2) WHERE instr(text, ?1) > 0")
        .bind(oldBase, newBase)
        .run();
}

} // namespace localservice
