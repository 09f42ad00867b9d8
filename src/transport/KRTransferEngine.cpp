#include "transport/KRTransferEngine.h"

#include <algorithm>
#include <curl/curl.h>
#include <mutex>

namespace {

constexpr int longestWait = 60'000;
constexpr size_t idleHandlesKept = 16;
// Enough for a screen of avatars beside the timelines without crowding a small site.
constexpr long connectionsPerHost = 8;

} // namespace

KRTransferEngine::KRTransferEngine()
{
    static std::once_flag initialised;
    std::call_once(initialised, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    m_multi = curl_multi_init();
    curl_multi_setopt(m_multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, connectionsPerHost);
}

KRTransferEngine::~KRTransferEngine()
{
    cancelAll();
    for (CURL* handle : m_idleHandles)
        curl_easy_cleanup(handle);
    curl_multi_cleanup(m_multi);
}

CURL* KRTransferEngine::takeHandle()
{
    if (m_idleHandles.empty())
        return curl_easy_init();
    CURL* handle = m_idleHandles.back();
    m_idleHandles.pop_back();
    return handle;
}

void KRTransferEngine::start(CURL* handle, std::shared_ptr<KRTransfer> transfer)
{
    m_transfers.emplace(handle, std::move(transfer));
    curl_multi_add_handle(m_multi, handle);
}

bool KRTransferEngine::moveOn()
{
    int running = 0;
    curl_multi_perform(m_multi, &running);
    return _tellEnded();
}

void KRTransferEngine::wait(std::optional<KRRunLoop::Duration> limit)
{
    const int milliseconds
        = limit ? static_cast<int>(std::min<qint64>(limit->count(), longestWait)) : longestWait;
    curl_multi_poll(m_multi, nullptr, 0, milliseconds, nullptr);
}

void KRTransferEngine::wakeUp()
{
    curl_multi_wakeup(m_multi);
}

bool KRTransferEngine::_tellEnded()
{
    bool ended = false;
    int remaining = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi, &remaining)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* handle = message->easy_handle;
        const CURLcode code = message->data.result;
        curl_multi_remove_handle(m_multi, handle);
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
        curl_easy_cleanup(handle);
        return;
    }
    curl_easy_reset(handle);
    m_idleHandles.push_back(handle);
}

void KRTransferEngine::cancelAll()
{
    for (auto& [handle, transfer] : m_transfers) {
        curl_multi_remove_handle(m_multi, handle);
        _recycle(handle);
    }
    m_transfers.clear();
}
