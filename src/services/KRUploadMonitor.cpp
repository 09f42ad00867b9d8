#include "services/KRUploadMonitor.h"

void KRUploadMonitor::cancel()
{
    std::scoped_lock guard(m_lock);
    m_isCancelled = true;
    if (const std::shared_ptr<KRHTTPRequest> request = m_request.lock())
        request->cancel();
}

void KRUploadMonitor::watch(const std::shared_ptr<KRHTTPRequest>& request)
{
    request->setProgressCallback(
        KRCallback<KRHTTPRequest&>::withFunction([progress = m_progress](KRHTTPRequest& sent) {
            progress.invoke(KRUploadProgress { sent.uploadedBytes(), sent.uploadContentLength() });
        }));
    std::scoped_lock guard(m_lock);
    m_request = request;
    if (m_isCancelled)
        request->cancel();
}
