#include "transport/KRHTTPConnection.h"

#include "foundation/KRLog.h"
#include "transport/KRCertificateCheck.h"
#include "transport/KRCurlLibrary.h"
#include "transport/KRInputStream.h"
#include "transport/KRServerCertificate.h"

#include <QByteArrayList>
#include <QFile>

#include <algorithm>
#include <mutex>

namespace {

const KRCurlLibrary& curl()
{
    return KRCurlLibrary::shared();
}

// A redirect's own body is read so that its connection can be used again, but not for ever.
constexpr qint64 redirectBodyTolerated = Q_INT64_C(64) * 1024;

std::mutex s_settingsLock;

KRHTTPTransportSettings& sharedSettings()
{
    static KRHTTPTransportSettings settings;
    return settings;
}

KRError connectionError(int code, const QString& description)
{
    return errorWithDomain(QString::fromUtf16(KRHTTPConnectionErrorDomain), code, description);
}

bool isHTTP(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == u"http" || url.scheme() == u"https");
}

int portOf(const QUrl& url)
{
    return url.port(url.scheme() == u"https" ? 443 : 80);
}

bool haveSameOrigin(const QUrl& a, const QUrl& b)
{
    return a.scheme() == b.scheme() && a.host() == b.host() && portOf(a) == portOf(b);
}

/// The headers that say nothing of who asks and may go to another server.
bool isHarmlessHeader(const QByteArray& name)
{
    static const QByteArrayList names { "accept", "accept-language", "range", "if-modified-since" };
    return names.contains(name.toLower());
}

/// The headers that describe a body, and mean nothing once it is gone (RFC 9110, 15.4).
bool isAboutContent(const QByteArray& name)
{
    static const QByteArrayList names { "content-encoding",
        "content-language",
        "content-length",
        "content-location",
        "content-type",
        "digest",
        "last-modified" };
    return names.contains(name.toLower());
}

/// A line break in a header would begin another header.
bool isSafeHeaderText(const QByteArray& text)
{
    return !text.contains('\r') && !text.contains('\n') && !text.contains('\0');
}

} // namespace

bool KRHTTPConnectionErrorIsAboutTLS(const KRError& error)
{
    if (error.domain != QStringView(KRHTTPConnectionErrorDomain))
        return false;
    switch (error.code) {
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case KRHTTPConnectionErrorCertificateChanged:
        return true;
    default:
        return false;
    }
}

bool KRHTTPConnectionErrorIsBeforeSending(const KRError& error)
{
    if (error.domain != QStringView(KRHTTPConnectionErrorDomain))
        return false;
    switch (error.code) {
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case KRHTTPConnectionErrorBadURL:
    case KRHTTPConnectionErrorUnreadableBody:
        return true;
    default:
        return KRHTTPConnectionErrorIsAboutTLS(error);
    }
}

KRHTTPTransportSettings KRHTTPTransportSettings::current()
{
    std::scoped_lock guard(s_settingsLock);
    return sharedSettings();
}

void KRHTTPTransportSettings::setCurrent(const KRHTTPTransportSettings& settings)
{
    std::scoped_lock guard(s_settingsLock);
    sharedSettings() = settings;
}

KRHTTPConnection::KRHTTPConnection(KRURLRequest request, std::shared_ptr<KRHTTPConnectionDelegate> delegate)
    : m_request(std::move(request))
    , m_delegate(std::move(delegate))
    , m_settings(KRHTTPTransportSettings::current())
    , m_url(m_request.url)
{
}

KRHTTPConnection::~KRHTTPConnection()
{
    _releaseHeaders();
}

void KRHTTPConnection::start(KRTransferEngine& engine)
{
    m_engine = &engine;
    if (isHTTP(m_url)) {
        _beginHop();
        return;
    }
    _fail(connectionError(KRHTTPConnectionErrorBadURL,
        QStringLiteral("\"%1\" is no web address").arg(m_url.toString(QUrl::RemoveUserInfo))));
}

