#pragma once

#include "Portrait.h"
#include "UserStore.h"

#include <string_view>
#include <vector>

namespace localservice {

struct Site;

// Somebody of the community that a fresh service starts with.
struct Person {
    std::string_view screenName;
    std::string_view password;
    std::string_view name;
    std::string_view location;
    std::string_view description;
    std::string_view url;
    int yearsHere = 1;
    bool isProtected = false;
    bool hasAvatar = true;
    Portrait portrait;
};

[[nodiscard]] const std::vector<Person>& communityPeople();
// “name: name name …” – whom each follows, one line for each.
[[nodiscard]] std::string_view communityFollows();

// The community's posts and messages; the files in community/ explain themselves by example:
//   name: text      a post of its own             > name: text    answers the post before
//   ^ name: text    answers the first of its talk  x …            is deleted again
//   * name name     who likes the post before      \n in a text    a line break
//   {bitly http://…}  a short link of that service  {twitpic name}  a picture, uploaded there
[[nodiscard]] std::string_view communityPosts();
[[nodiscard]] std::string_view communityMessages();

// Fills an empty site. The newest post is a few minutes old at `now`, the oldest some days.
void addCommunity(Site& site, std::int64_t now);

} // namespace localservice
