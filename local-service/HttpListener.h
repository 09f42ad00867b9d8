#pragma once

#include "Router.h"

#include <atomic>
#include <memory>
#include <thread>

namespace httplib {
class Server;
struct Request;
struct Response;
class ContentReader;
} // namespace httplib

namespace localservice {

// Carries requests from one port of 127.0.0.1 to the router, over TLS when it was given a certificate.
class HttpListener {
public:
    explicit HttpListener(const Router& router);
    ~HttpListener();
    HttpListener(const HttpListener&) = delete;
    HttpListener& operator=(const HttpListener&) = delete;

    // Before open(): answer over TLS.
    void setCertificate(std::string certificateFile, std::string keyFile);

    // Takes the port, any free one for 0, and tells which it is; 0 when it cannot be had.
    [[nodiscard]] int open(int port);
    // Answers requests until stop().
    void start();
    void stop();

private:
    void configure();
    void handle(const httplib::Request& request,
        httplib::Response& response,
        const httplib::ContentReader* reader);

    const Router& m_router;
    std::string m_certificateFile;
    std::string m_keyFile;
    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
    std::atomic<bool> m_isListening = false;
    int m_port = 0;
};

} // namespace localservice
