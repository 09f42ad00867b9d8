#include "api/TwitterSearchAPI.h"
#include "cli/CommandRunner.h"

using namespace Qt::StringLiterals;

bool CommandRunner::_startMessagesOrSearch()
{
    const QString argument = m_line.arguments.value(0);
    const auto messages
        = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotMessages)); };
    const TwitterServiceHosts& hosts = m_account->context().hosts;
    switch (m_line.command) {
    case Command::Messages:
        messages()->directMessagesSinceID(m_line.sinceID, m_line.maxID, m_line.page);
        return true;
    case Command::Sent:
        messages()->sentDirectMessagesSinceID(m_line.sinceID, m_line.maxID, m_line.page);
        return true;
    case Command::Conversations:
        _startConversations();
        return true;
    case Command::Send:
        m_account->authenticatedRequest(_then(&CommandRunner::gotMessage))
            ->sendToUsername(m_line.arguments.value(1), argument);
        return true;
    case Command::Search:
        TwitterSearchAPI::request(hosts, _then(&CommandRunner::gotStatuses))
            ->search(argument, m_line.count, m_line.page, m_line.sinceID, {});
        return true;
    case Command::Trends:
        TwitterSearchAPI::request(hosts, _then(&CommandRunner::gotTrends))->trends();
        return true;
    default:
        return false;
    }
}

// --- Conversations by direct message

void CommandRunner::_startConversations()
{
    const auto manager = m_account->directMessagesManager();
    KRNotificationCenter& center = KRNotificationCenter::defaultCenter();
    for (const TwitterDirectMessagesStream* stream :
        QList<const TwitterDirectMessagesStream*> { manager->receivedStream().get(),
            manager->sentStream().get() }) {
        m_awaitedStreams.insert(stream);
        m_messageObservations.push_back(center.observe<TwitterStreamDidUpdateNotification>(
            [this, stream](const auto&) { messagesDidUpdate(stream); },
            stream));
        // This one is posted on the background thread.
        m_messageObservations.push_back(center.observe<TwitterStreamErrorNotification>(
            [self = weakMainThreadProxy(shared_from_this())](
                const TwitterStreamErrorNotification& notification) {
                self.perform(&CommandRunner::messagesDidFail, notification.error);
            },
            stream));
    }
    manager->refresh();
}

void CommandRunner::messagesDidUpdate(const TwitterDirectMessagesStream* stream)
{
    m_awaitedStreams.remove(stream);
    if (!m_awaitedStreams.isEmpty() || isFinished())
        return;
    for (const TwitterDirectMessageConversationPtr& conversation :
        m_account->directMessagesManager()->conversations())
        _print(*conversation);
    m_exitCode = 0;
}

void CommandRunner::messagesDidFail(const KRError& error)
{
    if (!isFinished())
        _fail(error);
}

// --- Results

void CommandRunner::gotMessages(const KRResult<TwitterDirectMessageList>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    for (const TwitterDirectMessagePtr& message : result.value())
        _print(*message);
    m_exitCode = 0;
}

void CommandRunner::gotMessage(const KRResult<TwitterDirectMessagePtr>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    _print(*result.value());
    m_exitCode = 0;
}

void CommandRunner::gotTrends(const KRResult<QStringList>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    for (const QString& name : result.value())
        _printLine("name", name, name);
    m_exitCode = 0;
}
