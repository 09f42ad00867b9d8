#include "CommandLine.h"

#include "Text.h"

#include <cstdlib>

namespace localservice {

namespace {

constexpr std::int64_t highestPort = 65535;

std::string defaultDataDirectory()
{
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data)
        return std::string(data) + "/pelinor-local-service";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : ".") + "/.local/share/pelinor-local-service";
}

} // namespace

std::string usage()
{
    return "Usage: pelinor-local-service [options]\n"
           "  --data DIR             keep everything in DIR (default: "
        + defaultDataDirectory()
        + ")\n"
          "  --port N               plain HTTP on port N, 0 for any free one (default: 8480)\n"
          "  --tls-port N           HTTPS on port N, 0 for any free one (default: 8443)\n"
          "  --reset                forget what earlier runs stored and start with a fresh community\n"
          "  --seed-only            make the data and leave\n"
          "  --write-services FILE  also write the client's table of hosts to FILE\n"
          "  --help                 show this text\n";
}

CommandLine parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    line.options.dataDirectory = defaultDataDirectory();
    for (std::size_t i = 0; i < arguments.size() && line.mistake.empty(); ++i) {
        const std::string& name = arguments[i];
        const bool takesValue
            = name == "--data" || name == "--port" || name == "--tls-port" || name == "--write-services";
        if (takesValue && i + 1 == arguments.size()) {
            line.mistake = name + " needs a value";
        } else if (takesValue) {
            const std::string& value = arguments[++i];
            const auto number = decimalNumber(value);
            if (name == "--data")
                line.options.dataDirectory = value;
            else if (name == "--write-services")
                line.copyOfServicesFile = value;
            else if (!number || *number > highestPort)
                line.mistake = "\"" + value + "\" is not a port";
            else
                (name == "--port" ? line.options.httpPort : line.options.httpsPort)
                    = static_cast<int>(*number);
        } else if (name == "--reset") {
            line.options.startsFresh = true;
        } else if (name == "--seed-only") {
            line.onlyPrepares = true;
        } else if (name == "--help" || name == "-h") {
            line.wantsHelp = true;
        } else {
            line.mistake = "unknown option " + name;
        }
    }
    return line;
}

} // namespace localservice
