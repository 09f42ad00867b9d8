#include "cli/CommandLine.h"

#include <QHash>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

enum Option : unsigned {
    Count = 1,
    SinceID = 2,
    MaxID = 4,
    Page = 8,
    ReplyTo = 16,
    Service = 32,
    Write = 64,
};

struct CommandForm {
    const char* name;
    int arguments;
    /// Which of the options above it takes.
    unsigned options;
    const char* usage;
};

constexpr CommandForm forms[] = {
    { "verify", 0, 0, "verify                     sign in, to see whether that works" },
    { "timeline", 0, Count | SinceID | MaxID | Page, "timeline                   the home timeline" },
    { "mentions", 0, SinceID | MaxID | Page, "mentions                   posts that mention the account" },
    { "public", 0, 0, "public                     everybody's posts" },
    { "user", 1, Count | SinceID | MaxID | Page, "user NAME                  one person's posts" },
    { "favorites", 1, Page, "favorites NAME             one person's favourites" },
    { "show", 1, 0, "show ID                    one post" },
    { "conversation", 1, 0, "conversation ID            a post and those it answers, newest first" },
    { "profile", 1, 0, "profile NAME               one person" },
    { "friends", 1, Page, "friends NAME               whom a person follows" },
    { "followers", 1, Page, "followers NAME             who follows a person" },
    { "post", 1, ReplyTo, "post TEXT [--reply-to ID]  post" },
    { "delete", 1, 0, "delete ID                  delete a post" },
    { "favorite", 1, 0, "favorite ID                make a post a favourite" },
    { "unfavorite", 1, 0, "unfavorite ID              take that back" },
    { "follow", 1, 0, "follow NAME                follow a person" },
    { "unfollow", 1, 0, "unfollow NAME              stop following" },
    { "follows", 2, 0, "follows A B                whether A follows B" },
    { "messages", 0, SinceID | MaxID | Page, "messages                   direct messages to the account" },
    { "sent", 0, SinceID | MaxID | Page, "sent                       direct messages by the account" },
    { "conversations", 0, 0, "conversations              the newest of both, by person" },
    { "send", 2, 0, "send NAME TEXT             send a direct message" },
    { "search", 1, Count | SinceID | Page, "search QUERY               posts that the service finds" },
    { "trends", 0, 0, "trends                     what many write about" },
    { "shorten", 1, Service, "shorten URL                a short link for an address" },
    { "expand", 1, Service, "expand URL                 where a short link leads" },
    { "upload", 1, Service, "upload FILE                a picture or a movie, answered with its link" },
    { "longpost", 1, 0, "longpost TEXT              store a long text; prints what to post in its place" },
    { "shrink", 1, 0, "shrink TEXT                a shorter wording" },
    { "check", 0, Write, "check [--write]            what works with the server; --write posts and deletes" },
    { "rate-limit", 0, 0, "rate-limit                 how many requests are left, as the service says it" },
};

const CommandForm* formOf(const QString& command)
{
    const auto found = std::find_if(std::begin(forms), std::end(forms), [&command](const CommandForm& form) {
        return command == QLatin1String(form.name);
    });
    return found == std::end(forms) ? nullptr : found;
}

// Without what the command does, which stands behind a gap.
QString synopsisOf(const CommandForm& form)
{
    return QString::fromLatin1(form.usage).section(u"  "_s, 0, 0);
}

/// Walks the arguments; `error` is set by the first that is wrong.
class Parser {
public:
    explicit Parser(QStringList arguments)
        : m_arguments(std::move(arguments))
    {
    }

    KRResult<CommandLine> run()
    {
        while (m_next < m_arguments.size() && !m_error)
            _take(m_arguments.at(m_next++));
        if (!m_error && !m_line.showsHelp)
            _check();
        if (m_error)
            return *m_error;
        return m_line;
    }

private:
    void _take(const QString& argument)
    {
        // Behind the command a single dash begins a text, or is one.
        const bool isOption
            = m_line.command.isNull() ? argument.startsWith(u'-') : argument.startsWith(u"--");
        if (m_optionsEnded || !isOption || argument == u"--") {
            if (argument == u"--" && !m_optionsEnded)
                m_optionsEnded = true;
            else if (m_line.command.isNull())
                m_line.command = argument;
            else
                m_line.arguments.append(argument);
            return;
        }
        _takeOption(argument);
    }

