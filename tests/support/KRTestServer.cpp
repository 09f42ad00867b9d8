#include "support/KRTestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

static constexpr int pollMilliseconds = 20;

QList<QByteArray> KRTestServer::Request::values(QByteArrayView name) const
{
    QList<QByteArray> found;
    for (const auto& [key, value] : headers) {
        if (key == name)
            found.append(value);
    }
    return found;
}

KRTestServer::Connection::Connection(int descriptor, SSL_CTX* context, const std::atomic<bool>& stopping)
    : m_descriptor(descriptor)
    , m_context(context)
    , m_stopping(stopping)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

KRTestServer::Connection::~Connection()
{
    close();
    SSL_free(m_ssl);
}

bool KRTestServer::Connection::_accept()
{
    if (!m_context)
        return true;
    m_ssl = SSL_new(m_context);
    SSL_set_fd(m_ssl, m_descriptor);
    return SSL_accept(m_ssl) == 1;
}

qint64 KRTestServer::Connection::_read(char* buffer, qint64 capacity)
{
    while (m_descriptor >= 0) {
        if (m_ssl && SSL_pending(m_ssl) > 0)
            return SSL_read(m_ssl, buffer, static_cast<int>(capacity));
        pollfd descriptor { m_descriptor, POLLIN, 0 };
        const int ready = ::poll(&descriptor, 1, pollMilliseconds);
        if (m_stopping || ready < 0)
            return -1;
        if (ready > 0)
            return m_ssl ? SSL_read(m_ssl, buffer, static_cast<int>(capacity))
                         : ::recv(m_descriptor, buffer, static_cast<size_t>(capacity), 0);
    }
    return -1;
}

std::optional<KRTestServer::Request> KRTestServer::Connection::_readRequest()
{
    char chunk[65536];
    qsizetype end = -1;
    while ((end = m_buffer.indexOf("\r\n\r\n")) < 0) {
        const qint64 count = _read(chunk, sizeof chunk);
        if (count <= 0)
            return std::nullopt;
        m_buffer.append(chunk, count);
    }
    const QList<QByteArray> lines = m_buffer.first(end).replace("\r\n", "\n").split('\n');
    m_buffer.remove(0, end + 4);
    const QList<QByteArray> start = lines.value(0).split(' ');
    Request request { start.value(0), start.value(1), {}, {} };
    for (const QByteArray& line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.append({ line.first(colon).toLower(), line.mid(colon + 1).trimmed() });
    }
    const bool isWhole
        = request.value("transfer-encoding") == "chunked" ? _readChunks(request) : _readBody(request);
    return isWhole ? std::optional(request) : std::nullopt;
}

bool KRTestServer::Connection::_readBody(Request& request)
{
    char chunk[65536];
    qint64 missing = request.value("content-length").toLongLong();
    const qint64 buffered = std::min<qint64>(missing, m_buffer.size());
    request.body = m_buffer.first(buffered);
    m_buffer.remove(0, buffered);
    missing -= buffered;
    while (missing > 0) {
        const qint64 count = _read(chunk, std::min<qint64>(missing, sizeof chunk));
        if (count <= 0)
            return false;
        if (m_keepsBody)
            request.body.append(chunk, count);
        missing -= count;
    }
    return true;
}

bool KRTestServer::Connection::_readChunks(Request& request)
{
    char chunk[65536];
    for (;;) {
        const qsizetype lineEnd = m_buffer.indexOf("\r\n");
        const qint64 length = lineEnd < 0 ? -1 : m_buffer.first(lineEnd).toLongLong(nullptr, 16);
        if (length >= 0 && m_buffer.size() >= lineEnd + 2 + length + 2) {
            request.body.append(m_buffer.mid(lineEnd + 2, length));
            m_buffer.remove(0, lineEnd + 2 + length + 2);
            if (length == 0)
                return true;
            continue;
        }
        const qint64 count = _read(chunk, sizeof chunk);
        if (count <= 0)
            return false;
        m_buffer.append(chunk, count);
    }
}

