#include "ServicesFile.h"

#include "OutsideServices.h"

namespace localservice {

namespace {

// The key's first part for each hosting service, in the order of mediaServices.
constexpr std::array<std::string_view, mediaServices.size()> mediaKeys { "TwitPic",
    "YFrog",
    "Twitgoo",
    "Posterous",
    "ImgLy",
    "PixIm" };

std::string line(std::string_view key, std::string_view value)
{
    return std::string(key) + "=" + std::string(value) + "\n";
}

} // namespace

std::string servicesFileFor(int httpPort, int httpsPort)
{
    const std::string http = "127.0.0.1:" + std::to_string(httpPort);
    const std::string https = "127.0.0.1:" + std::to_string(httpsPort);
    const auto below
        = [](const std::string& host, std::string_view folder) { return host + "/" + std::string(folder); };
    std::string file = "[ServiceHosts]\n";
    file += line("RESTHost", https) + line("SearchHost", http) + line("WebHost", http);

    for (const auto& [key, folder] : { std::pair("Bitly", "bitly"),
             std::pair("TinyURL", "tinyurl"),
             std::pair("IsGd", "isgd"),
             std::pair("TrIm", "trim"),
             std::pair("DiggBar", "diggbar") })
        file += line(std::string(key) + "APIHost", below(http, folder));
    for (const auto& [key, folder] : { std::pair("Bitly", "bitly"),
             std::pair("TinyURL", "tinyurl"),
             std::pair("IsGd", "isgd"),
             std::pair("TrIm", "trim"),
             std::pair("OtherShort1", "short1"),
             std::pair("OtherShort2", "short2"),
             std::pair("OtherShort3", "short3"),
             std::pair("OtherShort4", "short4") })
        file += line(std::string(key) + "LinkHost", below(http, folder));
    file += line("LongURLAPIHost", below(http, "longurl")) + line("ExpansionAPIHost", below(http, "expand"));

    for (std::size_t i = 0; i < mediaServices.size(); ++i) {
        const MediaService& service = mediaServices.at(i);
        const std::string key(mediaKeys.at(i));
        file += line(key + "APIHost", below(service.isSecure ? https : http, service.folder));
        if (service.folder != "posterous")
            file += line(key + "LinkHost", below(http, service.folder));
    }
    file += line("YFrogSecondLinkHost", below(http, movieFolder));
    file += line("TwitlongerAPIHost", below(http, longPostFolder))
        + line("TweetshrinkAPIHost", below(http, shrinkFolder));
    return file;
}

} // namespace localservice