void KRHTTPConnection::_beginHop()
{
    m_response = {};
    m_response.url = m_url;
    m_received = 0;
    m_sent = 0;
    m_bodyRead = 0;
    m_handle = m_engine->takeHandle();
    _setUpCommonOptions();
    _setUpCertificateCheck();
    _setUpMethodAndBody();
    _setUpHeaders();
    const QByteArray host
        = m_url.host(QUrl::FullyEncoded).toLatin1() + ':' + QByteArray::number(portOf(m_url));
    m_engine->start(m_handle,
        shared_from_this(),
        { host, m_request.kind, std::chrono::seconds(m_settings.stallSeconds) });
}

void KRHTTPConnection::_setUpCommonOptions()
{
    // Credentials inside an address would be sent as an Authorization nobody asked for.
    const QByteArray url = m_url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment);
    curl().easySetOption(m_handle, CURLOPT_URL, url.constData());
    curl().easySetOption(m_handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl().easySetOption(m_handle, CURLOPT_NOSIGNAL, 1L);
    // Else a transfer that is given up waits, and everybody with it, until the system's resolver has
    // answered.
    curl().easySetOption(m_handle, CURLOPT_QUICK_EXIT, 1L);
    curl().easySetOption(m_handle, CURLOPT_USERAGENT, "Pelinor/1.2.6");
    curl().easySetOption(m_handle, CURLOPT_ACCEPT_ENCODING, "gzip, br");
    curl().easySetOption(m_handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl().easySetOption(m_handle, CURLOPT_CONNECTTIMEOUT, static_cast<long>(m_settings.stallSeconds));
    curl().easySetOption(m_handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(m_settings.stallSeconds));
    curl().easySetOption(m_handle,
        CURLOPT_LOW_SPEED_LIMIT,
        static_cast<long>(m_settings.stallBytesPerSecond));
    if (!m_settings.extraCAFile.isEmpty()) {
        // The file replaces libcurl's bundle; the system's authorities are found in its directory all the
        // same.
        const QByteArray file = QFile::encodeName(m_settings.extraCAFile);
        curl().easySetOption(m_handle, CURLOPT_CAINFO, file.constData());
    }
    curl().easySetOption(m_handle, CURLOPT_ERRORBUFFER, m_errorText);
    curl().easySetOption(m_handle, CURLOPT_HEADERFUNCTION, &KRHTTPConnection::_headerCallback);
    curl().easySetOption(m_handle, CURLOPT_HEADERDATA, this);
    curl().easySetOption(m_handle, CURLOPT_WRITEFUNCTION, &KRHTTPConnection::_writeCallback);
    curl().easySetOption(m_handle, CURLOPT_WRITEDATA, this);
    if (_hasBody()) {
        curl().easySetOption(m_handle, CURLOPT_NOPROGRESS, 0L);
        curl().easySetOption(m_handle, CURLOPT_XFERINFOFUNCTION, &KRHTTPConnection::_progressCallback);
        curl().easySetOption(m_handle, CURLOPT_XFERINFODATA, this);
    }
}

void KRHTTPConnection::_setUpCertificateCheck()
{
    m_certificateCheck.reset();
    if (m_needsNewConnection)
        curl().easySetOption(m_handle, CURLOPT_FRESH_CONNECT, 1L);
    m_needsNewConnection = false;
    const QString server = KRServerCertificate::serverOfURL(m_url);
    if (!server.isEmpty())
        m_certificateCheck = std::make_unique<KRCertificateCheck>(m_handle,
            m_url,
            KRTrustedCertificates::fingerprintForServer(server));
}

bool KRHTTPConnection::_hasBody() const
{
    return !m_request.body.isNull() || m_request.bodyStream;
}

void KRHTTPConnection::_setUpMethodAndBody()
{
    const QByteArray& method = m_request.method;
    if (method == "GET" && !_hasBody()) {
        curl().easySetOption(m_handle, CURLOPT_HTTPGET, 1L);
        curl().easySetOption(m_handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        return;
    }
    // libcurl repeats a request on a connection that it reused and found closed, and over HTTP/2 a refused
    // stream. Neither can happen on a fresh connection that speaks HTTP/1.1.
    curl().easySetOption(m_handle, CURLOPT_FRESH_CONNECT, 1L);
    curl().easySetOption(m_handle, CURLOPT_FORBID_REUSE, 1L);
    curl().easySetOption(m_handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    if (method == "HEAD") {
        curl().easySetOption(m_handle, CURLOPT_NOBODY, 1L);
        return;
    }
    if (_hasBody() || method == "POST") {
        curl().easySetOption(m_handle, CURLOPT_POST, 1L);
        curl_off_t length = m_request.body.size();
        if (m_request.body.isNull() && m_request.bodyStream) {
            length = m_request.bodyStreamLength.value_or(-1);
            curl().easySetOption(m_handle, CURLOPT_READFUNCTION, &KRHTTPConnection::_readCallback);
            curl().easySetOption(m_handle, CURLOPT_READDATA, this);
        } else {
            curl().easySetOption(m_handle,
                CURLOPT_POSTFIELDS,
                m_request.body.isNull() ? "" : m_request.body.constData());
        }
        curl().easySetOption(m_handle, CURLOPT_POSTFIELDSIZE_LARGE, length);
    }
    if (method != "POST")
        curl().easySetOption(m_handle, CURLOPT_CUSTOMREQUEST, method.constData());
}

void KRHTTPConnection::_setUpHeaders()
{
    _releaseHeaders();
    // Waiting for "100 Continue" costs a second with servers that do not know it.
    m_headerList = curl().listAppend(m_headerList, "Expect:");
    if (m_request.body.isNull() && m_request.bodyStream && !m_request.bodyStreamLength)
        m_headerList = curl().listAppend(m_headerList, "Transfer-Encoding: chunked");
    for (const auto& [name, value] : m_request.headers) {
        if (m_leftOrigin && !isHarmlessHeader(name))
            continue;
        // libcurl writes the length itself, from what it is given to send.
        if (name.compare("Content-Length", Qt::CaseInsensitive) == 0)
            continue;
        if (!isSafeHeaderText(name) || !isSafeHeaderText(value)) {
            KRLog(QStringLiteral("Error: the header %1 has a line break, it is not sent")
                      .arg(QString::fromUtf8(name.simplified())));
            continue;
        }
        // "Name;" is libcurl's form of a header without a value.
        const QByteArray line = value.isEmpty() ? name + ';' : name + ": " + value;
        m_headerList = curl().listAppend(m_headerList, line.constData());
    }
    curl().easySetOption(m_handle, CURLOPT_HTTPHEADER, m_headerList);
}

void KRHTTPConnection::_releaseHeaders()
{
    if (m_headerList)
        curl().listFree(m_headerList);
    m_headerList = nullptr;
}

void KRHTTPConnection::_receiveHeaderLine(QByteArrayView line)
{
    if (m_headDelivered)
        return; // trailers
    if (line.startsWith("HTTP/")) {
        m_response.headers.clear();
        return;
    }
    while (!line.isEmpty() && (line.back() == '\r' || line.back() == '\n'))
        line.chop(1);
    if (line.isEmpty()) {
        _receivedHead();
        return;
    }
    const qsizetype colon = line.indexOf(':');
    if (colon > 0)
        m_response.headers.append(
            { line.first(colon).toByteArray().toLower(), line.sliced(colon + 1).toByteArray().trimmed() });
}

void KRHTTPConnection::_receivedHead()
{
    long status = 0;
    curl().easyGetInfo(m_handle, CURLINFO_RESPONSE_CODE, &status);
    if (status < 200)
        return;
    m_response.statusCode = static_cast<int>(status);
    for (const auto& [name, value] : m_response.headers) {
        bool isNumber = false;
        const qint64 length = value.toLongLong(&isNumber);
        if (name == "content-length" && isNumber)
            m_response.expectedContentLength = length;
    }
    m_location = _redirectLocation();
    if (m_location)
        return;
    m_headDelivered = true;
    m_delegate->connectionDidReceiveResponse(m_response);
}

std::optional<QByteArray> KRHTTPConnection::_redirectLocation() const
{
    const int status = m_response.statusCode;
    const bool repeats = status == 307 || status == 308;
    if (status != 301 && status != 302 && status != 303 && !repeats)
        return std::nullopt;
    for (const auto& [name, value] : m_response.headers) {
        if (name != "location" || value.isEmpty())
            continue;
        // Repeating a post elsewhere would hand its content to a server the user never named.
        const bool isRead = m_request.method == "GET" || m_request.method == "HEAD";
        if (repeats && !isRead && !haveSameOrigin(m_url, m_url.resolved(QUrl::fromEncoded(value))))
            return std::nullopt;
        return value;
    }
    return std::nullopt;
}

std::optional<KRError> KRHTTPConnection::_redirectTo(const QByteArray& location)
{
    const QUrl target = m_url.resolved(QUrl::fromEncoded(location));
    if (!isHTTP(target)) {
        return connectionError(KRHTTPConnectionErrorBadRedirect,
            QStringLiteral("%1 sent the request on to an address that is no web address").arg(m_url.host()));
    }
    if (m_url.scheme() == u"https" && target.scheme() != u"https") {
        return connectionError(KRHTTPConnectionErrorInsecureRedirect,
            QStringLiteral("%1 sent the request on to an unencrypted address").arg(m_url.host()));
    }
    if (++m_redirects > m_settings.maxRedirects) {
        return connectionError(KRHTTPConnectionErrorTooManyRedirects,
            QStringLiteral("%1 sent the request on too many times").arg(m_request.url.host()));
    }
    const bool repeats = m_response.statusCode == 307 || m_response.statusCode == 308;
    if (!repeats && m_request.method != "HEAD") {
        if (m_request.method != "GET")
            m_request.headers.removeIf([](const auto& header) { return isAboutContent(header.first); });
        m_request.method = "GET";
        m_request.body = {};
        m_request.bodyStream.reset();
    } else if (m_request.bodyStream && !m_request.bodyStream->rewind()) {
        return connectionError(KRHTTPConnectionErrorBadRedirect,
            QStringLiteral("%1 sent the request on, but its content cannot be sent twice").arg(m_url.host()));
    }
    // Once away, credentials stay away: a hop back could have been arranged by the other server.
    m_leftOrigin = m_leftOrigin || !haveSameOrigin(m_request.url, target);
    m_url = target;
    return std::nullopt;
}

bool KRHTTPConnection::_receiveBody(const char* bytes, size_t length)
{
    m_received += static_cast<qint64>(length);
    if (m_location)
        return m_received <= redirectBodyTolerated;
    if (m_received > m_settings.maxResponseBytes) {
        m_ownError = connectionError(KRHTTPConnectionErrorTooLarge,
            QStringLiteral("The answer of %1 is larger than %2 MB")
                .arg(m_url.host())
                .arg(m_settings.maxResponseBytes / (Q_INT64_C(1024) * 1024)));
        return false;
    }
    m_delegate->connectionDidReceiveData(bytes, static_cast<qint64>(length));
    return true;
}

size_t KRHTTPConnection::_readBody(char* buffer, size_t capacity)
{
    const qint64 count = m_request.bodyStream->read(buffer, static_cast<qint64>(capacity));
    // A stream shorter than announced would keep the server waiting for the rest.
    const bool isCut = count == 0 && m_bodyRead < m_request.bodyStreamLength.value_or(0);
    if (count >= 0 && !isCut) {
        m_bodyRead += count;
        return static_cast<size_t>(count);
    }
    m_ownError = connectionError(KRHTTPConnectionErrorUnreadableBody,
        QStringLiteral("What was to be sent could not be read"));
    return CURL_READFUNC_ABORT;
}

void KRHTTPConnection::_noteSent(qint64 sent, qint64 total)
{
    // libcurl counts the framing of a chunked body too.
    if (m_request.bodyStream && m_request.body.isNull())
        sent = std::min(sent, m_bodyRead);
    if (sent <= m_sent)
        return;
    const qint64 written = sent - m_sent;
    m_sent = sent;
    m_delegate->connectionDidSendBodyData(written, sent, total);
}

void KRHTTPConnection::transferDidEnd(CURL*, int code)
{
    if (m_certificateCheck && m_certificateCheck->hasRefusedOldConnection()) {
        // Nothing has been sent.
        m_needsNewConnection = true;
        _beginHop();
        return;
    }
    if (m_location && !m_ownError && (code == CURLE_OK || code == CURLE_WRITE_ERROR)) {
        if (const std::optional<KRError> error = _redirectTo(*m_location))
            _fail(*error);
        else
            _beginHop();
        return;
    }
    if (code != CURLE_OK)
        _fail(m_ownError ? *m_ownError : _errorForCode(code));
    else
        m_delegate->connectionDidFinishLoading();
}

void KRHTTPConnection::_fail(const KRError& error)
{
    m_delegate->connectionDidFailWithError(error);
}

std::optional<KRError> KRHTTPConnection::_certificateError(int code, const QString& detail) const
{
    if (code != CURLE_PEER_FAILED_VERIFICATION || !m_certificateCheck)
        return std::nullopt;
    const KRServerCertificate certificate { KRServerCertificate::serverOfURL(m_url),
        m_certificateCheck->fingerprint() };
    if (certificate.fingerprint.isEmpty())
        return std::nullopt;
    KRError error = m_certificateCheck->isAnotherTrusted()
        ? connectionError(KRHTTPConnectionErrorCertificateChanged,
            QStringLiteral("The certificate of the server %1 has changed and is not the one that is trusted, "
                           "so nothing was sent. Its SHA-256 fingerprint is now %2")
                .arg(m_url.host(), certificate.fingerprint))
        : connectionError(code,
            QStringLiteral(
                "The identity of the server %1 could not be verified (%2). The SHA-256 fingerprint "
                "of its certificate is %3")
                .arg(m_url.host(), detail, certificate.fingerprint));
    error.details = certificate.errorDetails();
    return error;
}

KRError KRHTTPConnection::_errorForCode(int code) const
{
    const QString host = m_url.host();
    if (code == CURLE_ABORTED_BY_CALLBACK && !m_delegate->connectionShouldGoOn())
        return connectionError(KRHTTPConnectionErrorCancelled, QStringLiteral("Nobody wanted it any more"));
    const QString detail
        = QString::fromUtf8(m_errorText[0] ? m_errorText : curl().easyErrorText(static_cast<CURLcode>(code)));
    if (const std::optional<KRError> error = _certificateError(code, detail))
        return *error;
    QString text;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        text = QStringLiteral("The server %1 was not found").arg(host);
        break;
    case CURLE_COULDNT_CONNECT:
        text = QStringLiteral("The server %1 could not be reached").arg(host);
        break;
    case CURLE_OPERATION_TIMEDOUT:
        text = QStringLiteral("The server %1 did not answer in time").arg(host);
        break;
    case CURLE_PEER_FAILED_VERIFICATION:
        text = QStringLiteral("The identity of the server %1 could not be verified (%2)").arg(host, detail);
        break;
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
        text = QStringLiteral("The connection to %1 was lost (%2)").arg(host, detail);
        break;
    default:
        text = QStringLiteral("The connection to %1 failed (%2)").arg(host, detail);
        break;
    }
    return connectionError(code, text);
}

size_t KRHTTPConnection::_headerCallback(char* bytes, size_t size, size_t count, void* self)
{
    static_cast<KRHTTPConnection*>(self)->_receiveHeaderLine(
        QByteArrayView(bytes, static_cast<qsizetype>(size * count)));
    return size * count;
}

size_t KRHTTPConnection::_writeCallback(char* bytes, size_t size, size_t count, void* self)
{
    return static_cast<KRHTTPConnection*>(self)->_receiveBody(bytes, size * count) ? size * count
                                                                                   : CURL_WRITEFUNC_ERROR;
}

size_t KRHTTPConnection::_readCallback(char* buffer, size_t size, size_t count, void* self)
{
    return static_cast<KRHTTPConnection*>(self)->_readBody(buffer, size * count);
}

int KRHTTPConnection::_progressCallback(void* self, long long, long long, long long upTotal, long long up)
{
    auto* const connection = static_cast<KRHTTPConnection*>(self);
    connection->_noteSent(up, upTotal);
    return connection->m_delegate->connectionShouldGoOn() ? 0 : 1;
}
