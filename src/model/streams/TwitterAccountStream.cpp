#include "model/streams/TwitterAccountStream.h"

#include "foundation/KRLog.h"

#include <algorithm>

namespace {

KRError noAccountError()
{
    return errorWithDomain(QStringLiteral("com.kestrin.pelinor"),
        -1,
        QStringLiteral("There is no account to load with"));
}

} // namespace

TwitterStatusPtr TwitterAccountStream::newestStatusThatIsNotMine() const
{
    const std::shared_ptr<TwitterStreamAccount> account = m_account.lock();
    const TwitterStatusList& stored = storedStatuses();
    const auto found = std::find_if(stored.begin(), stored.end(), [&account](const TwitterStatusPtr& status) {
        return !status->statusID().isNull() && (!account || !account->isAuthorOfStatus(*status));
    });
    return found == stored.end() ? nullptr : *found;
}

KRResult<void> TwitterAccountStream::_mayLoad() const
{
    if (m_account.expired())
        return noAccountError();
    return {};
}

template <class Send>
void TwitterAccountStream::_load(const KRCallback<TwitterStatusList>& callback, Send send) const
{
    const std::shared_ptr<TwitterStreamAccount> account = m_account.lock();
    const KRResult<void> allowed = _mayLoad();
    if (allowed.isError())
        callback.invoke(allowed.error());
    else
        send(*account->authenticatedRequest(callback));
}

void TwitterAccountStream::_loadNewer()
{
    _load(loadNewerResponseCallback(),
        [this](TwitterStatusesOperations& request) { _requestNewer(request); });
}

void TwitterAccountStream::_loadOlder()
{
    _load(loadOlderResponseCallback(),
        [this](TwitterStatusesOperations& request) { _requestOlder(request); });
}

void TwitterAccountStream::_loadBelow(const QString& maxID, const KRCallback<TwitterStatusList>& callback)
{
    _load(callback, [&](TwitterStatusesOperations& request) { _requestBelow(request, maxID); });
}

void TwitterAccountStream::_requestNewer(TwitterStatusesOperations&)
{
    KRLog(QStringLiteral("subclasses must implement"));
}

void TwitterAccountStream::_requestOlder(TwitterStatusesOperations& request)
{
    _requestBelow(request, olderPageID());
}

void TwitterAccountStream::_requestBelow(TwitterStatusesOperations&, const QString&)
{
    KRLog(QStringLiteral("subclasses must implement"));
}

void TwitterTimelineStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.friendsTimelineSinceID(sinceID(), {}, TwitterAPIMaxCount, {});
}

void TwitterTimelineStream::_requestBelow(TwitterStatusesOperations& request, const QString& maxID)
{
    request.friendsTimelineSinceID({}, maxID, TwitterAPIMaxCount, {});
}

void TwitterRepliesStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.repliesSinceID(sinceID(), {}, {});
}

void TwitterRepliesStream::_requestBelow(TwitterStatusesOperations& request, const QString& maxID)
{
    request.repliesSinceID({}, maxID, {});
}
