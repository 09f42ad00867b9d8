#include "transport/KRHTTPRequest.h"

#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "text/KRStringAdditions.h"
#include "transport/KRBackgroundProxy.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPMultipartFormData.h"
#include "transport/KRInputStream.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

std::atomic<int> s_networkActivity = 0;

double progress(qint64 done, qint64 expected)
{
    if (expected <= 0)
        return 0.0;
    return std::min(1.0, static_cast<double>(done) / static_cast<double>(expected));
}

} // namespace

KRHTTPRequest::KRHTTPRequest()
    : m_method(QString::fromUtf16(KRHTTPMethodGET))
{
}

KRHTTPRequest::~KRHTTPRequest() = default;

std::shared_ptr<KRHTTPRequest> KRHTTPRequest::request()
{
    return std::shared_ptr<KRHTTPRequest>(new KRHTTPRequest);
}

std::shared_ptr<KRHTTPRequest> KRHTTPRequest::requestWithCoder(const KRKeyedUnarchiver& coder)
{
    const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
    request->m_url = coder.decodeURL("url"_L1);
    request->m_method = coder.decodeString("method"_L1);
    request->m_body = coder.decodeData("body"_L1);
    if (const auto headers = coder.decodeObject("headers"_L1))
        request->m_headers = KRMutableMultiDictionary(*headers);
    if (const auto formData = coder.decodeObject("multipartFormData"_L1))
        request->setMultipartFormData(std::make_shared<KRHTTPMultipartFormData>(*formData));
    request->m_username = coder.decodeString("username"_L1);
    request->m_password = coder.decodeString("password"_L1);
    request->m_maxRetries = static_cast<int>(coder.decodeInteger("maxRetries"_L1).value_or(0));
    request->m_retries = static_cast<int>(coder.decodeInteger("retries"_L1).value_or(0));
    return request;
}

void KRHTTPRequest::encodeWithCoder(KRKeyedArchiver& coder) const
{
    coder.encodeURL("url"_L1, m_url);
    coder.encodeString("method"_L1, m_method);
    coder.encodeData("body"_L1, m_body);
    coder.encodeObject("headers"_L1, m_headers);
    if (m_multipartFormData)
        coder.encodeObject("multipartFormData"_L1, *m_multipartFormData);
    coder.encodeString("username"_L1, m_username);
    coder.encodeString("password"_L1, m_password);
    coder.encodeInteger("maxRetries"_L1, m_maxRetries);
    coder.encodeInteger("retries"_L1, m_retries);
}

void KRHTTPRequest::GET(const QUrl& url, KRCallback<KRHTTPRequest&> callback)
{
    const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
    request->setUrl(url);
    request->setResponseCallback(std::move(callback));
    request->startRequest();
}

void KRHTTPRequest::setValueForHTTPHeaderField(const QString& value, const QString& field)
{
    m_headers.setObjectForKey(value, field);
}

void KRHTTPRequest::addValueForHTTPHeaderField(const QString& value, const QString& field)
{
    m_headers.addObjectForKey(value, field);
}

void KRHTTPRequest::setMultipartFormData(std::shared_ptr<KRHTTPMultipartFormData> formData)
{
    if (!formData)
        return;
    if (m_multipartFormData)
        KRLog(u"Error: can only set multipartFormData once"_s);
    m_multipartFormData = std::move(formData);
    m_bodyStream = m_multipartFormData->dataInputStream();
    setValueForHTTPHeaderField(m_multipartFormData->contentTypeHeader(), u"Content-Type"_s);
    setValueForHTTPHeaderField(QString::number(m_multipartFormData->dataInputLength()), u"Content-Length"_s);
}

void KRHTTPRequest::startRequest()
{
    if (m_isRunning.exchange(true))
        return;
    beginNetworkActivity();
    m_error.reset();
    m_downloadContentLength = 0;
    m_downloadedBytes = 0;
    m_uploadContentLength = 0;
    m_uploadedBytes = 0;
    // Before the background thread gets hold of the request, so that it never sees a persistent one unlisted.
    _didStartRequest();
    performOnSharedBackgroundThread([request = shared_from_this()] { request->_startInBackground(); });
}

void KRHTTPRequest::_startInBackground()
{
    if (m_multipartFormData && m_multipartFormData->dataFile().isNull()) {
        // An earlier attempt has deleted the body, and this thread has no time to copy files.
        backgroundProxy(shared_from_this())->perform(&KRHTTPRequest::_rebuildBody);
        return;
    }
    if (m_isCancelled) {
        connectionDidFailWithError(errorWithDomain(QString::fromUtf16(KRHTTPConnectionErrorDomain),
            KRHTTPConnectionErrorCancelled,
            u"Nobody wanted it any more"_s));
        return;
    }
    if (const auto error = m_multipartFormData ? m_multipartFormData->error() : std::nullopt) {
        connectionDidFailWithError(*error);
        return;
    }
    if (m_body.isNull() && m_bodyStream) {
        if (m_hasUsedStream && !m_bodyStream->rewind()) {
            connectionDidFailWithError(errorWithDomain(QString::fromUtf16(KRHTTPConnectionErrorDomain),
                KRHTTPConnectionErrorUnreadableBody,
                u"What was to be sent can be read only once"_s));
            return;
        }
        m_hasUsedStream = true;
    }
    const auto connection = std::make_shared<KRHTTPConnection>(urlRequest(), shared_from_this());
    connection->start(KRBackgroundThread::shared().transfers());
}

