#pragma once

#include "foundation/KRResult.h"
#include "transport/KRHTTPRequest.h"

#include <QUrl>

/// How every request to a service begins. Any thread.
namespace TwitterRequestStart {

/// Sends the request to the address, or ends it with the address's error: then nothing is sent, and the
/// callback gets the request on the shared background thread, as it would get one that was answered.
void start(const std::shared_ptr<KRHTTPRequest>& request,
    const KRResult<QUrl>& url,
    KRCallback<KRHTTPRequest&> callback);

} // namespace TwitterRequestStart
