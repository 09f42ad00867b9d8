#pragma once

#include "Database.h"

#include <optional>
#include <string>
#include <string_view>

namespace localservice {

struct MediaFile {
    std::string contentType;
    std::string content;
};

// Uploaded pictures and movies: a row in the database and a file in the data folder each.
class MediaStore {
public:
    MediaStore(Database& database, const std::string& dataDirectory)
        : m_database(database)
        , m_dataDirectory(dataDirectory)
    {
    }

    // The new file's code, or an empty text when it could not be written.
    std::string
    add(std::string_view service, std::int64_t user, std::string_view contentType, std::string_view content);
    [[nodiscard]] bool has(std::string_view service, std::string_view code);
    [[nodiscard]] std::optional<MediaFile> file(std::string_view service, std::string_view code);

private:
    [[nodiscard]] std::string path(std::string_view service, std::string_view code) const;

    Database& m_database;
    const std::string& m_dataDirectory;
};

// The type of a picture or movie, told from its first bytes; empty for anything else.
[[nodiscard]] std::string sniffedMediaType(std::string_view content);

struct MediaSize {
    int width = 0;
    int height = 0;
};

// Nothing for what is no picture of a usual kind.
[[nodiscard]] std::optional<MediaSize> mediaSize(std::string_view content);

} // namespace localservice
