#include "api/TwitterRequestStart.h"

#include "transport/KRBackgroundThread.h"

void TwitterRequestStart::start(const std::shared_ptr<KRHTTPRequest>& request,
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
