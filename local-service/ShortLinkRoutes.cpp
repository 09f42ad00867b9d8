#include "JsonWriter.h"
#include "OutsideRoutes.h"
#include "OutsideServices.h"
#include "XmlWriter.h"

namespace localservice {

namespace {

// A link that can be shortened, with its scheme; nothing for anything else.
std::optional<std::string> linkToShorten(const Call& call, std::string_view parameter)
{
    std::string link = call.parameterOr(parameter, "");
    if (link.starts_with("www."))
        link.insert(0, "http://");
    const bool hasScheme
        = link.starts_with("http://") || link.starts_with("https://") || link.starts_with("ftp://");
    const bool isOneWord = link.find_first_of(" \t\r\n") == std::string::npos;
    return hasScheme && isOneWord && link.size() > 10 && link.size() < 4000 ? std::optional(link)
                                                                            : std::nullopt;
}

std::string shortLink(Site& site, std::string_view service, const std::string& target)
{
    return site.addresses.http + "/" + std::string(service) + "/" + site.shortLinks.codeFor(service, target);
}

// Where a short link of this site leads.
std::optional<std::string> expandedLink(Site& site, const std::string& link)
{
    for (const std::string_view folder : shortLinkFolders) {
        const std::string prefix = site.addresses.http + "/" + std::string(folder) + "/";
        if (link.starts_with(prefix))
            return site.shortLinks.target(folder, std::string_view(link).substr(prefix.size()));
    }
    return std::nullopt;
}

Answer bitlyError(int code, const char* message)
{
    JsonWriter json;
    json.beginObject();
    json.member("errorCode", std::int64_t { code });
    json.member("errorMessage", message);
    json.beginObject("results");
    json.endObject();
    json.member("statusCode", "ERROR");
    json.endObject();
    return jsonAnswer(json.take());
}

Answer bitlyResult(const std::string& key, std::initializer_list<std::pair<const char*, std::string>> members)
{
    JsonWriter json;
    json.beginObject();
    json.member("errorCode", std::int64_t { 0 });
    json.member("errorMessage", "");
    json.beginObject("results");
    json.beginObject(key);
    for (const auto& [name, value] : members)
        json.member(name, value);
    json.endObject();
    json.endObject();
    json.member("statusCode", "OK");
    json.endObject();
    return jsonAnswer(json.take());
}

bool hasBitlyAccount(const Call& call)
{
    return !call.parameterOr("login", "").empty() && call.parameterOr("apiKey", "").starts_with("R_");
}

Answer bitlyShorten(Site& site, const Call& call)
{
    if (!hasBitlyAccount(call))
        return bitlyError(203, "INVALID_LOGIN");
    const auto target = linkToShorten(call, "longUrl");
    if (!target)
        return bitlyError(1206, "URL you tried to shorten was invalid.");
    const std::string code = site.shortLinks.codeFor("bitly", *target);
    return bitlyResult(*target,
        { { "hash", code }, { "shortUrl", shortLink(site, "bitly", *target) }, { "userHash", code } });
}

Answer bitlyExpand(Site& site, const Call& call)
{
    if (!hasBitlyAccount(call))
        return bitlyError(203, "INVALID_LOGIN");
    const std::string link = call.parameterOr("shortUrl", "");
    const auto target = expandedLink(site, link);
    if (!target)
        return bitlyError(1203, "The short link is not known.");
    return bitlyResult(link.substr(link.rfind('/') + 1), { { "longUrl", *target } });
}

// The services that answer with the bare link. Only one of them ends its answer with a line feed.
Answer plainShorten(Site& site,
    const Call& call,
    std::string_view service,
    std::string_view parameter,
    const char* ending)
{
    const auto target = linkToShorten(call, parameter);
    Answer answer
        = textAnswer(target ? shortLink(site, service, *target) + ending : "Error: this is not a link.");
    if (!target)
        answer.status = 400;
    return answer;
}

Answer diggBarShorten(Site& site, const Call& call)
{
    const auto target = linkToShorten(call, "url");
    XmlWriter xml;
    if (!target) {
        xml.beginElement("error", R"(code="1037" message="Invalid URL")");
        xml.endElement();
        Answer answer = xmlAnswer(xml.take());
        answer.status = 400;
        return answer;
    }
    xml.beginElement("shorturls", "count=\"1\"");
    xml.element("shorturl",
        "",
        R"(itemid="" link=")" + escapedMarkup(*target) + R"(" short_url=")"
            + escapedMarkup(shortLink(site, "diggbar", *target)) + R"(" view_count="0")");
    xml.endElement();
    return xmlAnswer(xml.take());
}

Answer longURLExpand(Site& site, const Call& call)
{
    const auto target = expandedLink(site, call.parameterOr("url", ""));
    JsonWriter json;
    json.beginObject();
    json.member(target ? "long_url" : "messages", target.value_or("The link could not be expanded."));
    json.endObject();
    Answer answer = jsonAnswer(json.take());
    answer.status = target ? 200 : 400;
    return answer;
}

Answer plainExpand(Site& site, const Call& call)
{
    const std::string link = call.parameterOr("q", "");
    const auto target = expandedLink(site, link);
    JsonWriter json;
    json.beginObject();
    if (target)
        json.member(link, *target);
    json.endObject();
    Answer answer = jsonAnswer(json.take());
    answer.status = target ? 200 : 404;
    return answer;
}

// Letters beyond ASCII are encoded; what is encoded already stays as it is.
std::string headerSafe(const std::string& link)
{
    std::string safe;
    for (const char c : link) {
        const auto byte = static_cast<unsigned char>(c);
        safe += byte > 0x20 && byte < 0x7F ? std::string(1, c) : percentEncoded(std::string_view(&c, 1));
    }
    return safe;
}

} // namespace

void addShortLinkRoutes(Router& router, Site& site)
{
    const auto anyone = Router::Access::Anyone;
    router.get("bitly/shorten", anyone, [&site](const Call& call) { return bitlyShorten(site, call); });
    router.get("bitly/expand", anyone, [&site](const Call& call) { return bitlyExpand(site, call); });
    router.get("tinyurl/api-create.php", anyone, [&site](const Call& call) {
        return plainShorten(site, call, "tinyurl", "url", "");
    });
    router.get("isgd/api.php", anyone, [&site](const Call& call) {
        return plainShorten(site, call, "isgd", "longurl", "");
    });
    router.get("trim/api/trim_simple", anyone, [&site](const Call& call) {
        return plainShorten(site, call, "trim", "url", "\n");
    });
    router.get("diggbar/url/short/create", anyone, [&site](const Call& call) {
        return diggBarShorten(site, call);
    });
    router.get("longurl/v1/expand", anyone, [&site](const Call& call) { return longURLExpand(site, call); });
    router.get("expand/api/v1.1", anyone, [&site](const Call& call) { return plainExpand(site, call); });
    for (const std::string_view folder : shortLinkFolders) {
        router.get(std::string(folder) + "/*", anyone, [&site, folder](const Call& call) {
            const auto target = site.shortLinks.target(folder, call.argument);
            return target ? redirectAnswer(headerSafe(*target))
                          : htmlAnswer(404, "Not Found", "<p>This short link leads nowhere.</p>");
        });
    }
}

} // namespace localservice
