#include "CommandLine.h"
#include "Files.h"

#include <csignal>
#include <iostream>

namespace {

int complain(const std::string& text)
{
    std::cerr << "pelinor-local-service: " << text << std::endl;
    return 1;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    using namespace localservice;
    const CommandLine line = parseCommandLine({ arguments + 1, arguments + argumentCount });
    if (line.wantsHelp || !line.mistake.empty()) {
        (line.wantsHelp ? std::cout : std::cerr)
            << line.mistake << (line.mistake.empty() ? "" : "\n") << usage();
        return line.wantsHelp ? 0 : 2;
    }

    // The threads of the service inherit the mask, so that the signals that end it reach this thread alone.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigaddset(&endSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    LocalService service;
    if (line.onlyPrepares)
        return service.prepare(line.options) ? 0 : complain(service.failure());
    const auto running = service.start(line.options);
    if (!running)
        return complain(service.failure());
    if (!line.copyOfServicesFile.empty()) {
        const auto hosts = contentsOfFile(running->servicesFile);
        if (!hosts || !writeFile(line.copyOfServicesFile, *hosts))
            return complain("cannot write " + line.copyOfServicesFile);
    }
    std::cout << running->description() << std::endl;

    int signal = 0;
    sigwait(&endSignals, &signal);
    service.stop();
    return 0;
}
