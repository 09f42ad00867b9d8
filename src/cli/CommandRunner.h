#pragma once

#include "cli/CommandLine.h"
#include "cli/RecordOutput.h"
#include "cli/ServerCheck.h"
#include "core/Twitter.h"
#include "model/streams/TwitterConversationStream.h"
#include "services/Tweetshrink.h"
#include "services/Twitlonger.h"

#include <QJsonDocument>
#include <QSet>
#include <QTextStream>

#include <vector>

/// Carries out one command with the engine and prints its result. Main thread; run the main loop until
/// isFinished().
class CommandRunner : public std::enable_shared_from_this<CommandRunner> {
public:
    CommandRunner(CommandLine line,
        std::shared_ptr<Twitter> twitter,
        QTextStream& output,
        QTextStream& errors);
    ~CommandRunner() { dissociateWeakProxy(this); }

    /// Starts the command; with a password, in the name of an account that is not in the preferences.
    void start(const QString& password);
    [[nodiscard]] bool isFinished() const { return m_exitCode.has_value(); }
    [[nodiscard]] int exitCode() const { return *m_exitCode; }

private:
    [[nodiscard]] TwitterAccountPtr _findAccount(const QString& password) const;
    using Command = CommandLine::Command;

    /// Each of these starts the command if it is one of its kind, and says so.
    [[nodiscard]] bool _startReading();
    [[nodiscard]] bool _startWriting();
    [[nodiscard]] bool _startMessagesOrSearch();
    void _startConversations();
    void _startOutsideService();
    void _startShortening();
    void _startExpanding();
    void _startUpload();
    void _startCheck();
    void _fail(const KRError& error);
    template <class Record>
    void _print(const Record& record);
    void _printLine(const char* name, const QJsonValue& value, const QString& text);
    void _printObject(const QJsonObject& object, const QString& text);

    void gotStatuses(const KRResult<TwitterStatusList>& result);
    void gotStatus(const KRResult<TwitterStatusPtr>& result);
    void gotUsers(const KRResult<TwitterUserList>& result);
    void gotUser(const KRResult<TwitterUserPtr>& result);
    void gotAnswer(const KRResult<bool>& result);
    void gotText(const KRResult<QString>& result);
    void gotBaseStatus(const KRResult<TwitterStatusPtr>& result);
    void conversationDidUpdate();
    void gotMessages(const KRResult<TwitterDirectMessageList>& result);
    void gotMessage(const KRResult<TwitterDirectMessagePtr>& result);
    void gotTrends(const KRResult<QStringList>& result);
    void gotLink(const KRResult<QString>& result);
    void gotUploadedFile(const KRResult<QUrl>& result);
    void gotLongPost(const KRResult<Twitlonger>& result);
    void gotShrunkText(const KRResult<Tweetshrink>& result);
    void gotCheckResult(const KRResult<ServerCheckResult>& result);
    void checkDidEnd(const KRResult<ServerCheck::Verdict>& verdict);
    void messagesDidUpdate(const TwitterDirectMessagesStream* stream);
    void messagesDidFail(const KRError& error);

    template <class Result>
    auto _then(void (CommandRunner::*method)(const KRResult<Result>&))
    {
        return Callback(mainThreadProxy(shared_from_this()), method);
    }

    CommandLine m_line;
    std::shared_ptr<Twitter> m_twitter;
    QTextStream& m_output;
    QTextStream& m_errors;
    TwitterAccountPtr m_account;
    std::shared_ptr<TwitterConversationStream> m_conversation;
    KRObservation m_conversationObservation;
    // The lists of messages that are still awaited, and what tells of them.
    QSet<const void*> m_awaitedStreams;
    std::vector<KRObservation> m_messageObservations;
    std::optional<int> m_exitCode;
};

template <class Record>
void CommandRunner::_print(const Record& record)
{
    if (m_line.asJSON)
        m_output << QJsonDocument(RecordOutput::jsonObject(record)).toJson(QJsonDocument::Compact) << '\n';
    else
        m_output << RecordOutput::text(record);
}
