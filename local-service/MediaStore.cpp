#include "MediaStore.h"

#include "Files.h"
#include "ShortLinkStore.h"

#include <QBuffer>
#include <QImageReader>

#include <filesystem>

namespace localservice {

std::string sniffedMediaType(std::string_view content)
{
    const auto holds = [&](std::size_t offset, std::string_view mark) {
        return content.size() >= offset + mark.size() && content.substr(offset, mark.size()) == mark;
    };
    if (holds(0, "\x89PNG\r\n\x1a\n"))
        return "image/png";
    if (holds(0, "\xff\xd8\xff"))
        return "image/jpeg";
    if (holds(0, "GIF87a") || holds(0, "GIF89a"))
        return "image/gif";
    if (holds(0, "RIFF") && holds(8, "WEBP"))
        return "image/webp";
    if (holds(0, "RIFF") && holds(8, "AVI "))
        return "video/x-msvideo";
    if (holds(0, "\x1a\x45\xdf\xa3"))
        return "video/webm";
    if (holds(4, "ftypqt") || holds(4, "moov") || holds(4, "mdat") || holds(4, "wide") || holds(4, "free"))
        return "video/quicktime";
    return holds(4, "ftyp") ? "video/mp4" : "";
}

std::optional<MediaSize> mediaSize(std::string_view content)
{
    QByteArray bytes = QByteArray::fromRawData(content.data(), qsizetype(content.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer).size();
    return size.isEmpty() ? std::nullopt : std::optional(MediaSize { size.width(), size.height() });
}

std::string MediaStore::path(std::string_view service, std::string_view code) const
{
    return m_dataDirectory + "/media/" + std::string(service) + "-" + std::string(code);
}

std::string MediaStore::add(std::string_view service,
    std::int64_t user,
    std::string_view contentType,
    std::string_view content)
{
    Statement count(m_database, "SELECT count(*) FROM media");
    std::string code = codeForNumber(1'000'000 + (count.step() ? count.nextInteger() : 0));
    std::error_code error;
    std::filesystem::create_directories(m_dataDirectory + "/media", error);
    if (!writeFile(path(service, code), content))
        return {};
    Statement(m_database, "INSERT INTO media VALUES (?, ?, ?, ?)")
        .bind(service, code, user, contentType)
        .run();
    return code;
}

bool MediaStore::has(std::string_view service, std::string_view code)
{
    Statement row(m_database, "SELECT 1 FROM media WHERE service = ? AND code = ?");
    return row.bind(service, code).step();
}

std::optional<MediaFile> MediaStore::file(std::string_view service, std::string_view code)
{
    Statement row(m_database, "SELECT content_type FROM media WHERE service = ? AND code = ?");
    if (!row.bind(service, code).step())
        return std::nullopt;
    auto content = contentsOfFile(path(service, code));
    return content ? std::optional(MediaFile { row.nextText(), std::move(*content) }) : std::nullopt;
}

} // namespace localservice
