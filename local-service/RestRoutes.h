#pragma once

#include "Router.h"

namespace localservice {

// Characters of a post.
inline constexpr std::size_t longestStatus = 140;

// The operations of the REST interface, one function for each group.
void addTimelineRoutes(Router& router, Site& site);
void addStatusRoutes(Router& router, Site& site);
void addDirectMessageRoutes(Router& router, Site& site);
void addPeopleRoutes(Router& router, Site& site);
void addFriendshipRoutes(Router& router, Site& site);
void addAccountRoutes(Router& router, Site& site);

// The person a call is about: named by user_id, screen_name or id, otherwise the one signed in.
[[nodiscard]] std::optional<User> personOfCall(Site& site, const Call& call);

} // namespace localservice
