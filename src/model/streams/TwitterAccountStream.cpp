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

void TwitterAccountStream::_loadNewer()
{
    const KRCallback<TwitterStatusList> callback = loadNewerResponseCallback();
    if (const std::shared_ptr<TwitterStreamAccount> account = m_account.lock())
        _requestNewer(*account->authenticatedRequest(callback));
    else
        callback.invoke(noAccountError());
}

void TwitterAccountStream::_loadOlder()
{
    const KRCallback<TwitterStatusList> callback = loadOlderResponseCallback();
    if (const std::shared_ptr<TwitterStreamAccount> account = m_account.lock())
        _requestOlder(*account->authenticatedRequest(callback));
    else
        callback.invoke(noAccountError());
}

void TwitterAccountStream::_requestNewer(TwitterStatusesOperations&)
{
    KRLog(QStringLiteral("subclasses must implement"));
}

void TwitterAccountStream::_requestOlder(TwitterStatusesOperations&)
{
    KRLog(QStringLiteral("subclasses must implement"));
}

void TwitterTimelineStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.friendsTimelineSinceID(newestStatusID(), {}, TwitterAPIMaxCount, {});
}

void TwitterTimelineStream::_requestOlder(TwitterStatusesOperations& request)
{
    request.friendsTimelineSinceID({}, oldestStatusID(), TwitterAPIMaxCount, {});
}

void TwitterRepliesStream::_requestNewer(TwitterStatusesOperations& request)
{
    request.repliesSinceID(newestStatusID(), {}, {});
}

void TwitterRepliesStream::_requestOlder(TwitterStatusesOperations& request)
{
    request.repliesSinceID({}, oldestStatusID(), {});
}
