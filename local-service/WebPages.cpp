#include "WebPages.h"

#include "RestDocuments.h"

namespace localservice {

namespace {

Answer notFoundPage(std::string_view what)
{
    return htmlAnswer(404, "Not Found", "<h1>Not Found</h1><p>" + escapedMarkup(what) + "</p>");
}

std::string postMarkup(Site& site, RestDocuments& documents, const Status& status)
{
    const User author = site.users.withID(status.userID).value_or(User {});
    const std::string link = site.profileLink(author);
    return R"(<div class="post"><img src=")" + site.avatarLink(author, "_normal")
        + R"(" width="48" height="48" alt=""><a href=")" + link + "\">" + escapedMarkup(author.screenName)
        + "</a> " + documents.html(status.text) + "\n<small><a href=\"" + link + "/status/"
        + std::to_string(status.id) + "\">" + restDate(status.createdAt) + "</a></small></div>";
}

std::string postsMarkup(Site& site, const std::vector<Status>& statuses)
{
    RestDocuments documents(site, 0);
    std::string markup;
    for (const Status& status : statuses)
        markup += postMarkup(site, documents, status);
    return markup;
}

Answer profilePage(Site& site, const std::string& screenName)
{
    const auto user = site.users.withScreenName(screenName);
    if (!user)
        return notFoundPage("Nobody here has this name.");
    std::string body = "<h1><img src=\"" + site.avatarLink(*user, "_bigger") + R"(" width="96" alt="">)"
        + escapedMarkup(user->name.empty() ? user->screenName : user->name) + "</h1><p>"
        + escapedMarkup(user->description) + "</p><p><small>" + escapedMarkup(user->location)
        + "</small></p>";
    body += user->isProtected ? "<p>These posts are for friends only.</p>"
                              : postsMarkup(site, site.statuses.userTimeline(user->id, Page {}));
    return htmlAnswer(200, user->screenName, body);
}

Answer statusPage(Site& site, const Call& call)
{
    const auto id = decimalNumber(call.argument);
    const auto status = id ? site.statuses.withID(*id) : std::nullopt;
    if (!status || status->isDeleted)
        return notFoundPage("There is no such post, or not any more.");
    const auto author = site.users.withID(status->userID);
    if (!author || author->isProtected)
        return htmlAnswer(403, "For friends only", "<p>This post is for friends only.</p>");
    RestDocuments documents(site, 0);
    std::string body = postMarkup(site, documents, *status) + "<h2>The whole talk</h2>"
        + postsMarkup(site, site.statuses.conversation(0, status->conversationID));
    return htmlAnswer(200, author->screenName, body);
}

Answer tagPage(Site& site, const Call& call)
{
    std::vector<Status> found;
    for (Status& status : site.statuses.publicSince(0)) {
        for (const TextPiece& piece : piecesOfText(status.text)) {
            if (piece.kind == TextPiece::Kind::Hashtag
                && asciiLowercase(piece.text) == "#" + asciiLowercase(call.argument)) {
                found.push_back(std::move(status));
                break;
            }
        }
    }
    return htmlAnswer(200,
        "#" + call.argument,
        "<h1>#" + escapedMarkup(call.argument) + "</h1>" + postsMarkup(site, found));
}

} // namespace

void addWebPages(Router& router, Site& site)
{
    router.get("", Router::Access::Anyone, [&site](const Call&) {
        return htmlAnswer(200,
            "Local service",
            "<h1>Everybody</h1>" + postsMarkup(site, site.statuses.publicTimeline(Page {})));
    });
    router.get("tag/*", Router::Access::Anyone, [&site](const Call& call) { return tagPage(site, call); });
    router.get("*/status/*", Router::Access::Anyone, [&site](const Call& call) {
        return statusPage(site, call);
    });
    router.get("*", Router::Access::Anyone, [&site](const Call& call) {
        return profilePage(site, call.argument);
    });
}

} // namespace localservice
