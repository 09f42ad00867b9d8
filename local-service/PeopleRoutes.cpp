#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

constexpr std::int64_t peoplePerPage = 100;

Answer showPerson(Site& site, const Call& call)
{
    const auto person = personOfCall(site, call);
    return person ? xmlAnswer(RestDocuments(site, call.viewerID()).user(*person))
                  : errorAnswer(call, 404, "User not found.");
}

using ListOfPeople = std::vector<User> (UserStore::*)(std::int64_t, const Page&);

Answer listPeople(Site& site, const Call& call, ListOfPeople list)
{
    const auto person = personOfCall(site, call);
    if (!person)
        return errorAnswer(call, 404, "No such user.");
    return xmlAnswer(
        RestDocuments(site, call.viewerID()).users((site.users.*list)(person->id, call.page(peoplePerPage))));
}

} // namespace

std::optional<User> personOfCall(Site& site, const Call& call)
{
    if (const auto id = call.parameter("user_id"))
        return site.users.withID(decimalNumber(*id).value_or(0));
    if (const auto screenName = call.parameter("screen_name"))
        return site.users.withScreenName(*screenName);
    if (const auto either = call.parameter("id"))
        return site.users.withIDOrScreenName(*either);
    return call.viewer;
}

void addPeopleRoutes(Router& router, Site& site)
{
    router.get("users/show.xml", Router::Access::Anyone, [&site](const Call& call) {
        return showPerson(site, call);
    });
    router.get("statuses/friends.xml", Router::Access::Anyone, [&site](const Call& call) {
        return listPeople(site, call, &UserStore::friendsOf);
    });
    router.get("statuses/followers.xml", Router::Access::Anyone, [&site](const Call& call) {
        return listPeople(site, call, &UserStore::followersOf);
    });
}

} // namespace localservice
