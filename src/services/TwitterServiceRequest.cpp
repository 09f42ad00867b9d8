#include "services/TwitterServiceRequest.h"

#include "api/TwitterRequestStart.h"

using namespace Qt::StringLiterals;

void TwitterServiceRequest::GET(const KRResult<QUrl>& url, KRCallback<KRHTTPRequest&> callback)
{
    TwitterRequestStart::start(KRHTTPRequest::request(), url, std::move(callback));
}

QString TwitterServiceRequest::pathWithQuery(const QString& path, const KRParameters& parameters)
{
    return u"%1?%2"_s.arg(path, KRAdditions::URLParameterString(parameters));
}
