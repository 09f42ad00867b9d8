#include "ServicesFile.h"

namespace localservice {

std::string servicesFileFor(int httpPort, int httpsPort)
{
    const std::string http = "127.0.0.1:" + std::to_string(httpPort);
    const std::string https = "127.0.0.1:" + std::to_string(httpsPort);
    return "[ServiceHosts]\nRESTHost=" + https + "\nSearchHost=" + http + "\nWebHost=" + http + "\n";
}

} // namespace localservice
