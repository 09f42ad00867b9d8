#pragma once

#include <array>
#include <string_view>

namespace localservice {

// The folders below which the services of others live. A short link is FOLDER/CODE on the plain port; the
// interface of a service lies in FOLDER as well.
inline constexpr std::array<std::string_view, 9> shortLinkFolders { "bitly",
    "tinyurl",
    "isgd",
    "trim",
    "diggbar",
    "short1",
    "short2",
    "short3",
    "short4" };

// A hosting service for pictures: where it takes files, under which name, how it answers, where a file itself
// is.
struct MediaService {
    std::string_view folder;
    std::string_view uploadPath;
    std::string_view partName;
    std::string_view linkElement;
    std::string_view filePath; // after the folder, “*” for the code
    bool isSecure; // uploads go to the TLS port
};
inline constexpr std::array<MediaService, 6> mediaServices { {
    { "twitpic", "api/upload", "media", "mediaurl", "show/iphone/*", true },
    { "yfrog", "api/upload", "media", "mediaurl", "*:iphone", true },
    { "twitgoo", "api/upload", "media", "mediaurl", "*/img", false },
    { "posterous", "api/upload", "media", "mediaurl", "file/*", false },
    { "imgly", "api/upload", "media", "mediaurl", "show/large/*", false },
    { "pixim", "api/pictures.xml", "picture", "picture_url", "*/full", false },
} };
// Movies are taken by one of them only and live on its second host, with a “z” at the end of their links.
inline constexpr std::string_view movieService = "yfrog";
inline constexpr std::string_view movieFolder = "yfrog2";

// The site's own store, for files of any kind.
inline constexpr std::string_view attachmentFolder = "attachment";

inline constexpr std::string_view longPostFolder = "longpost";
inline constexpr std::string_view shrinkFolder = "shrink";

} // namespace localservice
