#include "transport/KRTransferEngine.h"

#include "transport/KRCurlLibrary.h"

#include <algorithm>

namespace {

constexpr int longestWait = 60'000;
constexpr size_t idleHandlesKept = 16;
// Enough for a screen of avatars beside the timelines without crowding a small site.
constexpr long connectionsPerHost = 8;

} // namespace

KRTransferEngine::KRTransferEngine()
    : m_curl(KRCurlLibrary::shared())
    , m_multi(m_curl.multiInit())
{
    m_curl.multiSetOption(m_multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    m_curl.multiSetOption(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, connectionsPerHost);
}

KRTransferEngine::~KRTransferEngine()
{
    cancelAll();
    for (CURL* handle : m_idleHandles)
        m_curl.easyCleanup(handle);
    m_curl.multiCleanup(m_multi);
}

CURL* KRTransferEngine::takeHandle()
{
    if (m_idleHandles.empty())
        return m_curl.easyInit();
    CURL* handle = m_idleHandles.back();
    m_idleHandles.pop_back();
    return handle;
}

void KRTransferEngine::start(CURL* handle, std::shared_ptr<KRTransfer> transfer)
{
    m_transfers.emplace(handle, std::move(transfer));
    m_curl.multiAddHandle(m_multi, handle);
}

bool KRTransferEngine::moveOn()
{
    int running = 0;
    m_curl.multiPerform(m_multi, &running);
    return _tellEnded();
}

void KRTransferEngine::wait(std::optional<KRRunLoop::Duration> limit)
{
    const int milliseconds
        = limit ? static_cast<int>(std::min<qint64>(limit->count(), longestWait)) : longestWait;
    m_curl.multiPoll(m_multi, nullptr, 0, milliseconds, nullptr);
}

void KRTransferEngine::wakeUp()
{
    m_curl.multiWakeUp(m_multi);
}

bool KRTransferEngine::_tellEnded()
{
    bool ended = false;
    int remaining = 0;
    while (const CURLMsg* message = m_curl.multiInfoRead(m_multi, &remaining)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* handle = message->easy_handle;
        const CURLcode code = message->data.result;
        m_curl.multiRemoveHandle(m_multi, handle);
        const auto found = m_transfers.find(handle);
        const std::shared_ptr<KRTransfer> transfer = std::move(found->second);
        m_transfers.erase(found);
        transfer->transferDidEnd(handle, code);
        _recycle(handle);
        ended = true;
    }
    return ended;
}

void KRTransferEngine::_recycle(CURL* handle)
{
    if (m_idleHandles.size() >= idleHandlesKept) {
        m_curl.easyCleanup(handle);
        return;
    }
    m_curl.easyReset(handle);
    m_idleHandles.push_back(handle);
}

void KRTransferEngine::cancelAll()
{
    for (auto& [handle, transfer] : m_transfers) {
        m_curl.multiRemoveHandle(m_multi, handle);
        _recycle(handle);
    }
    m_transfers.clear();
}
