#include "HttpListener.h"

#include <charconv>
#include <filesystem>
#include <httplib.h>
#include <iostream>
#include <zlib.h>

namespace localservice {

namespace {

constexpr std::size_t workers = 48; // every connection that is kept open holds one
constexpr std::size_t requestsPerConnection = 100'000;
constexpr int idleSeconds = 30;
constexpr std::size_t smallestCompressed = 1024;
constexpr std::size_t largestBody = 64UL * 1024 * 1024;

Call callFor(const httplib::Request& request)
{
    Call call;
    call.method = request.method;
    call.path = request.path;
    call.target = request.target;
    call.authorization = request.get_header_value("Authorization");
    for (const auto& [name, value] : request.params)
        call.parameters.emplace_back(name, value);
    return call;
}

// The library's own reading of forms stops at 8 KB, so the body is read here.
bool readBody(const httplib::Request& request, const httplib::ContentReader& reader, Call& call)
{
    // Without either header a request has no body.
    if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
        return true;
    if (request.is_multipart_form_data()) {
        return reader(
            [&](const httplib::MultipartFormData& part) {
                call.parts.push_back({ part.name, part.content_type, {} });
                return true;
            },
            [&](const char* data, std::size_t length) {
                if (call.parts.empty())
                    return false;
                call.parts.back().content.append(data, length);
                return true;
            });
    }
    std::string body;
    const bool isRead = reader([&](const char* data, std::size_t length) {
        body.append(data, length);
        return body.size() <= largestBody;
    });
    if (isRead) {
        for (auto& parameter : parametersOfForm(body))
            call.parameters.push_back(std::move(parameter));
    }
    return isRead;
}

bool acceptsGzip(const httplib::Request& request)
{
    return request.get_header_value("Accept-Encoding").find("gzip") != std::string::npos;
}

// The library itself compresses pages and plain texts, but not these.
bool isWorthCompressing(const Answer& answer)
{
    return answer.body.size() >= smallestCompressed
        && (answer.contentType.starts_with("application/xml")
            || answer.contentType.starts_with("application/json"));
}

// Empty when it cannot be done.
std::string gzipped(const std::string& text)
{
    constexpr int gzipWindow = 15 + 16;
    constexpr int memoryLevel = 8;
    z_stream stream {};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipWindow, memoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    std::string compressed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    const bool isComplete = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    compressed.resize(isComplete ? stream.total_out : 0);
    deflateEnd(&stream);
    return compressed;
}

int localPort(const sockaddr_storage& address)
{
    return address.ss_family == AF_INET ? ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port) : 0;
}

// Connections that clients keep open would hold stop() up until they fall silent for idleSeconds. Ending
// their reading side wakes their workers; an answer that is on its way is still written.
void endIdleConnections(int port)
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
        const std::string name = entry.path().filename();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        sockaddr_storage address {};
        socklen_t length = sizeof address;
        if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0
            && localPort(address) == port)
            ::shutdown(descriptor, SHUT_RD);
    }
}

} // namespace

HttpListener::HttpListener(const Router& router)
    : m_router(router)
{
}

HttpListener::~HttpListener()
{
    stop();
}

void HttpListener::setCertificate(std::string certificateFile, std::string keyFile)
{
    m_certificateFile = std::move(certificateFile);
    m_keyFile = std::move(keyFile);
}

int HttpListener::open(int port)
{
    if (m_certificateFile.empty())
        m_server = std::make_unique<httplib::Server>();
    else
        m_server = std::make_unique<httplib::SSLServer>(m_certificateFile.c_str(), m_keyFile.c_str());
    if (!m_server->is_valid())
        return 0;
    configure();
    const std::string host = "127.0.0.1";
    m_port = port == 0 ? std::max(0, m_server->bind_to_any_port(host))
                       : (m_server->bind_to_port(host, port) ? port : 0);
    return m_port;
}

void HttpListener::configure()
{
    // The library would share the port with another process that asks for the same one.
    m_server->set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    m_server->new_task_queue = [] { return new httplib::ThreadPool(workers); };
    m_server->set_tcp_nodelay(true);
    m_server->set_keep_alive_max_count(requestsPerConnection);
    m_server->set_keep_alive_timeout(idleSeconds);
    m_server->set_payload_max_length(largestBody);
    m_server->set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, const std::exception_ptr&) {
            std::cerr << "pelinor-local-service: a request could not be answered" << std::endl;
            response.status = 500;
        });
    const std::string everything = "[\\s\\S]*";
    m_server->Get(everything, [this](const httplib::Request& request, httplib::Response& response) {
        handle(request, response, nullptr);
    });
    m_server->Post(everything,
        [this](const httplib::Request& request,
            httplib::Response& response,
            const httplib::ContentReader& reader) { handle(request, response, &reader); });
}

void HttpListener::handle(const httplib::Request& request,
    httplib::Response& response,
    const httplib::ContentReader* reader)
{
    Call call = callFor(request);
    if (reader && !readBody(request, *reader, call)) {
        if (response.status < 400)
            response.status = 400;
        return;
    }
    Answer answer = m_router.answer(std::move(call));
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    if (acceptsGzip(request) && isWorthCompressing(answer)) {
        if (std::string compressed = gzipped(answer.body); !compressed.empty()) {
            answer.body = std::move(compressed);
            response.set_header("Content-Encoding", "gzip");
        }
    }
    response.set_content(answer.body, answer.contentType);
}

void HttpListener::start()
{
    m_isListening = true;
    m_thread = std::thread([this] {
        m_server->listen_after_bind();
        m_isListening = false;
    });
    while (!m_server->is_running())
        std::this_thread::yield();
}

void HttpListener::stop()
{
    if (!m_thread.joinable())
        return;
    m_server->stop();
    // More than once: the last connections may have been taken just before the port was closed.
    while (m_isListening) {
        endIdleConnections(m_port);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    m_thread.join();
    m_server.reset();
}

} // namespace localservice
