#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPMultipartFormData.h"
#include "transport/KRHTTPRequest.h"
#include "transport/KRInputStream.h"

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t defaultsKey[] = u"persistentHTTPRequests";

using RequestList = QList<std::shared_ptr<KRHTTPRequest>>;

/// Guards the list. Recursive: servicing starts requests, and a request that starts may list itself.
std::recursive_mutex& listLock()
{
    static std::recursive_mutex lock;
    return lock;
}

RequestList loadRequests()
{
    KRUserDefaults& defaults = KRUserDefaults::standardUserDefaults();
    const QByteArray data = defaults.dataForKey(defaultsKey);
    if (data.isEmpty())
        return {};
    const KRResult<KRKeyedUnarchiver> coder = KRKeyedUnarchiver::unarchiverWithData(data);
    if (coder.isError()) {
        defaults.setAsideUnreadableData(QString::fromUtf16(defaultsKey));
        return {};
    }
    RequestList requests;
    for (const KRKeyedUnarchiver& element : coder.value().decodeObjects("requests"_L1))
        requests.append(KRHTTPRequest::requestWithCoder(element));
    return requests;
}

/// The list itself; the caller holds the lock.
RequestList& requestList()
{
    static RequestList requests = loadRequests();
    return requests;
}

} // namespace

QList<std::shared_ptr<KRHTTPRequest>> KRHTTPRequest::persistentRequests()
{
    std::scoped_lock guard(listLock());
    return requestList();
}

void KRHTTPRequest::savePersistentRequests()
{
    std::scoped_lock guard(listLock());
    KRKeyedArchiver archiver;
    archiver.encodeObjects("requests"_L1, requestList());
    KRUserDefaults::standardUserDefaults().setData(defaultsKey, archiver.archivedData());
}

void KRHTTPRequest::addPersistentRequest(const std::shared_ptr<KRHTTPRequest>& request)
{
    std::scoped_lock guard(listLock());
    if (requestList().contains(request))
        return;
    requestList().append(request);
    KRLog(u"add persistent request %1"_s.arg(request->description()));
    savePersistentRequests();
}

void KRHTTPRequest::removePersistentRequest(const std::shared_ptr<KRHTTPRequest>& request)
{
    std::scoped_lock guard(listLock());
    if (!requestList().removeOne(request))
        return;
    KRLog(u"remove persistent request %1"_s.arg(request->description()));
    savePersistentRequests();
}

void KRHTTPRequest::servicePersistentRequests()
{
    std::scoped_lock guard(listLock());
    const RequestList requests = requestList();
    for (const std::shared_ptr<KRHTTPRequest>& request : requests) {
        KRLog(u"servicing persistent request %1"_s.arg(request->description()));
        request->startRequest();
    }
}

void KRHTTPRequest::removeAbandonedBodies()
{
    QStringList kept;
    for (const std::shared_ptr<KRHTTPRequest>& request : persistentRequests()) {
        if (request->m_multipartFormData)
            kept.append(request->m_multipartFormData->dataFile());
    }
    KRHTTPMultipartFormData::removeAbandonedBodies(kept);
}

void KRHTTPRequest::_rebuildBody()
{
    // The form counts on from the length of the body before.
    const qint64 lengthBefore = m_multipartFormData->dataInputLength();
    const std::shared_ptr<KRInputStream> stream = m_multipartFormData->dataInputStream();
    const qint64 length = m_multipartFormData->dataInputLength() - lengthBefore;
    {
        // Whoever archives the list reads the headers.
        std::scoped_lock guard(listLock());
        m_bodyStream = stream;
        setValueForHTTPHeaderField(QString::number(length), u"Content-Length"_s);
    }
    performOnSharedBackgroundThread([request = shared_from_this()] { request->_startInBackground(); });
}

void KRHTTPRequest::_didStartRequest()
{
    if (!isPersistent())
        return;
    if (m_retries == 0) {
        KRLog(u"first attempt of many, add self to the persistent list"_s);
        addPersistentRequest(shared_from_this());
    } else {
        KRLog(u"%1 attempt %2"_s.arg(description()).arg(m_retries));
    }
}

void KRHTTPRequest::_didEndRequest()
{
    if (isPersistent()) {
        if (m_error && m_retries < m_maxRetries) {
            KRLog(u"Error %1: will retry later"_s.arg(m_error->description));
            // Whoever archives the list reads the number.
            std::scoped_lock guard(listLock());
            ++m_retries;
            return;
        }
        if (m_error)
            KRLog(u"%1 was attempted too many times, not trying again."_s.arg(description()));
        removePersistentRequest(shared_from_this());
    }
    if (!m_error)
        servicePersistentRequests();
}
