#pragma once

#include "Database.h"

#include <optional>
#include <string>
#include <string_view>

namespace localservice {

// The links that each shortening service made. The same target gets the same code.
class ShortLinkStore {
public:
    explicit ShortLinkStore(Database& database)
        : m_database(database)
    {
    }

    std::string codeFor(std::string_view service, std::string_view target);
    [[nodiscard]] std::optional<std::string> target(std::string_view service, std::string_view code);

private:
    Database& m_database;
};

// A short code that does not look counted; different numbers below two billion give different codes.
[[nodiscard]] std::string codeForNumber(std::int64_t number);

} // namespace localservice
