#include "transport/KRTransferEngine.h"

#include "transport/KRCurlLibrary.h"

#include <algorithm>

namespace {

constexpr KRRunLoop::Duration longestWait { 60'000 };
constexpr size_t idleHandlesKept = 16;
// Enough for a screen of avatars beside the timelines without crowding a small site.
constexpr int placesPerHost = 8;
// However many avatars a page has, half of the places stay with what people wait for.
constexpr int placesPerHostForPictures = 4;

} // namespace

KRTransferEngine::KRTransferEngine()
    : m_curl(KRCurlLibrary::shared())
    , m_multi(m_curl.multiInit())
{
    m_curl.multiSetOption(m_multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
}

CURL* KRTransferEngine::takeHandle()
{
    if (m_idleHandles.empty())
        return m_curl.easyInit();
    CURL* handle = m_idleHandles.back();
    m_idleHandles.pop_back();
    return handle;
}

void KRTransferEngine::start(CURL* handle, std::shared_ptr<KRTransfer> transfer, KRTransferTerms terms)
{
    if (_hasPlaceFor(terms)) {
        _begin(handle, { std::move(transfer), std::move(terms) });
        return;
    }
    // libcurl has a queue of its own, in which nothing overtakes and nothing ends.
    const TimePoint deadline = std::chrono::steady_clock::now() + terms.longestWait;
    const auto behind = std::find_if(m_waiting.begin(), m_waiting.end(), [&](const Waiting& waiting) {
        return waiting.transfer.terms.kind > terms.kind;
    });
    m_waiting.insert(behind, { handle, { std::move(transfer), std::move(terms) }, deadline });
}

bool KRTransferEngine::_hasPlaceFor(const KRTransferTerms& terms) const
{
    const Places places = m_places.value(terms.host);
    return places.taken < placesPerHost
        && (terms.kind != KRTransferKind::Picture || places.takenByPictures < placesPerHostForPictures);
}

void KRTransferEngine::_begin(CURL* handle, Transfer transfer)
{
    Places& places = m_places[transfer.terms.host];
    ++places.taken;
    if (transfer.terms.kind == KRTransferKind::Picture)
        ++places.takenByPictures;
    m_transfers.emplace(handle, std::move(transfer));
    m_curl.multiAddHandle(m_multi, handle);
}

void KRTransferEngine::_giveBack(const KRTransferTerms& terms)
{
    const auto places = m_places.find(terms.host);
    --places->taken;
    if (terms.kind == KRTransferKind::Picture)
        --places->takenByPictures;
    if (places->taken == 0)
        m_places.erase(places);
}

void KRTransferEngine::_beginWaiting()
{
    for (size_t at = 0; at < m_waiting.size();) {
        if (!_hasPlaceFor(m_waiting[at].transfer.terms)) {
            ++at;
            continue;
        }
        Waiting next = std::move(m_waiting[at]);
        m_waiting.erase(m_waiting.begin() + qsizetype(at));
        _begin(next.handle, std::move(next.transfer));
    }
}

void KRTransferEngine::moveOn()
{
    int running = 0;
    m_curl.multiPerform(m_multi, &running);
    _tellEnded();
    _endOverdue();
}

void KRTransferEngine::wait(std::optional<KRRunLoop::Duration> limit)
{
    KRRunLoop::Duration shortest = std::min(limit.value_or(longestWait), longestWait);
    for (const Waiting& waiting : m_waiting) {
        const auto left
            = std::chrono::ceil<KRRunLoop::Duration>(waiting.deadline - std::chrono::steady_clock::now());
        shortest = std::clamp(left, KRRunLoop::Duration::zero(), shortest);
    }
    const int milliseconds = static_cast<int>(shortest.count());
    m_curl.multiPoll(m_multi, nullptr, 0, milliseconds, nullptr);
}

void KRTransferEngine::wakeUp()
{
    m_curl.multiWakeUp(m_multi);
}

void KRTransferEngine::_tellEnded()
{
    int remaining = 0;
    while (const CURLMsg* message = m_curl.multiInfoRead(m_multi, &remaining)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* handle = message->easy_handle;
        const CURLcode code = message->data.result;
        m_curl.multiRemoveHandle(m_multi, handle);
        const auto found = m_transfers.find(handle);
        const Transfer transfer = std::move(found->second);
        m_transfers.erase(found);
        _giveBack(transfer.terms);
        _beginWaiting();
        _end(handle, transfer.transfer, code);
    }
}

void KRTransferEngine::_endOverdue()
{
    // Those that are told may start others.
    const auto isOverdue = [now = std::chrono::steady_clock::now()](
                               const Waiting& waiting) { return waiting.deadline <= now; };
    for (;;) {
        const auto overdue = std::find_if(m_waiting.begin(), m_waiting.end(), isOverdue);
        if (overdue == m_waiting.end())
            return;
        const Waiting waiting = std::move(*overdue);
        m_waiting.erase(overdue);
        _end(waiting.handle, waiting.transfer.transfer, CURLE_OPERATION_TIMEDOUT);
    }
}

void KRTransferEngine::_end(CURL* handle, const std::shared_ptr<KRTransfer>& transfer, int code)
{
    transfer->transferDidEnd(handle, code);
    _recycle(handle);
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

void KRTransferEngine::dropAll()
{
    m_transfers.clear();
    m_waiting.clear();
}
