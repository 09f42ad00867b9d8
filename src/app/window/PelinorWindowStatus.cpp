#include "app/window/PelinorWindowStatus.h"

#include "model/streams/TwitterStream.h"
#include "transport/KRHTTPRequest.h"
#include "transport/KRProxy.h"

PelinorWindowStatus::~PelinorWindowStatus()
{
    dissociateWeakProxy(this);
}

std::shared_ptr<PelinorWindowStatus> PelinorWindowStatus::observing(KRNotificationCenter& notifications)
{
    auto status = std::make_shared<PelinorWindowStatus>();
    // Requests may be older than the window.
    status->m_isNetworkActive = KRHTTPRequest::isNetworkActive();
    const auto proxy = weakMainThreadProxy(status);
    status->m_observations.push_back(notifications.observe<TwitterStreamErrorNotification>(
        [proxy](const TwitterStreamErrorNotification& failure) {
            proxy.perform(&PelinorWindowStatus::streamDidFail, failure.error);
        }));
    status->m_observations.push_back(notifications.observe<KRBeginNetworkActivityNotification>(
        [proxy](const KRBeginNetworkActivityNotification&) {
            proxy.perform(&PelinorWindowStatus::networkActivityDidBegin);
        }));
    status->m_observations.push_back(notifications.observe<KREndNetworkActivityNotification>(
        [proxy](const KREndNetworkActivityNotification&) {
            proxy.perform(&PelinorWindowStatus::networkActivityDidEnd);
        }));
    return status;
}

void PelinorWindowStatus::streamDidFail(const KRError& error)
{
    if (error.description.isEmpty()) {
        clearErrors();
        return;
    }
    m_currentError = error;
    KRRunLoop::main().performAfterDelay(errorDuration, [status = weak_from_this()] {
        if (const auto self = status.lock())
            self->clearErrors();
    });
    _changed();
}

void PelinorWindowStatus::clearErrors()
{
    if (!m_currentError)
        return;
    m_currentError.reset();
    _changed();
}

void PelinorWindowStatus::networkActivityDidBegin()
{
    m_isNetworkActive = true;
    _changed();
}

void PelinorWindowStatus::networkActivityDidEnd()
{
    m_isNetworkActive = false;
    _changed();
}

void PelinorWindowStatus::_changed()
{
    if (m_didChange)
        m_didChange();
}
