#include "cli/CommandDocuments.h"

#include "cli/CommandTable.h"

using namespace Qt::StringLiterals;

namespace {

using CommandTable::CommandForm;
using CommandTable::OptionForm;

constexpr char16_t invocation[] = u"[OPTION]... COMMAND [ARGUMENT]...";
constexpr char16_t standardInput[]
    = u"TEXT may be \"-\": then it is read from standard input, behind the password.";
constexpr char16_t exitStatus[] = u"0 when it worked; 1 with the error's domain, code and description on "
                                  "standard error; 2 for wrong usage.";

/// Lines of at most 78 characters, all but the first indented.
QString wrapped(const QString& text, qsizetype indentation)
{
    const QString indent(indentation, u' ');
    QString lines;
    qsizetype width = indentation;
    for (const QString& word : text.split(u' ')) {
        const bool isFirst = width == indentation;
        if (!isFirst && width + 1 + word.size() > 78) {
            lines += u'\n' + indent;
            width = indentation;
        } else if (!isFirst) {
            lines += u' ';
            ++width;
        }
        lines += word;
        width += word.size();
    }
    return lines;
}

QString row(const QString& synopsis, const char* description)
{
    constexpr qsizetype column = 28;
    // What is too long stands on a line of its own.
    const QString head = synopsis.size() < column - 3 ? synopsis.leftJustified(column - 3)
                                                      : u"%1\n%2"_s.arg(synopsis, QString(column - 1, u' '));
    return u"  %1 %2\n"_s.arg(head, wrapped(QString::fromLatin1(description), column));
}

/// The names of the options that the command takes, or of those that all do.
QStringList optionNames(const CommandForm* command)
{
    QStringList names;
    for (const OptionForm& option : CommandTable::options()) {
        if (command ? (option.bit & command->options) != 0 : option.bit == 0)
            names.append(QString::fromLatin1(option.name));
    }
    return names;
}

QString commandNames()
{
    QStringList names;
    for (const CommandForm& command : CommandTable::commands())
        names.append(QString::fromLatin1(command.name));
    return names.join(u' ');
}

/// The options after which a file, or anything else, stands; as a pattern of the shells' "case".
QString optionsTaking(bool takesFile)
{
    QStringList names;
    for (const OptionForm& option : CommandTable::options()) {
        if (option.value && option.takesFile() == takesFile)
            names.append(QString::fromLatin1(option.name));
    }
    return names.join(u'|');
}

/// As text of a manual page: no letter of it is a command or a typographer's hyphen.
QString escaped(const QString& text)
{
    QString result = text;
    result.replace(u'\\', u"\\e"_s).replace(u'-', u"\\-"_s).replace(u'\'', u"\\(aq"_s);
    return result.startsWith(u'.') ? u"\\&"_s + result : result;
}

QString paragraph(const QString& tag, const QString& text)
{
    return u".TP\n.B %1\n%2\n"_s.arg(escaped(tag), escaped(text));
}

/// For the inside of single quotes of a shell.
QString quotable(const char* text)
{
    return QString::fromLatin1(text).replace(u'\'', u"'\\''"_s);
}

} // namespace

QString CommandDocuments::usage()
{
    QString text = u"Usage: pelinor-cli %1\n\nCommands:\n"_s.arg(QString::fromUtf16(invocation));
    for (const CommandForm& command : CommandTable::commands())
        text += row(command.synopsis(), command.description);
    text += u"\nOptions, those of lists and of single commands where they apply:\n"_s;
    for (const OptionForm& option : CommandTable::options())
        text += row(option.synopsis(), option.description);
    return text
        + u"\n%1\n\n%2\n"_s.arg(QString::fromUtf16(standardInput),
            wrapped(u"Exit status: "_s + QString::fromUtf16(exitStatus), 0));
}

QString CommandDocuments::usageOf(const QString& name)
{
    const CommandForm& command = *CommandTable::commandNamed(name);
    QString text = u"Usage: pelinor-cli [OPTION]... %1\n\n%2\n"_s.arg(command.synopsis(),
        QString::fromLatin1(command.description));
    for (const OptionForm& option : CommandTable::options()) {
        if (option.bit & command.options)
            text += row(option.synopsis(), option.description);
    }
    if (command.takesText())
        text += u'\n' + QString::fromUtf16(standardInput) + u'\n';
    return text + u"\nThe options of all commands: pelinor-cli --help\n"_s;
}

QString CommandDocuments::manualPage()
{
    QString page
        = u".TH PELINOR\\-CLI 1\n.SH NAME\npelinor\\-cli \\- micro\\-blogging on the command line\n"
          ".SH SYNOPSIS\n.B pelinor\\-cli\n%1\n.SH COMMANDS\n"_s.arg(escaped(QString::fromUtf16(invocation)));
    for (const CommandForm& command : CommandTable::commands()) {
        const QStringList options = optionNames(&command);
        const QString text = QString::fromLatin1(command.description);
        page += paragraph(command.synopsis(),
            options.isEmpty() ? text : u"%1. Takes %2."_s.arg(text, options.join(u", "_s)));
    }
    page += u".PP\n%1\n.SH OPTIONS\n"_s.arg(escaped(QString::fromUtf16(standardInput)));
    for (const OptionForm& option : CommandTable::options())
        page += paragraph(option.synopsis(), QString::fromLatin1(option.description));
    return page + u".SH EXIT STATUS\n%1\n"_s.arg(escaped(QString::fromUtf16(exitStatus)));
}

QString CommandDocuments::bashCompletion()
{
    QString cases;
    for (const CommandForm& command : CommandTable::commands()) {
        if (const QStringList options = optionNames(&command); !options.isEmpty())
            cases
                += u"        %1) options+=' %2' ;;\n"_s.arg(QLatin1String(command.name), options.join(u' '));
    }
    return uR"(_pelinor_cli()
{
    local word=${COMP_WORDS[COMP_CWORD]} command= options='%1' i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        %2|%3) ((++i)) ;;
        -*) ;;
        *) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    %2) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    %3) return ;;
    esac
    case $command in
%4    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W '%5' -- "$word")
    elif [[ $command == upload ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -o filenames -F _pelinor_cli pelinor-cli
)"_s.arg(optionNames(nullptr).join(u' '), optionsTaking(true), optionsTaking(false), cases, commandNames());
}

QString CommandDocuments::zshCompletion()
{
    QString commands;
    for (const CommandForm& command : CommandTable::commands())
        commands += u"  '%1:%2'\n"_s.arg(QLatin1String(command.name), quotable(command.description));
    QString options;
    for (const OptionForm& option : CommandTable::options()) {
        options += u"  '%1[%2]"_s.arg(QLatin1String(option.name), quotable(option.description));
        if (option.value)
            options
                += u":%1:%2"_s.arg(QLatin1String(option.value), option.takesFile() ? u"_files"_s : QString());
        options += u"' \\\n"_s;
    }
    return u"#compdef pelinor-cli\nlocal -a commands=(\n%1)\n_arguments \\\n%2"
           "  '1:command:{_describe command commands}' \\\n  '*:argument:_files'\n"_s.arg(commands, options);
}

QString CommandDocuments::documentNamed(const QString& name)
{
    if (name == u"man")
        return manualPage();
    if (name == u"bash")
        return bashCompletion();
    return name == u"zsh" ? zshCompletion() : QString();
}
