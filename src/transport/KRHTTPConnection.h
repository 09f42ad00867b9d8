#pragma once

#include "foundation/KRError.h"
#include "transport/KRTransferEngine.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <utility>

class KRCertificateCheck;
class KRInputStream;
struct curl_slist;

/// Domain of the errors of a connection, as opposed to an HTTP status. Codes are libcurl's, or these.
inline constexpr char16_t KRHTTPConnectionErrorDomain[] = u"com.kestrin.httprequest.connection";

enum KRHTTPConnectionErrorCode {
    KRHTTPConnectionErrorTooManyRedirects = -1,
    KRHTTPConnectionErrorInsecureRedirect = -2,
    KRHTTPConnectionErrorBadRedirect = -3,
    KRHTTPConnectionErrorTooLarge = -4,
    KRHTTPConnectionErrorBadURL = -5,
    KRHTTPConnectionErrorUnreadableBody = -6,
    KRHTTPConnectionErrorCertificateChanged = -7,
    KRHTTPConnectionErrorCancelled = -8,
};

/// Whether a connection failed because the server could not prove its name or speaks no usable TLS. Which
/// certificate it showed is told by KRServerCertificate::refusedByError().
[[nodiscard]] bool KRHTTPConnectionErrorIsAboutTLS(const KRError& error);
/// Whether a connection failed before a word of the request was sent, so that the server knows nothing of it.
[[nodiscard]] bool KRHTTPConnectionErrorIsBeforeSending(const KRError& error);

/// A request that makes no progress for so long fails.
inline constexpr int KRHTTPStallSeconds = 60;
/// Fewer bytes a second than this, averaged over the last seconds, are no progress: a server that drips
/// single bytes must not hold a connection, and the callers who wait for it, for ever.
inline constexpr int KRHTTPStallBytesPerSecond = 16;
inline constexpr int KRHTTPMaxRedirects = 20;
/// An answer larger than this, after decompression, ends with an error instead of filling the memory.
inline constexpr qint64 KRHTTPMaxResponseBytes = Q_INT64_C(64) * 1024 * 1024;

/// What the transport allows and trusts, for every connection begun after it was set. Any thread.
struct KRHTTPTransportSettings {
    int stallSeconds = KRHTTPStallSeconds;
    int stallBytesPerSecond = KRHTTPStallBytesPerSecond;
    int maxRedirects = KRHTTPMaxRedirects;
    qint64 maxResponseBytes = KRHTTPMaxResponseBytes;
    /// A PEM file of certificate authorities trusted beside the system's own; empty for none.
    QString extraCAFile;

    static KRHTTPTransportSettings current();
    static void setCurrent(const KRHTTPTransportSettings& settings);
};

/// A request in the form in which it goes out.
struct KRURLRequest {
    QUrl url;
    QByteArray method = "GET";
    QList<std::pair<QByteArray, QByteArray>> headers;
    /// Null when there is none; set beside a stream it wins.
    QByteArray body;
    std::shared_ptr<KRInputStream> bodyStream;
    /// Bytes of the stream, where known; without it the body is sent in chunks.
    std::optional<qint64> bodyStreamLength;
    KRTransferKind kind = KRTransferKind::Data;
};

struct KRURLResponse {
    /// Where the answer came from, after redirects.
    QUrl url;
    int statusCode = 0;
    /// The length the response announced, -1 when it announced none. With a compressed body it counts
    /// compressed bytes.
    qint64 expectedContentLength = -1;
    /// Names in lower case.
    QList<std::pair<QByteArray, QByteArray>> headers;
};

/// What a connection reports, on the background thread: the response's head, then data, then exactly one of
/// finished and failed. Progress of the body that is sent comes at any time before the end.
class KRHTTPConnectionDelegate {
public:
    KRHTTPConnectionDelegate() = default;
    KRHTTPConnectionDelegate(const KRHTTPConnectionDelegate&) = delete;
    KRHTTPConnectionDelegate& operator=(const KRHTTPConnectionDelegate&) = delete;
    virtual ~KRHTTPConnectionDelegate() = default;

