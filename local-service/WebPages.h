#pragma once

#include "Router.h"

namespace localservice {

// What a browser sees: a page for each person, post and tag, and the portraits.
void addWebPages(Router& router, Site& site);
void addPictureRoutes(Router& router, Site& site);

// Draws the portraits of the community into the data folder.
[[nodiscard]] bool drawPortraits(const std::string& dataDirectory);

} // namespace localservice
