#pragma once

#include <string>

namespace localservice {

// The table of hosts that points a client to this service: an INI file with the group ServiceHosts.
[[nodiscard]] std::string servicesFileFor(int httpPort, int httpsPort);

} // namespace localservice
