#include "Community.h"
#include "Files.h"
#include "WebPages.h"

#include <array>
#include <filesystem>

namespace localservice {

namespace {

struct PictureSize {
    const char* suffix;
    int pixels;
};
// Every name ends with the empty suffix, so that one comes last.
constexpr std::array<PictureSize, 3> sizes { { { "_normal", 48 }, { "_bigger", 96 }, { "", 240 } } };

std::string portraitFile(const std::string& dataDirectory, const std::string& name)
{
    return dataDirectory + "/portraits/" + name + ".png";
}

Answer pngAnswer(std::optional<std::string> picture)
{
    if (!picture)
        return htmlAnswer(404, "Not Found", "<p>There is no such picture.</p>");
    Answer answer { 200, "image/png", std::move(*picture), {} };
    answer.headers.emplace_back("Cache-Control", "max-age=86400");
    return answer;
}

// The argument is a screen name with the suffix of a size. Only names that people have lead to a file.
Answer portraitAnswer(Site& site, const std::string& argument)
{
    for (const PictureSize& size : sizes) {
        const std::string suffix = size.suffix;
        if (!argument.ends_with(suffix))
            continue;
        const auto user = site.users.withScreenName(argument.substr(0, argument.size() - suffix.size()));
        if (user)
            return pngAnswer(contentsOfFile(portraitFile(site.dataDirectory, user->screenName + suffix)));
    }
    return pngAnswer(std::nullopt);
}

} // namespace

bool drawPortraits(const std::string& dataDirectory)
{
    std::error_code error;
    std::filesystem::create_directories(dataDirectory + "/portraits", error);
    for (const Person& person : communityPeople()) {
        for (const PictureSize& size : sizes) {
            const std::string file
                = portraitFile(dataDirectory, std::string(person.screenName) + size.suffix);
            if (person.hasAvatar && !std::filesystem::exists(file, error)
                && !writeFile(file, drawnPortrait(person.portrait, size.pixels)))
                return false;
        }
    }
    return true;
}

void addPictureRoutes(Router& router, Site& site)
{
    router.get("avatar/*.png", Router::Access::Anyone, [&site](const Call& call) {
        return portraitAnswer(site, call.argument);
    });
    for (const PictureSize& size : sizes) {
        router.get(std::string("theme/default-avatar") + size.suffix + ".png",
            Router::Access::Anyone,
            [pixels = size.pixels](const Call&) { return pngAnswer(drawnSilhouette(pixels)); });
    }
}

} // namespace localservice
