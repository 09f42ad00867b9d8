#include "model/streams/TwitterDirectMessagesStream.h"

#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterUniquingTables.h"
#include "text/KRArrayAdditions.h"

using namespace Qt::StringLiterals;

namespace {

KRError noAccountError()
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
        -1,
        u"There is no account to load with"_s);
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

void TwitterDirectMessagesStream::loadNewer()
{
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
        _request(*account->authenticatedRequest(callback), newestMessageID(), {});
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
    _request(*account->authenticatedRequest(callback), {}, m_page);
    ++m_page;
}

KRCallback<TwitterDirectMessageList> TwitterDirectMessagesStream::loadNewerResponseCallback()
{
    return Callback(shared_from_this(), &TwitterDirectMessagesStream::loadNewerResponse);
}

KRCallback<TwitterDirectMessageList> TwitterDirectMessagesStream::loadOlderResponseCallback()
{
    return Callback(shared_from_this(), &TwitterDirectMessagesStream::loadOlderResponse);
}

void TwitterDirectMessagesStream::loadNewerResponse(const Response& response)
{
    m_isLoadingNewer = false;
    messagesResponse(response);
}

void TwitterDirectMessagesStream::loadOlderResponse(const Response& response)
{
    m_isLoadingOlder = false;
    if (response.isError() || response.value().size() <= largestLastPage)
        m_isAtEnd = true;
    messagesResponse(response);
}

void TwitterDirectMessagesStream::messagesResponse(const Response& response)
{
    if (response.isError()) {
        KRLog(u"messages response error %1"_s.arg(response.error().description));
        KRNotificationCenter::defaultCenter().post(TwitterStreamErrorNotification { this, response.error() });
        return;
    }
    mainThreadProxy(shared_from_this()).perform(&TwitterDirectMessagesStream::addMessages, response.value());
}

void TwitterDirectMessagesStream::addMessages(const TwitterDirectMessageList& messages)
{
    TwitterDirectMessageList merged = m_messages;
    merged.append(m_tables->definitiveDirectMessages(messages));
    setMessages(KRAdditions::sortedArray(KRAdditions::arrayWithoutDuplicates(merged)));
}

void TwitterReceivedDirectMessagesStream::_request(TwitterDirectMessagesOperations& request,
    const QString& sinceID,
    std::optional<int> page)
{
    request.directMessagesSinceID(sinceID, {}, page);
}

void TwitterSentDirectMessagesStream::_request(TwitterDirectMessagesOperations& request,
    const QString& sinceID,
    std::optional<int> page)
{
    request.sentDirectMessagesSinceID(sinceID, {}, page);
}