bool KRTestServer::Connection::write(const QByteArray& bytes)
{
    qsizetype sent = 0;
    while (sent < bytes.size() && m_descriptor >= 0 && !m_stopping) {
        const char* rest = bytes.constData() + sent;
        const auto length = static_cast<size_t>(bytes.size() - sent);
        const qint64 count = m_ssl
            ? SSL_write(m_ssl, rest, static_cast<int>(std::min<size_t>(length, 1 << 20)))
            : ::send(m_descriptor, rest, length, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        sent += count;
    }
    return sent == bytes.size();
}

bool KRTestServer::Connection::respond(int status, const QByteArray& body, const QByteArray& headers)
{
    return write("HTTP/1.1 " + QByteArray::number(status)
        + " Status\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body);
}

void KRTestServer::Connection::close()
{
    const int descriptor = m_descriptor.exchange(-1);
    if (descriptor < 0)
        return;
    if (m_ssl)
        SSL_shutdown(m_ssl);
    ::close(descriptor);
}

void KRTestServer::Connection::reset()
{
    const linger hard { 1, 0 };
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    ::close(m_descriptor.exchange(-1));
}

void KRTestServer::Connection::waitForClose()
{
    char chunk[4096];
    while (_read(chunk, sizeof chunk) > 0) { }
}

KRTestServer::Request KRTestServer::Request::copy() const
{
    const auto copied = [](const QByteArray& bytes) { return QByteArray(bytes.constData(), bytes.size()); };
    Request request { copied(method), copied(target), {}, copied(body) };
    for (const auto& [name, value] : headers)
        request.headers.append({ copied(name), copied(value) });
    return request;
}

KRTestServer::KRTestServer(Handler handler)
    : m_handler(std::move(handler))
{
    _start();
}

KRTestServer::KRTestServer(Handler handler, KRTestCertificate certificate)
    : m_handler(std::move(handler))
    , m_contexts { KRMakeTestTLSContext(certificate) }
{
    _start();
}

KRTestServer::~KRTestServer()
{
    m_stopping = true;
    m_acceptor.join();
    {
        // Ends writes that are blocked by a reader who went away.
        std::scoped_lock guard(m_lock);
        for (const auto& connection : m_connections) {
            if (connection->m_descriptor >= 0)
                ::shutdown(connection->m_descriptor, SHUT_RDWR);
        }
    }
    for (std::thread& thread : m_threads)
        thread.join();
    ::close(m_listener);
}

QString KRTestServer::host() const
{
    return QStringLiteral("127.0.0.1:%1").arg(m_port);
}

QString KRTestServer::fingerprint() const
{
    std::scoped_lock guard(m_lock);
    return KRTestFingerprint(m_contexts.back());
}

void KRTestServer::changeCertificate(KRTestCertificate certificate)
{
    std::scoped_lock guard(m_lock);
    m_contexts.push_back(KRMakeTestTLSContext(certificate));
}

QUrl KRTestServer::url(const QString& target) const
{
    return QUrl(
        (!m_contexts.empty() ? QStringLiteral("https://") : QStringLiteral("http://")) + host() + target);
}

QList<KRTestServer::Request> KRTestServer::requests() const
{
    std::scoped_lock guard(m_lock);
    QList<Request> copies;
    for (const Request& request : m_requests)
        copies.append(request.copy());
    return copies;
}

void KRTestServer::_start()
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(m_listener, reinterpret_cast<sockaddr*>(&address), length);
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
    ::listen(m_listener, 64);
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { _acceptConnections(); });
}

void KRTestServer::_acceptConnections()
{
    while (!m_stopping) {
        pollfd descriptor { m_listener, POLLIN, 0 };
        if (::poll(&descriptor, 1, pollMilliseconds) <= 0)
            continue;
        const int accepted = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (accepted < 0)
            continue;
        ++m_connectionCount;
        SSL_CTX* context = nullptr;
        {
            std::scoped_lock guard(m_lock);
            context = m_contexts.empty() ? nullptr : m_contexts.back().get();
        }
        const auto connection = std::make_shared<Connection>(accepted, context, m_stopping);
        std::scoped_lock guard(m_lock);
        m_connections.push_back(connection);
        m_threads.emplace_back([this, connection] { _serve(*connection); });
    }
}

void KRTestServer::_serve(Connection& connection)
{
    // OpenSSL writes without MSG_NOSIGNAL; a client that went away must not end the test.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    if (connection._accept()) {
        while (connection.m_descriptor >= 0 && !m_stopping) {
            connection.m_keepsBody = m_bodies == Bodies::Kept;
            const std::optional<Request> request = connection._readRequest();
            if (!request)
                break;
            m_bodyBytes += connection.m_keepsBody ? request->body.size()
                                                  : request->value("content-length").toLongLong();
            {
                std::scoped_lock guard(m_lock);
                m_requests.append(request->copy());
            }
            m_handler(*request, connection);
        }
    }
    connection.close();
}
