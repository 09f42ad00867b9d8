#include "OutsideRoutes.h"
#include "OutsideServices.h"
#include "XmlWriter.h"

namespace localservice {

namespace {

Answer uploadRefusal(int code, std::string_view message)
{
    XmlWriter xml;
    xml.beginElement("rsp", "stat=\"fail\"");
    xml.element("err", "", "code=\"" + std::to_string(code) + "\" msg=\"" + escapedMarkup(message) + "\"");
    xml.endElement();
    return xmlAnswer(xml.take());
}

// On the site's own address clients are signed in as everywhere else, and the form holds no password.
std::optional<User> uploader(Site& site, const Call& call)
{
    if (call.viewer)
        return call.viewer;
    const BodyPart* username = call.part("username");
    const BodyPart* password = call.part("password");
    if (!username || !password || !isValidUTF8(username->content))
        return std::nullopt;
    auto user = site.users.withScreenName(username->content);
    return user && user->password == password->content ? std::move(user) : std::nullopt;
}

// Refusals come with status 200, as these services send them: a client finds no link in the answer.
Answer upload(Site& site, const Call& call, const MediaService& service)
{
    const auto user = uploader(site, call);
    if (!user)
        return uploadRefusal(1001, "Invalid twitter username or password");
    const BodyPart* file = call.part(service.partName);
    if (!file)
        return uploadRefusal(1002, "Image not found");
    const std::string type = sniffedMediaType(file->content);
    const bool isMovie = type.starts_with("video/");
    if (type.empty() || (isMovie && service.folder != movieService))
        return uploadRefusal(1003, "Invalid image type");
    const std::string_view folder = isMovie ? movieFolder : service.folder;
    const std::string code = site.media.add(folder, user->id, type, file->content);
    if (code.empty())
        return uploadRefusal(1004, "The file could not be stored");

    const std::string link
        = site.addresses.http + "/" + std::string(folder) + "/" + code + (isMovie ? "z" : "");
    XmlWriter xml;
    xml.beginElement(service.linkElement == "mediaurl" ? "rsp" : "picture",
        service.linkElement == "mediaurl" ? "stat=\"ok\"" : "");
    xml.element("mediaid", code);
    xml.element(service.linkElement, link);
    xml.endElement();
    return xmlAnswer(xml.take());
}

Answer uploadAttachment(Site& site, const Call& call)
{
    const BodyPart* file = call.part("media");
    if (!file)
        return errorAnswer(call, 400, "No file was uploaded.");
    const std::string sniffed = sniffedMediaType(file->content);
    const std::string type = sniffed.empty() ? "application/octet-stream" : sniffed;
    const std::string code = site.media.add(attachmentFolder, call.viewer->id, type, file->content);
    if (code.empty())
        return errorAnswer(call, 500, "The file could not be stored.");
    const std::string link = site.addresses.https + "/" + std::string(attachmentFolder) + "/" + code;
    XmlWriter xml;
    xml.beginElement("rsp", R"(stat="ok" xmlns:atom="http://www.w3.org/2005/Atom")");
    xml.element("mediaid", code);
    xml.element("mediaurl", link);
    xml.element("media_url", link);
    xml.element("size", static_cast<std::int64_t>(file->content.size()));
    xml.element("atom:link", "", R"(rel="enclosure" href=")" + link + R"(/file" type=")" + type + "\"");
    xml.element("media_id", code);
    xml.element("media_id_string", code);
    if (const auto size = mediaSize(file->content))
        xml.element("image",
            "",
            "w=\"" + std::to_string(size->width) + "\" h=\"" + std::to_string(size->height)
                + "\" image_type=\"" + type + "\"");
    xml.endElement();
    return xmlAnswer(xml.take());
}

Answer fileAnswer(Site& site, std::string_view folder, std::string_view code)
{
    auto file = site.media.file(folder, code);
    if (!file)
        return htmlAnswer(404, "Not Found", "<p>There is no such picture.</p>");
    Answer answer { 200, file->contentType, std::move(file->content), {} };
    answer.headers.emplace_back("X-Content-Type-Options", "nosniff");
    return answer;
}

Answer mediaPage(Site& site, std::string_view folder, std::string_view code, const std::string& fileLink)
{
    if (!site.media.has(folder, code))
        return htmlAnswer(404, "Not Found", "<p>There is no such picture.</p>");
    const bool isMovie = folder == movieFolder;
    return htmlAnswer(200,
        isMovie ? "Movie" : "Picture",
        (isMovie ? R"(<video controls src=")" : R"(<img style="max-width:100%" alt="" src=")") + fileLink
            + (isMovie ? "\"></video>" : "\">"));
}

void addMediaService(Router& router, Site& site, const MediaService& service)
{
    const auto anyone = Router::Access::Anyone;
    const std::string folder(service.folder);
    router.post(folder + "/" + std::string(service.uploadPath), anyone, [&site, &service](const Call& call) {
        return upload(site, call, service);
    });
    router.get(folder + "/" + std::string(service.filePath), anyone, [&site, folder](const Call& call) {
        return fileAnswer(site, folder, call.argument);
    });
    router.get(folder + "/*", anyone, [&site, &service, folder](const Call& call) {
        const std::string file
            = replacingAll(std::string(service.filePath), "*", percentEncoded(call.argument));
        return mediaPage(site, folder, call.argument, site.addresses.http + "/" + folder + "/" + file);
    });
}

} // namespace

void addMediaRoutes(Router& router, Site& site)
{
    for (const MediaService& service : mediaServices)
        addMediaService(router, site, service);
    router.post("statusnet/media/upload", Router::Access::SignedIn, [&site](const Call& call) {
        return uploadAttachment(site, call);
    });
    router.get(std::string(attachmentFolder) + "/*/file", Router::Access::Anyone, [&site](const Call& call) {
        return fileAnswer(site, attachmentFolder, call.argument);
    });
    router.get(std::string(attachmentFolder) + "/*", Router::Access::Anyone, [&site](const Call& call) {
        const std::string file = site.addresses.https + "/" + std::string(attachmentFolder) + "/"
            + percentEncoded(call.argument) + "/file";
        return mediaPage(site, attachmentFolder, call.argument, file);
    });
    const std::string folder(movieFolder);
    router.get(folder + "/*z:iphone", Router::Access::Anyone, [&site](const Call& call) {
        return fileAnswer(site, movieFolder, call.argument);
    });
    router.get(folder + "/*z", Router::Access::Anyone, [&site, folder](const Call& call) {
        const std::string link
            = site.addresses.http + "/" + folder + "/" + percentEncoded(call.argument) + "z:iphone";
        return mediaPage(site, movieFolder, call.argument, link);
    });
}

} // namespace localservice
