#pragma once

#include "foundation/KRError.h"
#include "transport/KRCallback.h"
#include "transport/KRHTTPConnection.h"
#include "transport/KRMutableMultiDictionary.h"

#include <QByteArray>
#include <QUrl>

#include <atomic>
#include <memory>
#include <optional>

class KRHTTPMultipartFormData;
class KRInputStream;
class KRKeyedArchiver;
class KRKeyedUnarchiver;

inline constexpr char16_t KRHTTPMethodGET[] = u"GET";
inline constexpr char16_t KRHTTPMethodPUT[] = u"PUT";
inline constexpr char16_t KRHTTPMethodPOST[] = u"POST";
inline constexpr char16_t KRHTTPMethodDELETE[] = u"DELETE";

inline constexpr char16_t KRHTTPProxyTypeHTTP[] = u"HTTP";
inline constexpr char16_t KRHTTPProxyTypeSOCKS4[] = u"SOCKS4";
inline constexpr char16_t KRHTTPProxyTypeSOCKS5[] = u"SOCKS5";

/// Domain of errors that stand for an HTTP status; the code is the status.
inline constexpr char16_t KRHTTPRequestErrorDomain[] = u"com.kestrin.httprequest";

/// The first request of several at once has started, posted on the thread that starts it.
struct KRBeginNetworkActivityNotification {
    static constexpr char name[] = "KRBeginNetworkActivityNotification";
};
/// The last running request has ended, posted on the background thread.
struct KREndNetworkActivityNotification {
    static constexpr char name[] = "KREndNetworkActivityNotification";
};

