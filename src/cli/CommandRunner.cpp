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
        if (m_line.account.isEmpty() || account->isNamed(m_line.account))
            return account;
    }
    // What needs no credentials works all the same; the service says what does.
    return TwitterAccount::accountWithUsername(m_line.account, QString(), m_twitter->accountContext());
}

void CommandRunner::start(const QString& password)
{
    m_account = _findAccount(password);
    // For this run; what an account keeps is for the program with windows to say.
    if (!m_line.trustedFingerprint.isEmpty()) {
        for (const QString& server : m_account->context().hosts.protectedServers())
            KRTrustedCertificates::trust({ server, m_line.trustedFingerprint });
    }
    if (!_startReading() && !_startWriting() && !_startMessagesOrSearch())
        _startOutsideService();
}

bool CommandRunner::_startReading()
{
    const QString name = m_line.arguments.value(0);
    const auto statuses
        = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotStatuses)); };
    const auto users = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotUsers)); };
    const auto answer = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotAnswer)); };
    switch (m_line.command) {
    case Command::Verify:
        answer()->verifyCredentials();
        return true;
    case Command::Timeline:
        statuses()->friendsTimelineSinceID(m_line.sinceID, m_line.maxID, m_line.count, m_line.page);
        return true;
    case Command::Mentions:
        statuses()->repliesSinceID(m_line.sinceID, m_line.maxID, m_line.page);
        return true;
    case Command::Public:
        statuses()->publicTimeline();
        return true;
    case Command::User:
        statuses()->userTimelineForUsername(name, m_line.sinceID, m_line.maxID, m_line.count, m_line.page);
        return true;
    case Command::Favorites:
        statuses()->favoritesForUsername(name, m_line.page);
        return true;
    case Command::Show:
        m_account->authenticatedRequest(_then(&CommandRunner::gotStatus))->statusWithID(name);
        return true;
    case Command::Conversation:
        m_account->requestStatusWithID(name, _then(&CommandRunner::gotBaseStatus));
        return true;
    case Command::Profile:
        m_account->authenticatedRequest(_then(&CommandRunner::gotUser))->userWithUsername(name);
        return true;
    case Command::Friends:
        users()->friendsForUsername(name, m_line.page);
        return true;
    case Command::Followers:
        users()->followersForUsername(name, m_line.page);
        return true;
    case Command::Follows:
        answer()->usernameFollowsUsername(name, m_line.arguments.value(1));
        return true;
    case Command::RateLimit:
        m_account->authenticatedRequest(_then(&CommandRunner::gotText))->rateLimitStatus();
        return true;
    default:
        return false;
    }
}

bool CommandRunner::_startWriting()
{
    const QString argument = m_line.arguments.value(0);
    const auto status = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotStatus)); };
    const auto user = [this] { return m_account->authenticatedRequest(_then(&CommandRunner::gotUser)); };
    switch (m_line.command) {
    case Command::Post:
        status()->update(argument, m_line.replyTo);
        return true;
    case Command::Delete:
        status()->destroyStatus(argument);
        return true;
    case Command::Favorite:
        status()->createFavorite(argument);
        return true;
    case Command::Unfavorite:
        status()->destroyFavorite(argument);
        return true;
    case Command::Follow:
        user()->followUsername(argument);
        return true;
    case Command::Unfollow:
        user()->unfollowUsername(argument);
        return true;
    default:
        return false;
    }
}

// --- Conversations

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
        u"%1 %2: %3"_s.arg(error.domain, QString::number(error.code), description))
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
    else if (m_line.command == Command::Verify)
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
