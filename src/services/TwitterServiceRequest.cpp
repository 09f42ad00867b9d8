#include "services/TwitterServiceRequest.h"

#include "transport/KRBackgroundThread.h"

using namespace Qt::StringLiterals;

void TwitterServiceRequest::start(const std::shared_ptr<KRHTTPRequest>& request,
    const KRResult<QUrl>& url,
    KRCallback<KRHTTPRequest&> callback)
{
    if (url.isError()) {
        request->setError(url.error());
        performOnSharedBackgroundThread(
            [request, callback = std::move(callback)] { callback.invoke(*request); });
        return;
    }
    request->setUrl(url.value());
    request->setResponseCallback(std::move(callback));
    request->startRequest();
}

void TwitterServiceRequest::GET(const KRResult<QUrl>& url, KRCallback<KRHTTPRequest&> callback)
{
    start(KRHTTPRequest::request(), url, std::move(callback));
}

QString TwitterServiceRequest::pathWithQuery(const QString& path, const KRParameters& parameters)
{
    return u"%1?%2"_s.arg(path, KRAdditions::URLParameterString(parameters));
}
