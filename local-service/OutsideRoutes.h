#pragma once

#include "Router.h"

namespace localservice {

// What stands beside the REST interface: search and trends, and the services of others that a client calls.
void addSearchRoutes(Router& router, Site& site);
void addShortLinkRoutes(Router& router, Site& site);
void addMediaRoutes(Router& router, Site& site);
void addLongPostRoutes(Router& router, Site& site);

} // namespace localservice
