#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace localservice {

struct LocalServiceOptions {
    std::string dataDirectory;
    int httpPort = 8480; // 0: any free one
    int httpsPort = 8443;
    bool startsFresh = false; // forget what earlier runs stored
};

// What a caller has to know about a service that runs.
struct RunningService {
    struct Account {
        std::string username;
        std::string password;
    };

    int httpPort = 0;
    int httpsPort = 0;
    std::string authorityFile;
    std::string servicesFile;
    std::string dataDirectory;
    std::vector<Account> accounts;

    // One line of JSON.
    [[nodiscard]] std::string description() const;
};

// The whole service: data, routes and the two listeners. Answers on threads of its own between start() and
// stop().
class LocalService {
public:
    LocalService();
    ~LocalService();
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;

    // Nothing when it could not start; failure() then says why.
    [[nodiscard]] std::optional<RunningService> start(const LocalServiceOptions& options);
    // Makes or opens the data and leaves it at that.
    [[nodiscard]] bool prepare(const LocalServiceOptions& options);
    void stop();
    [[nodiscard]] const std::string& failure() const;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace localservice
