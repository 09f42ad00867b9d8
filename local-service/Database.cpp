#include "Database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>
#include <utility>

namespace localservice {

namespace {

constexpr const char* schema = R"sql(
CREATE TABLE IF NOT EXISTS settings (key TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS users (
    id INTEGER PRIMARY KEY,
    screen_name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    password TEXT NOT NULL,
    name TEXT NOT NULL,
    location TEXT NOT NULL,
    description TEXT NOT NULL,
    url TEXT NOT NULL,
    has_avatar INTEGER NOT NULL,
    is_protected INTEGER NOT NULL,
    created_at INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS follows (
    follower INTEGER NOT NULL REFERENCES users(id),
    followed INTEGER NOT NULL REFERENCES users(id),
    is_accepted INTEGER NOT NULL,
    sequence INTEGER PRIMARY KEY AUTOINCREMENT,
    UNIQUE (follower, followed));
CREATE INDEX IF NOT EXISTS follows_by_followed ON follows (followed, follower);
CREATE TABLE IF NOT EXISTS statuses (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    user_id INTEGER NOT NULL REFERENCES users(id),
    text TEXT NOT NULL,
    source TEXT NOT NULL,
    in_reply_to_status_id INTEGER NOT NULL DEFAULT 0,
    in_reply_to_user_id INTEGER NOT NULL DEFAULT 0,
    conversation_id INTEGER NOT NULL DEFAULT 0,
    is_deleted INTEGER NOT NULL DEFAULT 0,
    created_at INTEGER NOT NULL);
CREATE INDEX IF NOT EXISTS statuses_by_user ON statuses (user_id, id);
CREATE TABLE IF NOT EXISTS mentions (
    user_id INTEGER NOT NULL REFERENCES users(id),
    status_id INTEGER NOT NULL REFERENCES statuses(id),
    PRIMARY KEY (user_id, status_id)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS favorites (
    user_id INTEGER NOT NULL REFERENCES users(id),
    status_id INTEGER NOT NULL REFERENCES statuses(id),
    PRIMARY KEY (user_id, status_id)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS direct_messages (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    sender INTEGER NOT NULL REFERENCES users(id),
    recipient INTEGER NOT NULL REFERENCES users(id),
    text TEXT NOT NULL,
    created_at INTEGER NOT NULL);
CREATE INDEX IF NOT EXISTS messages_by_sender ON direct_messages (sender, id);
CREATE INDEX IF NOT EXISTS messages_by_recipient ON direct_messages (recipient, id);
CREATE TABLE IF NOT EXISTS short_links (
    service TEXT NOT NULL,
    code TEXT NOT NULL,
    target TEXT NOT NULL,
    PRIMARY KEY (service, code)) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS short_links_by_target ON short_links (service, target);
CREATE TABLE IF NOT EXISTS media (
    service TEXT NOT NULL,
    code TEXT NOT NULL,
    user_id INTEGER NOT NULL REFERENCES users(id),
    content_type TEXT NOT NULL,
    PRIMARY KEY (service, code)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS long_posts (
    code TEXT PRIMARY KEY,
    screen_name TEXT NOT NULL,
    text TEXT NOT NULL,
    created_at INTEGER NOT NULL) WITHOUT ROWID;
)sql";

// SQLite gives its side files the mode of the main one, so making that one private is enough.
bool makePrivateFile(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return false;
    ::close(descriptor);
    return true;
}

} // namespace

Statement::Statement(Database& database, std::string_view text)
    : m_database(database)
{
    if (sqlite3_prepare_v2(database.m_connection,
            text.data(),
            static_cast<int>(text.size()),
            &m_statement,
            nullptr)
        != SQLITE_OK)
        m_database.noteFailure();
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

void Statement::bindNext(std::int64_t value)
{
    if (m_statement && sqlite3_bind_int64(m_statement, ++m_parameter, value) != SQLITE_OK)
        m_database.noteFailure();
}

void Statement::bindNext(std::string_view value)
{
    if (m_statement
        && sqlite3_bind_text64(m_statement,
               ++m_parameter,
               value.data(),
               value.size(),
               SQLITE_TRANSIENT,
               SQLITE_UTF8)
            != SQLITE_OK)
        m_database.noteFailure();
}

bool Statement::step()
{
    if (!m_statement)
        return false;
    m_column = 0;
    const int outcome = sqlite3_step(m_statement);
    if (outcome != SQLITE_ROW && outcome != SQLITE_DONE)
        m_database.noteFailure();
    return outcome == SQLITE_ROW;
}

void Statement::run()
{
    while (step()) { }
}

std::int64_t Statement::nextInteger()
{
    return sqlite3_column_int64(m_statement, m_column++);
}

std::string Statement::nextText()
{
    const int column = m_column++;
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)))
                : std::string();
}

Database::~Database()
{
    close();
}

bool Database::open(const std::string& path)
{
    close();
    if (!makePrivateFile(path)) {
        m_failure = "cannot write " + path;
        return false;
    }
    if (sqlite3_open(path.c_str(), &m_connection) != SQLITE_OK) {
        noteFailure();
        return false;
    }
    sqlite3_busy_timeout(m_connection, 5000);
    execute("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA foreign_keys=ON;");
    execute(schema);
    return m_failure.empty();
}

void Database::close()
{
    sqlite3_close(m_connection);
    m_connection = nullptr;
}

void Database::execute(const char* statements)
{
    if (sqlite3_exec(m_connection, statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        noteFailure();
}

std::int64_t Database::lastInsertedID() const
{
    return sqlite3_last_insert_rowid(m_connection);
}

std::int64_t Database::changedRows() const
{
    return sqlite3_changes(m_connection);
}

void Database::noteFailure()
{
    if (m_failure.empty())
        m_failure = m_connection ? sqlite3_errmsg(m_connection) : "no database";
}

std::string Database::takeFailure()
{
    return std::exchange(m_failure, {});
}

std::string Database::value(std::string_view key)
{
    Statement statement(*this, "SELECT value FROM settings WHERE key = ?");
    return statement.bind(key).step() ? statement.nextText() : std::string();
}

void Database::setValue(std::string_view key, std::string_view value)
{
    Statement(*this, "INSERT OR REPLACE INTO settings VALUES (?, ?)").bind(key, value).run();
}

Transaction::Transaction(Database& database)
    : m_database(database)
{
    m_database.execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    if (m_isOpen)
        m_database.execute("ROLLBACK");
}

void Transaction::commit()
{
    m_isOpen = false;
    m_database.execute("COMMIT");
}

} // namespace localservice
