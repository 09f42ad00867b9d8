#include "api/TwitterOperations.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterRequestStart.h"
#include "foundation/KRLog.h"

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t clientName[] = u"Pelinor-Mac";
constexpr char16_t clientVersion[] = u"1.2.6";
constexpr char16_t clientURL[] = u"https://pelinor.kestrin.com/";

} // namespace

TwitterOperations::TwitterOperations(TwitterRequestContext context)
    : m_context(std::move(context))
{
}

void TwitterOperations::_requireAuthentication(const char* selector) const
{
    if (!m_context.login)
        KRLog(u"Critical Error: %1 requires authentication"_s.arg(QLatin1String(selector)));
}

void TwitterOperations::_requirePerson(const QString& nameOrID)
{
    if (nameOrID.isEmpty())
        m_error = errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
            -1,
            u"This person has no name that the service could be asked for"_s);
}

void TwitterOperations::GET(const QString& path, ResponseHandler handler)
{
    _request(path, QString::fromUtf16(KRHTTPMethodGET), {}, std::move(handler));
}

void TwitterOperations::GET(const QString& path, const KRParameters& query, ResponseHandler handler)
{
    GET(u"%1?%2"_s.arg(path, KRAdditions::URLParameterString(query)), std::move(handler));
}

void TwitterOperations::POST(const QString& path, const QByteArray& body, ResponseHandler handler)
{
    _request(path, QString::fromUtf16(KRHTTPMethodPOST), body, std::move(handler));
}

void TwitterOperations::POST(const QString& path, const KRParameters& form, ResponseHandler handler)
{
    POST(path, KRAdditions::URLParameterString(form).toUtf8(), std::move(handler));
}

void TwitterOperations::_request(const QString& path,
    const QString& method,
    const QByteArray& body,
    ResponseHandler handler)
{
    const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
    request->setValueForHTTPHeaderField(QString::fromUtf16(clientName), u"X-Twitter-Client"_s);
    request->setValueForHTTPHeaderField(QString::fromUtf16(clientVersion), u"X-Twitter-Client-Version"_s);
    request->setValueForHTTPHeaderField(QString::fromUtf16(clientURL), u"X-Twitter-Client-URL"_s);
    if (m_context.login) {
        request->setUsername(m_context.login->username);
        request->setPassword(m_context.login->password);
    }
    request->setMethod(method);
    if (!body.isNull())
        request->setBody(body);
    TwitterRequestStart::start(request,
        m_error ? KRResult<QUrl>(*m_error) : m_context.hosts.RESTURLForPath(path),
        Callback(shared_from_this(), &TwitterOperations::_requestResponse, std::move(handler)));
}

void TwitterOperations::_requestResponse(KRHTTPRequest& request, const ResponseHandler& handler)
{
    TwitterAnswers::improveError(request);
    handler.invoke(request);
}
