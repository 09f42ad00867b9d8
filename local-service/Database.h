#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace localservice {

class Database;

// One prepared statement. Values are only ever bound, never pasted into the text. Columns count from zero and
// are read in order by the next…() operations, which keeps long column lists readable.
class Statement {
public:
    Statement(Database& database, std::string_view text);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    template <typename... Values>
    Statement& bind(const Values&... values)
    {
        (bindNext(values), ...);
        return *this;
    }

    // True while there is a row to read.
    [[nodiscard]] bool step();
    // What the function makes of every row.
    template <typename Read>
    [[nodiscard]] auto all(Read read)
    {
        std::vector<std::invoke_result_t<Read, Statement&>> values;
        while (step())
            values.push_back(read(*this));
        return values;
    }

    // The same for the first row, if there is one.
    template <typename Read>
    [[nodiscard]] auto first(Read read)
    {
        return step() ? std::optional(read(*this)) : std::nullopt;
    }

    // Runs a statement that gives no rows.
    void run();

    [[nodiscard]] std::int64_t nextInteger();
    [[nodiscard]] std::string nextText();
    [[nodiscard]] bool nextFlag() { return nextInteger() != 0; }

private:
    void bindNext(std::int64_t value);
    void bindNext(int value) { bindNext(static_cast<std::int64_t>(value)); }
    void bindNext(bool value) { bindNext(static_cast<std::int64_t>(value)); }
    void bindNext(std::string_view value);
    void bindNext(const std::string& value) { bindNext(std::string_view(value)); }
    void bindNext(const char* value) { bindNext(std::string_view(value)); }

    Database& m_database;
    sqlite3_stmt* m_statement = nullptr;
    int m_parameter = 0;
    int m_column = 0;
};

// The SQLite file that holds everything the service knows. One connection, one lock: a request holds the lock
// from its first look at the data to its last, so every answer is a consistent picture.
//
// A failing statement gives no rows and is remembered; whoever answers the request asks takeFailure() at the
// end.
class Database {
public:
    Database() = default;
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] bool open(const std::string& path);
    void close();

    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() { return std::unique_lock(m_mutex); }

    void execute(const char* statements);
    [[nodiscard]] std::int64_t lastInsertedID() const;
    [[nodiscard]] std::int64_t changedRows() const;

    // The first failure since the last call, or an empty text.
    [[nodiscard]] std::string takeFailure();

    [[nodiscard]] std::string value(std::string_view key);
    void setValue(std::string_view key, std::string_view value);

private:
    friend class Statement;
    void noteFailure();

    sqlite3* m_connection = nullptr;
    std::recursive_mutex m_mutex;
    std::string m_failure;
};

// Groups writes; what is not committed is rolled back.
class Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Database& m_database;
    bool m_isOpen = true;
};

} // namespace localservice
