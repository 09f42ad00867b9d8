#include "OutsideRoutes.h"
#include "OutsideServices.h"
#include "ShortLinkStore.h"
#include "XmlWriter.h"

#include <array>

namespace localservice {

namespace {

constexpr std::size_t longestPost = 140;
constexpr std::size_t longestLongPost = 100'000;

Answer longPostError(int status, std::string_view message)
{
    XmlWriter xml;
    xml.beginElement("twitlonger");
    xml.element("error", message);
    xml.endElement();
    Answer answer = xmlAnswer(xml.take());
    answer.status = status;
    return answer;
}

// As many whole words of the text as fit into `limit` characters, or as many characters when the first is too
// long.
std::string beginning(const std::string& text, std::size_t limit)
{
    std::size_t end = 0;
    std::size_t wordEnd = 0;
    std::size_t characters = 0;
    while (end < text.size() && characters < limit) {
        if (text[end] == ' ' || text[end] == '\n')
            wordEnd = end;
        ++end;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
            ++end;
        ++characters;
    }
    return end == text.size() ? text : text.substr(0, wordEnd > 0 ? wordEnd : end);
}

Answer storeLongPost(Site& site, const Call& call)
{
    const std::string text = tidiedText(call.parameterOr("message", ""));
    const std::string username = call.parameterOr("username", "");
    if (call.parameterOr("application", "").empty() || call.parameterOr("api_key", "").empty())
        return longPostError(403, "Invalid application or API key.");
    if (text.empty() || characterCount(text) > longestLongPost)
        return longPostError(400, "The message is missing or too long.");

    Statement count(site.database, "SELECT count(*) FROM long_posts");
    const std::string code = codeForNumber(2'000'000 + (count.step() ? count.nextInteger() : 0));
    Statement(site.database, "INSERT INTO long_posts VALUES (?, ?, ?, ?)")
        .bind(code, username, text, currentTime())
        .run();
    const std::string folder = site.addresses.http + "/" + std::string(longPostFolder);
    const std::string shortLink = folder + "/" + code;
    const std::string ending = "… " + shortLink;

    XmlWriter xml;
    xml.beginElement("twitlonger");
    xml.beginElement("post");
    xml.element("id", code);
    xml.element("link", folder + "/show/" + code);
    xml.element("short", shortLink);
    xml.element("content", beginning(text, longestPost - characterCount(ending)) + ending);
    xml.endElement();
    xml.endElement();
    return xmlAnswer(xml.take());
}

Answer longPostPage(Site& site, const std::string& code)
{
    Statement row(site.database, "SELECT screen_name, text, created_at FROM long_posts WHERE code = ?");
    if (!row.bind(code).step())
        return htmlAnswer(404, "Not Found", "<p>There is no such post.</p>");
    const std::string author = row.nextText();
    const std::string text = row.nextText();
    return htmlAnswer(200,
        author,
        "<h1>" + escapedMarkup(author) + "</h1><div class=\"post\">" + escapedMarkup(text) + "\n<small>"
            + restDate(row.nextInteger()) + "</small></div>");
}

// The short form of a word, or the word itself.
std::string abbreviated(const std::string& word)
{
    static constexpr std::array<std::pair<const char*, const char*>, 29> forms { { { "you", "u" },
        { "your", "ur" },
        { "are", "r" },
        { "to", "2" },
        { "too", "2" },
        { "for", "4" },
        { "and", "&" },
        { "be", "b" },
        { "see", "c" },
        { "why", "y" },
        { "before", "b4" },
        { "great", "gr8" },
        { "late", "l8" },
        { "later", "l8r" },
        { "with", "w/" },
        { "without", "w/o" },
        { "because", "bc" },
        { "people", "ppl" },
        { "please", "pls" },
        { "thanks", "thx" },
        { "tomorrow", "tmrw" },
        { "tonight", "2nite" },
        { "today", "2day" },
        { "about", "abt" },
        { "message", "msg" },
        { "picture", "pic" },
        { "through", "thru" },
        { "though", "tho" },
        { "something", "smth" } } };
    const std::size_t end = word.find_last_not_of(".,;:!?") + 1;
    const std::string lower = asciiLowercase(std::string_view(word).substr(0, end));
    for (const auto& [from, to] : forms) {
        if (lower == from)
            return to + word.substr(end);
    }
    return word;
}

std::string shrunk(const std::string& text)
{
    std::string result;
    std::string word;
    const auto finish = [&] {
        result += abbreviated(word);
        word.clear();
    };
    for (const char c : text) {
        if (c != ' ' && c != '\n') {
            word += c;
            continue;
        }
        finish();
        if (result.empty() || (result.back() != ' ' && result.back() != '\n'))
            result += c;
    }
    finish();
    return result;
}

Answer shrinkAnswer(const Call& call)
{
    const std::string text = tidiedText(call.parameterOr("text", ""));
    const std::string result = shrunk(text);
    XmlWriter xml;
    xml.beginElement("tweetshrink");
    xml.element("original", text);
    xml.element("text", result);
    xml.element("difference", static_cast<std::int64_t>(characterCount(text) - characterCount(result)));
    xml.endElement();
    return xmlAnswer(xml.take());
}

} // namespace

void addLongPostRoutes(Router& router, Site& site)
{
    const std::string folder(longPostFolder);
    router.post(folder + "/api_post", Router::Access::Anyone, [&site](const Call& call) {
        return storeLongPost(site, call);
    });
    for (const char* path : { "/show/*", "/*" })
        router.get(folder + path, Router::Access::Anyone, [&site](const Call& call) {
            return longPostPage(site, call.argument);
        });
    router.get(std::string(shrinkFolder) + "/shrink", Router::Access::Anyone, [](const Call& call) {
        return shrinkAnswer(call);
    });
}

} // namespace localservice
