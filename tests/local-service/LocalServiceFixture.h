#pragma once

#include "LocalService.h"
#include "support/KRTest.h"

#include <httplib.h>

// A service in this process, in a folder of its own that goes away with it.
class ServiceUnderTest {
public:
    ServiceUnderTest();
    ~ServiceUnderTest();

    void start() { restart(); }
    void restart(bool startsFresh = false);

    [[nodiscard]] const localservice::RunningService& running() const { return m_running; }
    [[nodiscard]] const std::string& directory() const { return m_directory; }

private:
    QTemporaryDir m_folder;
    const std::string m_directory;
    localservice::LocalService m_service;
    localservice::RunningService m_running;
};

struct Reply {
    int status = 0;
    std::string body;
    httplib::Headers headers;

    // The texts of all elements `name` that stand directly in an element `parent`. A document that is not
    // well-formed gives a test failure.
    [[nodiscard]] std::vector<std::string> texts(const std::string& parent, const std::string& name) const;
    [[nodiscard]] std::string text(const std::string& parent, const std::string& name) const;
    [[nodiscard]] std::vector<long long> ids(const std::string& parent = "status") const;
    [[nodiscard]] std::string error() const { return text("hash", "error"); }
};

[[nodiscard]] Reply replyOf(const httplib::Result& result);

// Speaks to the service over TLS, trusting only its authority, as one person or as nobody. Copies share a
// connection.
class Caller {
public:
    Caller(const ServiceUnderTest& service,
        const std::string& username = {},
        const std::string& password = {});

    [[nodiscard]] Reply get(const std::string& path);
    Reply post(const std::string& path, const httplib::Params& parameters = {});
    Reply postBody(const std::string& path, const std::string& body, const std::string& contentType);
    // Posts and gives the new post's ID.
    long long update(const std::string& text, long long inReplyTo = 0);

private:
    std::shared_ptr<httplib::SSLClient> m_client;
};

// One service for all tests of a suite: they make what they look at.
class LocalServiceTest : public testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    [[nodiscard]] static ServiceUnderTest& service() { return *s_service; }
    [[nodiscard]] static Caller alice() { return { service(), "alice", "wonderland" }; }
    [[nodiscard]] static Caller bob() { return { service(), "bob", "builder" }; }
    [[nodiscard]] static Caller nobody() { return Caller { service() }; }

private:
    static std::unique_ptr<ServiceUnderTest> s_service;
};
