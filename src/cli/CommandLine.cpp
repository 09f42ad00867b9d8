#include "cli/CommandLine.h"

#include "cli/CommandTable.h"

using namespace Qt::StringLiterals;

namespace {

using CommandTable::CommandForm;
using CommandTable::OptionForm;

/// Walks the arguments; the error is set by the first that is wrong.
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
        if (!m_error && m_line.name == u"help") {
            m_line.showsHelp = true;
            m_line.name = m_line.arguments.value(0);
        }
        if (!m_error && !m_line.showsVersion)
            _check();
        if (m_error)
            return *m_error;
        return m_line;
    }

private:
    void _take(const QString& argument)
    {
        // Behind the command a single dash begins a text, or is one.
        const bool isOption = m_line.name.isNull() ? argument.startsWith(u'-') : argument.startsWith(u"--");
        if (m_optionsEnded || !isOption) {
            if (m_line.name.isNull())
                m_line.name = argument;
            else
                m_line.arguments.append(argument);
        } else if (argument == u"--") {
            m_optionsEnded = true;
        } else {
            _takeOption(argument == u"-h" ? u"--help"_s : argument);
        }
    }

    void _takeOption(const QString& option)
    {
        const qsizetype equals = option.indexOf(u'=');
        const QString name = option.left(equals);
        const OptionForm* form = CommandTable::optionNamed(name);
        if (!form) {
            _fail(u"There is no option %1"_s.arg(name));
            return;
        }
        QString value;
        if (equals >= 0 && !form->value) {
            _fail(u"%1 takes no value"_s.arg(name));
            return;
        }
        if (equals >= 0) {
            value = option.mid(equals + 1);
        } else if (form->value) {
            // The next option is no value that was forgotten.
            if (m_next == m_arguments.size() || m_arguments.at(m_next).startsWith(u"--")) {
                _fail(u"%1 needs a value"_s.arg(name));
                return;
            }
            value = m_arguments.at(m_next++);
        }
        if (!form->apply(m_line, value))
            _fail(u"%1 needs %2"_s.arg(name, QLatin1String(form->needs)));
        m_usedOptions.append(form);
    }

    void _check()
    {
        const CommandForm* form = CommandTable::commandNamed(m_line.name);
        if (!m_line.name.isNull() && !form)
            _fail(u"There is no command \"%1\""_s.arg(m_line.name));
        if (m_line.showsHelp)
            return;
        if (m_line.name.isNull())
            _fail(u"A command is missing"_s);
        if (!form)
            return;
        if (m_line.arguments.size() != form->argumentCount())
            _fail(u"Usage: pelinor-cli %1"_s.arg(form->synopsis()));
        else if (m_line.passwordFromStandardInput && m_line.account.isEmpty())
            _fail(u"--password-stdin needs --account NAME"_s);
        m_line.command = form->command;
        // People are written with an "@" in front as well.
        for (const qsizetype place : form->placesOfNames()) {
            QString& name = m_line.arguments[place];
            if (name.startsWith(u'@'))
                name.remove(0, 1);
        }
        m_line.takesText = form->takesText();
        for (const OptionForm* option : std::as_const(m_usedOptions)) {
            if (option->bit && !(option->bit & form->options))
                _fail(u"\"%1\" does not take %2"_s.arg(m_line.name, QLatin1String(option->name)));
        }
    }

    void _fail(const QString& description)
    {
        if (!m_error)
            m_error = CommandLine::wrongUsage(description);
    }

    QStringList m_arguments;
    qsizetype m_next = 0;
    bool m_optionsEnded = false;
    QList<const OptionForm*> m_usedOptions;
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
