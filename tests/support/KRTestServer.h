#pragma once

#include "support/KRTestCertificates.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

/// A real HTTP/1.1 server on raw sockets, plain or TLS, for everything a server can do right or wrong. Every
/// connection has a thread of its own that reads one request after the other and lets the handler answer,
/// byte by byte if it likes. Destroying the server closes what is open and joins the threads.
class KRTestServer {
public:
    struct Request {
        QByteArray method;
        QByteArray target;
        QList<std::pair<QByteArray, QByteArray>> headers;
        QByteArray body;

        /// Every value of the header (name in lower case), in order.
        QList<QByteArray> values(QByteArrayView name) const;
        QByteArray value(QByteArrayView name) const { return values(name).value(0); }
        /// One that shares no memory with this, for another thread.
        Request copy() const;
    };

    class Connection {
    public:
        Connection(int descriptor, SSL_CTX* context, const std::atomic<bool>& stopping);
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;
        ~Connection();

        /// False when the other side is gone.
        bool write(const QByteArray& bytes);
        /// A whole answer with a length.
        bool respond(int status, const QByteArray& body, const QByteArray& headers = {});
        /// Closes the connection in the regular way.
        void close();
        /// Ends the connection with a reset instead of a regular close.
        void reset();
        /// Waits until the other side closes or the server stops.
        void waitForClose();
        [[nodiscard]] bool isStopping() const { return m_stopping; }

    private:
        friend class KRTestServer;
        [[nodiscard]] bool _accept();
        [[nodiscard]] qint64 _read(char* buffer, qint64 capacity);
        [[nodiscard]] std::optional<Request> _readRequest();
        [[nodiscard]] bool _readBody(Request& request);
        [[nodiscard]] bool _readChunks(Request& request);

        std::atomic<int> m_descriptor;
        SSL_CTX* m_context;
        SSL* m_ssl = nullptr;
        const std::atomic<bool>& m_stopping;
        QByteArray m_buffer;
        bool m_keepsBody = true;
    };

    using Handler = std::function<void(const Request& request, Connection& connection)>;

    /// The same answer to everything.
    static Handler always(int status, const QByteArray& body = {}, const QByteArray& headers = {})
    {
        return [=](const Request&, Connection& connection) { connection.respond(status, body, headers); };
    }

    enum class Bodies { Kept, Counted };

    explicit KRTestServer(Handler handler);
    KRTestServer(Handler handler, KRTestCertificate certificate);
    KRTestServer(const KRTestServer&) = delete;
    KRTestServer& operator=(const KRTestServer&) = delete;
    ~KRTestServer();

    [[nodiscard]] int port() const { return m_port; }
    /// "127.0.0.1:PORT".
    [[nodiscard]] QString host() const;
    [[nodiscard]] QUrl url(const QString& target = QStringLiteral("/")) const;

    /// The requests that arrived whole, in order.
    [[nodiscard]] QList<Request> requests() const;
    [[nodiscard]] int requestCount() const
    {
        std::scoped_lock guard(m_lock);
        return static_cast<int>(m_requests.size());
    }
    [[nodiscard]] int connectionCount() const { return m_connectionCount; }
    /// Bytes of bodies received so far.
    [[nodiscard]] qint64 bodyBytes() const { return m_bodyBytes; }
    /// Of the certificate that is shown now.
    [[nodiscard]] QString fingerprint() const;
    /// Shows a new one to all who connect from now on.
    void changeCertificate(KRTestCertificate certificate);
    /// Counted bodies are read and dropped.
    void setBodies(Bodies bodies) { m_bodies = bodies; }

private:
    void _start();
    void _acceptConnections();
    void _serve(Connection& connection);

    Handler m_handler;
    // The last one is shown; connections may still be using those before. None for a plain server.
    std::vector<KRTestTLSContext> m_contexts;
    int m_listener = -1;
    int m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::atomic<int> m_connectionCount = 0;
    std::atomic<qint64> m_bodyBytes = 0;
    std::atomic<Bodies> m_bodies = Bodies::Kept;
    mutable std::mutex m_lock;
    QList<Request> m_requests;
    std::vector<std::shared_ptr<Connection>> m_connections;
    std::vector<std::thread> m_threads;
    std::thread m_acceptor;
};
