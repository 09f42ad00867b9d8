#include "cli/CommandRunner.h"

#include "cli/RecordOutput.h"
#include "foundation/KRMainThreadObject.h"
#include "model/streams/TwitterDummyStatus.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

CommandRunner::CommandRunner(CommandLine line,
    std::shared_ptr<Twitter> twitter,
    QTextStream& output,
    QTextStream& errors)
    : m_line(std::move(line))
    , m_twitter(std::move(twitter))
    , m_output(output)
    , m_errors(errors)
{
}

TwitterAccountPtr CommandRunner::_findAccount(const QString& password) const
{
    if (!password.isNull())
        return TwitterAccount::accountWithUsername(m_line.account, password, m_twitter->accountContext());
    for (const TwitterAccountPtr& account : m_twitter->accounts()) {
        if (m_line.account.isEmpty() || account->username().compare(m_line.account, Qt::CaseInsensitive) == 0)
            return account;
    }
    // What needs no credentials works all the same; the service says what does.
    return TwitterAccount::accountWithUsername(m_line.account, QString(), m_twitter->accountContext());
}

void CommandRunner::start(const QString& password)
{
    m_account = _findAccount(password);
    static const QStringList writing { u"post"_s,
        u"delete"_s,
        u"favorite"_s,
        u"unfavorite"_s,
        u"follow"_s,
        u"unfollow"_s };
    if (writing.contains(m_line.command))
        _startWriting();
    else if (m_line.command == u"conversation")
        _startConversation();
    else if (!_startMessagesOrSearch() && !_startOutsideService())
        _startReading();
}

void CommandRunner::_startReading()
{
    const QString& command = m_line.command;
    const QString name = m_line.arguments.value(0);
    const auto statuses
        = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotStatuses)); };
    const auto users = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotUsers)); };
    const auto answer = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotAnswer)); };
    if (command == u"verify")
        answer()->verifyCredentials();
    else if (command == u"timeline")
        statuses()->friendsTimelineSinceID(m_line.sinceID, m_line.maxID, m_line.count, m_line.page);
    else if (command == u"mentions")
        statuses()->repliesSinceID(m_line.sinceID, m_line.maxID, m_line.page);
    else if (command == u"public")
        statuses()->publicTimeline();
    else if (command == u"user")
        statuses()->userTimelineForUsername(name, m_line.sinceID, m_line.maxID, m_line.count, m_line.page);
    else if (command == u"favorites")
        statuses()->favoritesForUsername(name, m_line.page);
    else if (command == u"show")
        m_account->authenticatedRequest(_then(&CommandRunner::gotStatus))->statusWithID(name);
    else if (command == u"profile")
        m_account->authenticatedRequest(_then(&CommandRunner::gotUser))->userWithUsername(name);
    else if (command == u"friends")
        users()->friendsForUsername(name, m_line.page);
    else if (command == u"followers")
        users()->followersForUsername(name, m_line.page);
    else if (command == u"follows")
        answer()->usernameFollowsUsername(name, m_line.arguments.value(1));
    else
        m_account->authenticatedRequest(_then(&CommandRunner::gotText))->rateLimitStatus();
}

void CommandRunner::_startWriting()
{
    const QString& command = m_line.command;
    const QString argument = m_line.arguments.value(0);
    const auto status = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotStatus)); };
    const auto user = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotUser)); };
    if (command == u"post")
        status()->update(argument, m_line.replyTo);
    else if (command == u"delete")
        status()->destroyStatus(argument);
    else if (command == u"favorite")
        status()->createFavorite(argument);
    else if (command == u"unfavorite")
        status()->destroyFavorite(argument);
    else if (command == u"follow")
        user()->followUsername(argument);
    else
        user()->unfollowUsername(argument);
}

// --- Conversations

void CommandRunner::_startConversation()
{
    m_account->requestStatusWithID(m_line.arguments.value(0), _then(&CommandRunner::gotBaseStatus));
}

void CommandRunner::gotBaseStatus(const KRResult<TwitterStatusPtr>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    m_conversation = KRMakeMainThreadObject<TwitterConversationStream>(m_account->context().tables);
    m_conversation->setAccount(m_account);
    m_conversationObservation
        = KRNotificationCenter::defaultCenter().observe<TwitterStreamDidUpdateNotification>(
            [this](const auto&) { conversationDidUpdate(); },
            m_conversation.get());
    m_conversation->setBaseStatus(result.value());
}

void CommandRunner::conversationDidUpdate()
{
    if (!m_conversation->isAtEnd() || isFinished())
        return;
    std::optional<KRError> error;
    for (const TwitterStatusPtr& status : m_conversation->storedStatuses()) {
        if (const auto* row = dynamic_cast<const TwitterDummyErrorStatus*>(status.get()))
            error = row->error();
        else
            _print(*status);
    }
    if (error)
        _fail(*error);
    else
        m_exitCode = 0;
}

// --- Results

void CommandRunner::_printLine(const char* name, const QJsonValue& value, const QString& text)
{
    _printObject({ { QLatin1String(name), value } }, text);
    m_exitCode = 0;
}

void CommandRunner::_printObject(const QJsonObject& object, const QString& text)
{
    if (m_line.asJSON)
        m_output << QJsonDocument(object).toJson(QJsonDocument::Compact) << '\n';
    else
        m_output << RecordOutput::safeForTerminal(text) << '\n';
}

void CommandRunner::_fail(const KRError& error)
{
    if (error.domain == QStringView(CommandLine::usageErrorDomain)) {
        m_errors << error.description << "\nTry pelinor-cli --help" << Qt::endl;
        m_exitCode = error.code;
        return;
    }
    // Some errors of the services carry no text.
    const QString description
        = error.description.isEmpty() ? u"The answer does not hold what was asked for"_s : error.description;
    m_errors << RecordOutput::safeForTerminal(
        u"%1 %2: %3"_s.arg(error.domain).arg(error.code).arg(description))
             << Qt::endl;
    m_exitCode = 1;
}

void CommandRunner::gotStatuses(const KRResult<TwitterStatusList>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    for (const TwitterStatusPtr& status : result.value())
        _print(*status);
    m_exitCode = 0;
}

void CommandRunner::gotStatus(const KRResult<TwitterStatusPtr>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    _print(*result.value());
    m_exitCode = 0;
}

void CommandRunner::gotUsers(const KRResult<TwitterUserList>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    for (const TwitterUserPtr& user : result.value())
        _print(*user);
    m_exitCode = 0;
}

void CommandRunner::gotUser(const KRResult<TwitterUserPtr>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    if (result.value())
        _print(*result.value());
    m_exitCode = 0;
}

void CommandRunner::gotAnswer(const KRResult<bool>& result)
{
    if (result.isError())
        _fail(result.error());
    else if (m_line.command == u"verify")
        _printLine("verified", result.value(), u"Signed in as %1"_s.arg(m_account->username()));
    else
        _printLine("follows", result.value(), result.value() ? u"yes"_s : u"no"_s);
}

void CommandRunner::gotText(const KRResult<QString>& result)
{
    if (result.isError())
        _fail(result.error());
    else
        _printLine("rateLimitStatus", result.value(), result.value());
}