    virtual void connectionDidReceiveResponse(const KRURLResponse& response) = 0;
    virtual void connectionDidReceiveData(const char* bytes, qint64 length) = 0;
    virtual void connectionDidSendBodyData(qint64 written, qint64 totalWritten, qint64 totalExpected) = 0;
    virtual void connectionDidFinishLoading() = 0;
    virtual void connectionDidFailWithError(const KRError& error) = 0;
    /// Asked while a body is sent: whether somebody still wants that.
    [[nodiscard]] virtual bool connectionShouldGoOn() const { return true; }
};

/// One exchange with a server, redirects included, on libcurl.
///  - TLS is verified against the system's authorities and the extra file, and where a certificate is trusted
///    for the server (KRTrustedCertificates) against that one; cookies are neither sent nor kept.
///  - A GET may reuse a connection, and is sent again should that one turn out closed. Everything else
///    travels on a fresh connection, once.
///  - Redirects (RFC 9110, 15.4) are followed here, not by libcurl: at most `maxRedirects` deep, never from
///    https to http; once a hop leaves the first address's scheme, host or port only harmless headers go
///    along. 301, 302 and 303 turn everything but GET and HEAD into GET without a body; 307 and 308 repeat
///    the request only to the same origin.
/// Background thread only.
class KRHTTPConnection final : public KRTransfer, public std::enable_shared_from_this<KRHTTPConnection> {
public:
    KRHTTPConnection(KRURLRequest request, std::shared_ptr<KRHTTPConnectionDelegate> delegate);
    ~KRHTTPConnection() override;

    /// Starts; the engine keeps the connection, and the connection its delegate, until the end.
    void start(KRTransferEngine& engine);

    void transferDidEnd(CURL* handle, int code) override;

private:
    void _beginHop();
    void _setUpCommonOptions();
    void _setUpCertificateCheck();
    void _setUpMethodAndBody();
    void _setUpHeaders();
    void _receiveHeaderLine(QByteArrayView line);
    void _receivedHead();
    [[nodiscard]] std::optional<QByteArray> _redirectLocation() const;
    [[nodiscard]] std::optional<KRError> _redirectTo(const QByteArray& location);
    [[nodiscard]] bool _receiveBody(const char* bytes, size_t length);
    [[nodiscard]] size_t _readBody(char* buffer, size_t capacity);
    void _noteSent(qint64 sent, qint64 total);
    [[nodiscard]] bool _hasBody() const;
    [[nodiscard]] KRError _errorForCode(int code) const;
    [[nodiscard]] std::optional<KRError> _certificateError(int code, const QString& detail) const;
    void _fail(const KRError& error);
    void _releaseHeaders();

    static size_t _headerCallback(char* bytes, size_t size, size_t count, void* self);
    static size_t _writeCallback(char* bytes, size_t size, size_t count, void* self);
    static size_t _readCallback(char* buffer, size_t size, size_t count, void* self);
    static int
    _progressCallback(void* self, long long downTotal, long long down, long long upTotal, long long up);

    KRURLRequest m_request;
    std::shared_ptr<KRHTTPConnectionDelegate> m_delegate;
    KRTransferEngine* m_engine = nullptr;
    KRHTTPTransportSettings m_settings;

    // This hop's; the engine's again once the hop has ended.
    CURL* m_handle = nullptr;
    QUrl m_url;
    std::unique_ptr<KRCertificateCheck> m_certificateCheck;
    bool m_needsNewConnection = false;
    int m_redirects = 0;
    bool m_leftOrigin = false;
    KRURLResponse m_response;
    bool m_headDelivered = false;
    std::optional<QByteArray> m_location;
    qint64 m_received = 0;
    qint64 m_sent = 0;
    qint64 m_bodyRead = 0;
    std::optional<KRError> m_ownError;
    curl_slist* m_headerList = nullptr;
    char m_errorText[256] = {};
};
