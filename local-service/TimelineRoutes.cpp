#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

Answer statusesAnswer(Site& site, const Call& call, const std::vector<Status>& statuses)
{
    return xmlAnswer(RestDocuments(site, call.viewerID()).statuses(statuses));
}

Answer userTimelineAnswer(Site& site, const Call& call)
{
    const auto author = personOfCall(site, call);
    if (!author)
        return errorAnswer(call, 404, "No such user found.");
    if (!site.users.maySee(call.viewerID(), *author))
        return errorAnswer(call,
            403,
            "This stream is protected and only authorized subscribers may see its contents.");
    return statusesAnswer(site, call, site.statuses.userTimeline(author->id, call.page()));
}

Answer favoritesAnswer(Site& site, const Call& call)
{
    const auto owner
        = call.argument.empty() ? personOfCall(site, call) : site.users.withIDOrScreenName(call.argument);
    if (!owner)
        return errorAnswer(call, 404, "No such user found.");
    return statusesAnswer(site, call, site.statuses.favoritesOf(call.viewerID(), owner->id, call.page()));
}

} // namespace

void addTimelineRoutes(Router& router, Site& site)
{
    router.get("statuses/home_timeline.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return statusesAnswer(site, call, site.statuses.homeTimeline(call.viewerID(), call.page()));
    });
    router.get("statuses/replies.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return statusesAnswer(site, call, site.statuses.repliesTo(call.viewerID(), call.page()));
    });
    router.get("statuses/public_timeline.xml", Router::Access::Anyone, [&site](const Call& call) {
        return statusesAnswer(site, call, site.statuses.publicTimeline(call.page()));
    });
    router.get("statuses/user_timeline.xml", Router::Access::Anyone, [&site](const Call& call) {
        return userTimelineAnswer(site, call);
    });
    router.get("favorites.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return favoritesAnswer(site, call);
    });
    router.get("favorites/*.xml", Router::Access::Anyone, [&site](const Call& call) {
        return favoritesAnswer(site, call);
    });
}

} // namespace localservice
