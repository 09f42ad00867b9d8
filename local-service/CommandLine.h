#pragma once

#include "LocalService.h"

namespace localservice {

struct CommandLine {
    LocalServiceOptions options;
    std::string copyOfServicesFile; // empty: none wanted
    bool onlyPrepares = false;
    bool wantsHelp = false;
    std::string mistake; // empty: understood
};

[[nodiscard]] CommandLine parseCommandLine(const std::vector<std::string>& arguments);
[[nodiscard]] std::string usage();

} // namespace localservice
