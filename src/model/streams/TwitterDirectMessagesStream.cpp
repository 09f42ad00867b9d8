#include "model/streams/TwitterDirectMessagesStream.h"

#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterUniquingTables.h"
#include "text/KRArrayAdditions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

KRError noAccountError()
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
        -1,
        u"There is no account to load with"_s);
}

QStringList idsOf(const TwitterDirectMessageList& messages)
{
    QStringList ids;
    for (const TwitterDirectMessagePtr& message : messages) {
        if (!message->messageID().isNull())
            ids.append(message->messageID());
    }
    return ids;
}

} // namespace

TwitterDirectMessagesStream::TwitterDirectMessagesStream(std::shared_ptr<TwitterUniquingTables> tables,
    const std::shared_ptr<TwitterStreamAccount>& account)
    : m_tables(std::move(tables))
    , m_account(account)
{
}

void TwitterDirectMessagesStream::setMessages(const TwitterDirectMessageList& messages)
{
    m_messages = messages;
    // Whoever hears of it may remove the account that owns the stream.
    const auto self = shared_from_this();
    KRNotificationCenter::defaultCenter().post(TwitterStreamDidUpdateNotification { this });
}

QString TwitterDirectMessagesStream::newestMessageID() const
{
    return m_messages.isEmpty() ? QString() : m_messages.first()->messageID();
}

QString TwitterDirectMessagesStream::oldestMessageID() const
{
    return m_messages.isEmpty() ? QString() : m_messages.last()->messageID();
}

bool TwitterDirectMessagesStream::isMissingMessages() const
{
    const QList<TwitterStreamGaps::Gap>& gaps = m_gaps.gaps();
    return std::any_of(gaps.begin(), gaps.end(), [](const auto& gap) { return gap.isShown; });
}

void TwitterDirectMessagesStream::loadNewer()
{
    const QList<TwitterStreamGaps::Gap> gaps = m_gaps.gaps();
    for (const TwitterStreamGaps::Gap& gap : gaps) {
        if (m_gaps.beginLoading(gap.belowID))
            _loadGap(gap.belowID);
    }
    if (!m_isLoadingNewer.exchange(true))
        _loadNewer();
}

void TwitterDirectMessagesStream::loadOlder()
{
    if (!m_isLoadingOlder.exchange(true))
        _loadOlder();
}

void TwitterDirectMessagesStream::_loadNewer()
{
    const KRCallback<TwitterDirectMessageList> callback = loadNewerResponseCallback();
    if (const std::shared_ptr<TwitterStreamAccount> account = m_account.lock())
        _request(*account->authenticatedRequest(callback), newestMessageID(), {}, {});
    else
        callback.invoke(noAccountError());
}

void TwitterDirectMessagesStream::_loadOlder()
{
    const KRCallback<TwitterDirectMessageList> callback = loadOlderResponseCallback();
    const std::shared_ptr<TwitterStreamAccount> account = m_account.lock();
    if (!account) {
        callback.invoke(noAccountError());
        return;
    }
    if (m_didFailOlder.exchange(false))
        m_page = std::max(m_page - 1, 0);
    _request(*account->authenticatedRequest(callback), {}, {}, m_page);
    ++m_page;
}

void TwitterDirectMessagesStream::_loadGap(const QString& belowID)
{
    const TwitterStreamGaps::Gap* const gap = m_gaps.gapAbove(belowID);
    if (!gap)
        return;
    const auto callback
        = Callback(shared_from_this(), &TwitterDirectMessagesStream::loadMissingResponse, belowID);
    if (const std::shared_ptr<TwitterStreamAccount> account = m_account.lock())
        _request(*account->authenticatedRequest(callback), {}, gap->aboveID, {});
    else
        callback.invoke(noAccountError());
}

KRCallback<TwitterDirectMessageList> TwitterDirectMessagesStream::loadNewerResponseCallback()
{
    return Callback(shared_from_this(), &TwitterDirectMessagesStream::loadNewerResponse, newestMessageID());
}

KRCallback<TwitterDirectMessageList> TwitterDirectMessagesStream::loadOlderResponseCallback()
{
    return Callback(shared_from_this(), &TwitterDirectMessagesStream::loadOlderResponse);
}

void TwitterDirectMessagesStream::loadNewerResponse(const Response& response, const QString& newestKnownID)
{
    m_isLoadingNewer = false;
    if (response.isError())
        _postError(response.error());
    else
        mainThreadProxy(shared_from_this())
            .perform(&TwitterDirectMessagesStream::_addNewer, response.value(), newestKnownID);
}

void TwitterDirectMessagesStream::loadOlderResponse(const Response& response)
{
    // First, as a load that is not under way has come to its end.
    m_didFailOlder = response.isError();
    m_isLoadingOlder = false;
    if (response.isError() || response.value().size() <= largestLastPage)
        m_isAtEnd = true;
    if (response.isError())
        _postError(response.error());
    else
        mainThreadProxy(shared_from_this())
            .perform(&TwitterDirectMessagesStream::_addOlder, response.value());
}

void TwitterDirectMessagesStream::loadMissingResponse(const Response& response, const QString& belowID)
{
    const auto proxy = mainThreadProxy(shared_from_this());
    if (!response.isError()) {
        proxy.perform(&TwitterDirectMessagesStream::_addMissing, response.value(), belowID);
        return;
    }
    proxy.perform(&TwitterDirectMessagesStream::_failMissing, belowID);
    _postError(response.error());
}

void TwitterDirectMessagesStream::_postError(const KRError& error)
{
    const auto self = shared_from_this();
    KRLog(u"messages response error %1"_s.arg(error.description));
    KRNotificationCenter::defaultCenter().post(TwitterStreamErrorNotification { this, error });
}

void TwitterDirectMessagesStream::_addNewer(const TwitterDirectMessageList& messages,
    const QString& newestKnownID)
{
    const bool hasGap
        = m_gaps.openBelow(idsOf(messages), messages.size(), newestKnownID, 0, idsOf(m_messages));
    addMessages(messages);
    if (hasGap)
        _loadGap(newestKnownID);
}

void TwitterDirectMessagesStream::_addOlder(const TwitterDirectMessageList& messages)
{
    m_gaps.notePage(messages.size());
    addMessages(messages);
}

void TwitterDirectMessagesStream::_addMissing(const TwitterDirectMessageList& messages,
    const QString& belowID)
{
    const bool goesOn = m_gaps.addPage(idsOf(messages), messages.size(), belowID, idsOf(m_messages));
    addMessages(messages);
    if (goesOn)
        _loadGap(belowID);
}

void TwitterDirectMessagesStream::_failMissing(const QString& belowID)
{
    m_gaps.fail(belowID);
}

void TwitterDirectMessagesStream::addMessages(const TwitterDirectMessageList& messages)
{
    TwitterDirectMessageList merged = m_messages;
    merged.append(m_tables->definitiveDirectMessages(messages));
    setMessages(KRAdditions::sortedArray(KRAdditions::arrayWithoutDuplicates(merged)));
}

void TwitterReceivedDirectMessagesStream::_request(TwitterDirectMessagesOperations& request,
    const QString& sinceID,
    const QString& maxID,
    std::optional<int> page)
{
    request.directMessagesSinceID(sinceID, maxID, page);
}

void TwitterSentDirectMessagesStream::_request(TwitterDirectMessagesOperations& request,
    const QString& sinceID,
    const QString& maxID,
    std::optional<int> page)
{
    request.sentDirectMessagesSinceID(sinceID, maxID, page);
}