/// One network exchange. Fill in, attach a response callback, start: the callback is invoked once, on the
/// shared background thread, with the request, whose error(), statusCode() and data() tell what came. A
/// running request keeps itself alive; from its start to its end only the progress values may be read from
/// other threads.
///
/// A status above 299 is an error of the domain KRHTTPRequestErrorDomain; the body is delivered all the same.
/// A request with maxRetries above 0 is persistent: kept in the user defaults until it succeeded or was tried
/// maxRetries + 1 times, and tried again whenever another request succeeds.
class KRHTTPRequest final : public KRHTTPConnectionDelegate,
                            public std::enable_shared_from_this<KRHTTPRequest> {
public:
    static std::shared_ptr<KRHTTPRequest> request();
    static std::shared_ptr<KRHTTPRequest> requestWithCoder(const KRKeyedUnarchiver& coder);
    /// Makes and starts a GET.
    static void GET(const QUrl& url, KRCallback<KRHTTPRequest&> callback);

    ~KRHTTPRequest() override;

    /// Archives what is needed to start the request again in another run: the password too, the callbacks
    /// not.
    void encodeWithCoder(KRKeyedArchiver& coder) const;

    const QUrl& url() const { return m_url; }
    void setUrl(const QUrl& url) { m_url = url; }
    const QString& method() const { return m_method; }
    void setMethod(const QString& method) { m_method = method; }
    const QByteArray& body() const { return m_body; }
    void setBody(const QByteArray& body) { m_body = body; }
    const std::shared_ptr<KRInputStream>& bodyStream() const { return m_bodyStream; }
    void setBodyStream(std::shared_ptr<KRInputStream> stream) { m_bodyStream = std::move(stream); }
    KRMutableMultiDictionary& headers() { return m_headers; }
    const KRMutableMultiDictionary& headers() const { return m_headers; }
    /// Replaces all values of the header.
    void setValueForHTTPHeaderField(const QString& value, const QString& field);
    /// Adds one more value.
    void addValueForHTTPHeaderField(const QString& value, const QString& field);
    const std::shared_ptr<KRHTTPMultipartFormData>& multipartFormData() const { return m_multipartFormData; }
    /// Makes the form's stream the body, with the two headers it needs. Meant to be set once.
    void setMultipartFormData(std::shared_ptr<KRHTTPMultipartFormData> formData);
    /// With a user name and a password (both not null) the request carries Basic authorization (RFC 7617).
    const QString& username() const { return m_username; }
    void setUsername(const QString& username) { m_username = username; }
    const QString& password() const { return m_password; }
    void setPassword(const QString& password) { m_password = password; }
    /// Kept for callers; connections follow the transport's own limits.
    int connectionTimeout() const { return m_connectionTimeout; }
    void setConnectionTimeout(int timeout) { m_connectionTimeout = timeout; }
    int maxRetries() const { return m_maxRetries; }
    void setMaxRetries(int maxRetries) { m_maxRetries = maxRetries; }
    int retries() const { return m_retries; }
    void setRetries(int retries) { m_retries = retries; }
    void setResponseCallback(KRCallback<KRHTTPRequest&> callback)
    {
        m_responseCallback = std::move(callback);
    }
    /// Invoked after every chunk received and every chunk sent.
    void setProgressCallback(KRCallback<KRHTTPRequest&> callback)
    {
        m_progressCallback = std::move(callback);
    }

    /// Whether this is a picture, for which other requests to its server do not wait. Whoever loads pictures
    /// says so; everything but a GET goes first by itself.
    void setIsPicture(bool isPicture) { m_isPicture = isPicture; }

    /// Any thread. A running request ignores it.
    void startRequest();
    /// What is being sent goes no further, now or once it begins, and the request ends with an error. One
    /// whose body has left is answered all the same. Any thread.
    void cancel() { m_isCancelled = true; }

    int statusCode() const { return m_statusCode; }
    const QByteArray& data() const { return m_data; }
    void setData(const QByteArray& data) { m_data = data; }
    const std::optional<KRError>& error() const { return m_error; }
    void setError(std::optional<KRError> error) { m_error = std::move(error); }
    /// Where the last answer came from, which is elsewhere than url() after a redirect; empty without one.
    const QUrl& responseURL() const { return m_responseURL; }
    /// The response's first header of that name (in lower case); empty when there is none.
    QByteArray responseHeader(QByteArrayView name) const;

    qint64 downloadContentLength() const { return m_downloadContentLength; }
    qint64 downloadedBytes() const { return m_downloadedBytes; }
    qint64 uploadContentLength() const { return m_uploadContentLength; }
    qint64 uploadedBytes() const { return m_uploadedBytes; }
    /// From 0 to 1; 0 while the length is not known. Any thread.
    double downloadProgress() const;
    double uploadProgress() const;

    /// The request as it would go out.
    KRURLRequest urlRequest() const;
    /// Class, address of the object, method and target, for logs; never a password.
    QString description() const;

    bool isPersistent() const { return m_maxRetries > 0; }
    static QList<std::shared_ptr<KRHTTPRequest>> persistentRequests();
    static void savePersistentRequests();
    static void addPersistentRequest(const std::shared_ptr<KRHTTPRequest>& request);
    static void removePersistentRequest(const std::shared_ptr<KRHTTPRequest>& request);
    /// Starts every persistent request that is not running.
    static void servicePersistentRequests();
    /// Deletes the bodies of uploads that programs ended in the middle of, but for those that a persistent
    /// request will send.
    static void removeAbandonedBodies();

    static void beginNetworkActivity();
    static void endNetworkActivity();
    /// Whether a request is running, for who begins to follow the notifications later. Any thread.
    static bool isNetworkActive();

private:
    KRHTTPRequest();

    void connectionDidReceiveResponse(const KRURLResponse& response) override;
    void connectionDidReceiveData(const char* bytes, qint64 length) override;
    void connectionDidSendBodyData(qint64 written, qint64 totalWritten, qint64 totalExpected) override;
    void connectionDidFinishLoading() override;
    void connectionDidFailWithError(const KRError& error) override;
    bool connectionShouldGoOn() const override { return !m_isCancelled; }

    void _startInBackground();
    void _rebuildBody();
    void _noteProgress();
    void _endRequest();
    void _didStartRequest();
    void _didEndRequest();

    QUrl m_url;
    QString m_method;
    QByteArray m_body;
    std::shared_ptr<KRInputStream> m_bodyStream;
    KRMutableMultiDictionary m_headers;
    std::shared_ptr<KRHTTPMultipartFormData> m_multipartFormData;
    QString m_username;
    QString m_password;
    int m_connectionTimeout = 0;
    int m_maxRetries = 0;
    int m_retries = 0;
    KRCallback<KRHTTPRequest&> m_responseCallback;
    KRCallback<KRHTTPRequest&> m_progressCallback;
    int m_statusCode = 0;
    QByteArray m_data;
    std::optional<KRError> m_error;
    QUrl m_responseURL;
    QList<std::pair<QByteArray, QByteArray>> m_responseHeaders;
    std::atomic<qint64> m_downloadContentLength = 0;
    std::atomic<qint64> m_downloadedBytes = 0;
    std::atomic<qint64> m_uploadContentLength = 0;
    std::atomic<qint64> m_uploadedBytes = 0;
    bool m_isPicture = false;
    // The stream was read by an earlier attempt.
    bool m_hasUsedStream = false;
    std::atomic<bool> m_isRunning = false;
    std::atomic<bool> m_isCancelled = false;
};

/// The text for an HTTP status, as error descriptions show it.
QString KRHTTPStatusText(int statusCode);