KRURLRequest KRHTTPRequest::urlRequest() const
{
    KRURLRequest request;
    request.url = m_url;
    request.method = m_method.toUtf8();
    request.kind = m_method != QStringView(KRHTTPMethodGET) ? KRTransferKind::Command
        : m_isPicture                                       ? KRTransferKind::Picture
                                                            : KRTransferKind::Data;
    if (!m_body.isNull() && m_bodyStream)
        KRLog(u"ERROR: body & bodyStream both specified!"_s);
    request.body = m_body;
    if (m_body.isNull() && m_bodyStream) {
        request.bodyStream = m_bodyStream;
        bool isNumber = false;
        const QStringList* lengths = m_headers.objectsForKey(u"Content-Length"_s);
        const qint64 length = lengths ? lengths->value(0).toLongLong(&isNumber) : 0;
        if (isNumber)
            request.bodyStreamLength = length;
    }
    if (!m_username.isNull() && !m_password.isNull()) {
        const QString credentials = KRAdditions::base64EncodedString(m_username + u':' + m_password);
        request.headers.append({ "Authorization", "Basic " + credentials.toLatin1() });
    }
    for (const QString& field : m_headers.keys()) {
        for (const QString& value : *m_headers.objectsForKey(field))
            request.headers.append({ field.toUtf8(), value.toUtf8() });
    }
    return request;
}

void KRHTTPRequest::connectionDidReceiveResponse(const KRURLResponse& response)
{
    m_statusCode = response.statusCode;
    m_responseURL = response.url;
    m_responseHeaders = response.headers;
    if (m_statusCode > 299) {
        m_error = errorWithDomain(QString::fromUtf16(KRHTTPRequestErrorDomain),
            m_statusCode,
            KRHTTPStatusText(m_statusCode));
    }
    m_data.truncate(0);
    m_downloadContentLength = response.expectedContentLength;
}

void KRHTTPRequest::connectionDidReceiveData(const char* bytes, qint64 length)
{
    // An announced length is a hint of a stranger: it saves copies, and must not reserve gigabytes.
    constexpr qint64 largestReserve = Q_INT64_C(1024) * 1024;
    if (m_data.isEmpty() && m_downloadContentLength > length)
        m_data.reserve(std::min<qint64>(m_downloadContentLength, largestReserve));
    m_data.append(bytes, length);
    m_downloadedBytes += length;
    _noteProgress();
}

void KRHTTPRequest::connectionDidSendBodyData(qint64 written, qint64 totalWritten, qint64 totalExpected)
{
    m_uploadContentLength = totalExpected;
    m_uploadedBytes = totalWritten;
    _noteProgress();
    KRLog(u"UPLOAD PROGRESS %1 %2 %3"_s.arg(written).arg(totalWritten).arg(totalExpected));
    KRLog(u"-> %1"_s.arg(uploadProgress(), 0, 'f', 6));
}

void KRHTTPRequest::connectionDidFinishLoading()
{
    _endRequest();
}

void KRHTTPRequest::connectionDidFailWithError(const KRError& error)
{
    m_error = error;
    _endRequest();
}

void KRHTTPRequest::_noteProgress()
{
    m_progressCallback.invoke(*this);
}

void KRHTTPRequest::_endRequest()
{
    // Let go before anybody can start the request again, who may do so from inside the callback, with new
    // ones.
    const KRCallback<KRHTTPRequest&> responseCallback = std::exchange(m_responseCallback, {});
    m_progressCallback = {};
    _didEndRequest();
    m_isRunning = false;
    if (m_multipartFormData)
        m_multipartFormData->cleanup();
    responseCallback.invoke(*this);
    endNetworkActivity();
}

QByteArray KRHTTPRequest::responseHeader(QByteArrayView name) const
{
    for (const auto& [key, value] : m_responseHeaders) {
        if (key == name)
            return value;
    }
    return {};
}

double KRHTTPRequest::downloadProgress() const
{
    return progress(m_downloadedBytes, m_downloadContentLength);
}

double KRHTTPRequest::uploadProgress() const
{
    return progress(m_uploadedBytes, m_uploadContentLength);
}

QString KRHTTPRequest::description() const
{
    const auto address = reinterpret_cast<quintptr>(this);
    return u"[KRHTTPRequest:0x%1 %2 %3]"_s.arg(address, 0, 16)
        .arg(m_method, m_url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery));
}

void KRHTTPRequest::beginNetworkActivity()
{
    if (s_networkActivity.fetch_add(1) + 1 == 1)
        KRNotificationCenter::defaultCenter().post(KRBeginNetworkActivityNotification());
}

void KRHTTPRequest::endNetworkActivity()
{
    if (s_networkActivity.fetch_sub(1) - 1 == 0)
        KRNotificationCenter::defaultCenter().post(KREndNetworkActivityNotification());
}

bool KRHTTPRequest::isNetworkActive()
{
    return s_networkActivity > 0;
}