    void _takeOption(const QString& option)
    {
        if (option == u"--help" || option == u"-h")
            m_line.showsHelp = true;
        else if (option == u"--json")
            m_line.asJSON = true;
        else if (option == u"--verbose")
            m_line.isVerbose = true;
        else if (option == u"--password-stdin")
            m_line.passwordFromStandardInput = true;
        else if (option == u"--services")
            m_line.servicesFile = _value(option);
        else if (option == u"--ca-file")
            m_line.caFile = _value(option);
        else if (option == u"--account")
            m_line.account = _value(option);
        else if (option == u"--count")
            m_line.count = _number(option, Count);
        else if (option == u"--page")
            m_line.page = _number(option, Page);
        else if (option == u"--since-id")
            m_line.sinceID = _limit(option, SinceID);
        else if (option == u"--max-id")
            m_line.maxID = _limit(option, MaxID);
        else if (option == u"--reply-to")
            m_line.replyTo = _limit(option, ReplyTo);
        else if (option == u"--service")
            m_line.service = _limit(option, Service);
        else if (option == u"--write")
            m_line.writes = _flag(option, Write);
        else
            m_error = CommandLine::wrongUsage(u"There is no option %1"_s.arg(option));
    }

    QString _value(const QString& option)
    {
        // The next option is no value that was forgotten.
        if (m_next < m_arguments.size() && !m_arguments.at(m_next).startsWith(u"--"))
            return m_arguments.at(m_next++);
        m_error = CommandLine::wrongUsage(u"%1 needs a value"_s.arg(option));
        return {};
    }

    QString _limit(const QString& option, unsigned bit)
    {
        m_usedOptions.append({ option, bit });
        return _value(option);
    }

    bool _flag(const QString& option, unsigned bit)
    {
        m_usedOptions.append({ option, bit });
        return true;
    }

    std::optional<int> _number(const QString& option, unsigned bit)
    {
        bool isNumber = false;
        const int number = _limit(option, bit).toInt(&isNumber);
        if (!m_error && (!isNumber || number < 0))
            m_error = CommandLine::wrongUsage(u"%1 needs a number"_s.arg(option));
        return number;
    }

    void _check()
    {
        const CommandForm* form = formOf(m_line.command);
        if (m_line.command.isNull())
            m_error = CommandLine::wrongUsage(u"A command is missing"_s);
        else if (!form)
            m_error = CommandLine::wrongUsage(u"There is no command \"%1\""_s.arg(m_line.command));
        else if (m_line.arguments.size() != form->arguments)
            m_error = CommandLine::wrongUsage(u"Usage: pelinor-cli %1"_s.arg(synopsisOf(*form)));
        else if (m_line.passwordFromStandardInput && m_line.account.isEmpty())
            m_error = CommandLine::wrongUsage(u"--password-stdin needs --account NAME"_s);
        for (const auto& [option, bit] : std::as_const(m_usedOptions)) {
            if (!m_error && !(bit & form->options))
                m_error = CommandLine::wrongUsage(u"\"%1\" does not take %2"_s.arg(m_line.command, option));
        }
    }

    QStringList m_arguments;
    qsizetype m_next = 0;
    bool m_optionsEnded = false;
    QList<std::pair<QString, unsigned>> m_usedOptions;
    CommandLine m_line;
    std::optional<KRError> m_error;
};

} // namespace

KRResult<CommandLine> CommandLine::parse(const QStringList& arguments)
{
    return Parser(arguments).run();
}

KRError CommandLine::wrongUsage(const QString& description)
{
    return errorWithDomain(QString::fromUtf16(usageErrorDomain), 2, description);
}

bool CommandLine::takesText() const
{
    static const QStringList commands { u"post"_s, u"send"_s, u"longpost"_s, u"shrink"_s };
    return commands.contains(command);
}

QString CommandLine::usage()
{
    QString text = u"Usage: pelinor-cli [--services FILE] [--ca-file FILE] [--account NAME] "
                   u"[--password-stdin] [--json] COMMAND\n\n"
                   "Commands:\n"_s;
    for (const CommandForm& form : forms)
        text += u"  %1\n"_s.arg(QLatin1String(form.usage));
    return text
        + u"\nOptions of the lists, where they apply: --count N, --since-id ID, --max-id ID, --page N\n"
          "TEXT may be \"-\": then it is read from standard input.\n"
          "\n"
          "  --services FILE   the addresses of the service, in place of those of the preferences\n"
          "  --ca-file FILE    certificate authorities to trust beside the system's, as PEM\n"
          "  --account NAME    the account to use; without it, the first one of the preferences\n"
          "  --password-stdin  its password is the first line of standard input; needs --account\n"
          "  --service NAME    who shortens (bitly, tinyurl, isgd, trim, diggbar), expands (bitly, longurl) "
          "or\n"
          "                    takes the picture (yfrog, twitpic, twitgoo, posterous, imgly, pixim), in "
          "place\n"
          "                    of the one in the preferences\n"
          "  --json            one object a record a line\n"
          "  --verbose         the log on standard error, which otherwise has its errors alone\n"
          "\n"
          "Exit status: 0 when it worked; 1 with the error's domain, code and description on standard "
          "error;\n"
          "2 for wrong usage.\n"_s;
}
