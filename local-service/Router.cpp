#include "Router.h"

#include "XmlWriter.h"

#include <algorithm>
#include <iostream>
#include <limits>

namespace localservice {

namespace {

// The text at the pattern's last “*” (empty when it has none), or nothing when the path does not fit.
std::optional<std::string> matchedArgument(std::string_view pattern, std::string_view path)
{
    std::string argument;
    while (!pattern.empty()) {
        if (pattern.front() != '*') {
            if (path.empty() || path.front() != pattern.front())
                return std::nullopt;
            path.remove_prefix(1);
            pattern.remove_prefix(1);
            continue;
        }
        pattern.remove_prefix(1);
        // A piece reaches to the next slash, less what the pattern wants to see before it.
        const std::string_view piece = path.substr(0, path.find('/'));
        const std::string_view ending = pattern.substr(0, pattern.find('/'));
        if (piece.size() <= ending.size() || !piece.ends_with(ending))
            return std::nullopt;
        argument = piece.substr(0, piece.size() - ending.size());
        path.remove_prefix(argument.size());
    }
    return path.empty() ? std::optional(std::move(argument)) : std::nullopt;
}

// The operations answer at the root and below the folder that many sites keep them in.
std::string_view withoutFolder(std::string_view path)
{
    for (const std::string_view folder : { "/api/", "/" }) {
        if (path.starts_with(folder))
            return path.substr(folder.size());
    }
    return path;
}

bool isWellFormed(const Call& call)
{
    return isValidUTF8(call.path)
        && std::all_of(call.parameters.begin(), call.parameters.end(), [](const auto& pair) {
               return isValidUTF8(pair.first) && isValidUTF8(pair.second);
           });
}

} // namespace

std::optional<std::string> Call::parameter(std::string_view name) const
{
    const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const auto& pair) {
        return pair.first == name;
    });
    return found == parameters.end() ? std::nullopt : std::optional(found->second);
}

std::string Call::parameterOr(std::string_view name, std::string_view otherwise) const
{
    return parameter(name).value_or(std::string(otherwise));
}

std::int64_t Call::numberOr(std::string_view name, std::int64_t otherwise) const
{
    const auto text = parameter(name);
    return text ? decimalNumber(*text).value_or(otherwise) : otherwise;
}

const BodyPart* Call::part(std::string_view name) const
{
    const auto found
        = std::find_if(parts.begin(), parts.end(), [&](const auto& part) { return part.name == name; });
    return found == parts.end() ? nullptr : &*found;
}

Page Call::page(std::int64_t defaultCount) const
{
    Page page;
    page.sinceID = numberOr("since_id", 0);
    page.maxID = numberOr("max_id", 0);
    page.count = std::clamp<std::int64_t>(numberOr("count", defaultCount), 1, 200);
    const std::int64_t number = std::clamp<std::int64_t>(numberOr("page", 1), 1, 1'000'000);
    page.offset = (number - 1) * page.count;
    return page;
}

Answer xmlAnswer(std::string body)
{
    return { 200, "application/xml; charset=utf-8", std::move(body), {} };
}

Answer jsonAnswer(std::string body)
{
    return { 200, "application/json; charset=utf-8", std::move(body), {} };
}

Answer textAnswer(std::string body)
{
    return { 200, "text/plain; charset=utf-8", std::move(body), {} };
}

Answer redirectAnswer(const std::string& target)
{
    Answer answer = htmlAnswer(301, "Moved", "<p>It is over there.</p>");
    answer.headers.emplace_back("Location", target);
    return answer;
}

Answer htmlAnswer(int status, std::string_view title, std::string_view body)
{
    std::string page = "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" + escapedMarkup(title)
        + "</title>\n<style>body{font:16px/1.5 sans-serif;max-width:36em;margin:2em auto;padding:0 "
          "1em;color:#223}"
          "img{border-radius:8px;vertical-align:middle;margin-right:.6em}a{color:#1a6fb5}.post{border-bottom:"
          "1px "
          "solid #dde;padding:.6em 0;white-space:pre-wrap}small{color:#778}</style></head>\n<body>";
    page += body;
    page += "</body></html>\n";
    return { status, "text/html; charset=utf-8", std::move(page), {} };
}

Answer errorAnswer(const Call& call, int status, std::string_view message)
{
    XmlWriter xml;
    xml.beginElement("hash");
    xml.element("error", message);
    xml.element("request", std::string_view(isValidUTF8(call.target) ? call.target : std::string()));
    xml.endElement();
    Answer answer = xmlAnswer(xml.take());
    answer.status = status;
    return answer;
}

void Router::get(std::string pattern, Access access, Handler handler)
{
    m_routes.push_back({ "GET", std::move(pattern), access, std::move(handler) });
}

void Router::post(std::string pattern, Access access, Handler handler)
{
    m_routes.push_back({ "POST", std::move(pattern), access, std::move(handler) });
}

// False when credentials came along that fit nobody. Without any, the caller is a stranger.
bool Router::signIn(Call& call) const
{
    constexpr std::string_view scheme = "basic ";
    if (call.authorization.empty())
        return true;
    if (!asciiLowercase(call.authorization).starts_with(scheme))
        return false;
    const auto credentials = decodedBase64(std::string_view(call.authorization).substr(scheme.size()));
    const std::size_t colon = credentials ? credentials->find(':') : std::string::npos;
    if (colon == std::string::npos)
        return false;
    auto user = m_site.users.withScreenName(std::string_view(*credentials).substr(0, colon));
    if (!user || user->password != std::string_view(*credentials).substr(colon + 1))
        return false;
    call.viewer = std::move(user);
    return true;
}

Answer Router::answer(Call call) const
{
    const std::string_view path = withoutFolder(call.path);
    const Route* chosen = nullptr;
    bool isOtherMethod = false;
    for (const Route& route : m_routes) {
        const auto argument = matchedArgument(route.pattern, path);
        if (!argument)
            continue;
        if (route.method == call.method || (route.method == "GET" && call.method == "HEAD")) {
            call.argument = *argument;
            chosen = &route;
            break;
        }
        isOtherMethod = true;
    }
    if (!chosen && isOtherMethod)
        return { 405,
            "text/html; charset=utf-8",
            std::string("<div class=\"error\">This method requires a ")
                + (call.method == "POST" ? "GET" : "POST") + ".</div>\n",
            {} };
    if (!chosen)
        return htmlAnswer(404, "Not Found", "<h1>Not Found</h1><div class=\"error\">Page not found.</div>");
    if (!isWellFormed(call))
        return errorAnswer(call, 400, "The request is not valid UTF-8.");

    const auto lock = m_site.database.lock();
    if (!signIn(call) || (chosen->access == Access::SignedIn && !call.viewer)) {
        Answer refusal = errorAnswer(call, 401, "Could not authenticate you.");
        refusal.headers.emplace_back("WWW-Authenticate", "Basic realm=\"Pelinor local service\"");
        return refusal;
    }
    Answer answer = chosen->handler(call);
    if (const std::string failure = m_site.database.takeFailure(); !failure.empty()) {
        std::cerr << "pelinor-local-service: " << failure << std::endl;
        return errorAnswer(call, 500, "The service could not read or write its data.");
    }
    return answer;
}

} // namespace localservice
