#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

Answer personAnswer(Site& site, const Call& call, const User& person)
{
    return xmlAnswer(RestDocuments(site, call.viewerID()).user(person));
}

std::optional<User> otherPerson(Site& site, const Call& call)
{
    if (!call.argument.empty())
        return site.users.withIDOrScreenName(call.argument);
    const bool isNamed = call.parameter("user_id") || call.parameter("screen_name") || call.parameter("id");
    return isNamed ? personOfCall(site, call) : std::nullopt;
}

Answer createFriendship(Site& site, const Call& call)
{
    const auto other = otherPerson(site, call);
    if (!other)
        return errorAnswer(call, 403, "Could not follow user: profile not found.");
    if (other->id == call.viewerID())
        return errorAnswer(call, 403, "You cannot follow yourself.");
    if (site.users.isFollowing(call.viewerID(), other->id) || site.users.hasAsked(call.viewerID(), other->id))
        return errorAnswer(call,
            403,
            "Could not follow user: " + other->screenName + " is already on your list.");
    site.users.follow(*call.viewer, *other, !other->isProtected);
    return personAnswer(site, call, *other);
}

Answer destroyFriendship(Site& site, const Call& call)
{
    const auto other = otherPerson(site, call);
    if (!other)
        return errorAnswer(call, 403, "Could not unfollow user: User not found.");
    if (!site.users.isFollowing(call.viewerID(), other->id)
        && !site.users.hasAsked(call.viewerID(), other->id))
        return errorAnswer(call, 403, "You are not following " + other->screenName + ".");
    site.users.unfollow(call.viewerID(), other->id);
    return personAnswer(site, call, *other);
}

Answer friendshipExists(Site& site, const Call& call)
{
    const auto first = site.users.withIDOrScreenName(call.parameterOr("user_a", ""));
    const auto second = site.users.withIDOrScreenName(call.parameterOr("user_b", ""));
    if (!first || !second)
        return errorAnswer(call, 400, "Two valid IDs or nick_names must be supplied.");
    XmlWriter xml;
    xml.element("friends", site.users.isFollowing(first->id, second->id));
    return xmlAnswer(xml.take());
}

} // namespace

void addFriendshipRoutes(Router& router, Site& site)
{
    router.get("friendships/exists.xml", Router::Access::Anyone, [&site](const Call& call) {
        return friendshipExists(site, call);
    });
    for (const char* pattern : { "friendships/create.xml", "friendships/create/*.xml" })
        router.post(pattern, Router::Access::SignedIn, [&site](const Call& call) {
            return createFriendship(site, call);
        });
    for (const char* pattern : { "friendships/destroy.xml", "friendships/destroy/*.xml" })
        router.post(pattern, Router::Access::SignedIn, [&site](const Call& call) {
            return destroyFriendship(site, call);
        });
}

} // namespace localservice
