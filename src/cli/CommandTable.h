#pragma once

#include "cli/CommandLine.h"

#include <span>

/// Every command and option of the program, once: reading the command line, the help, the completion of
/// shells and the manual page come from here. Any thread.
namespace CommandTable {

struct CommandForm {
    CommandLine::Command command;
    const char* name;
    /// The names of its arguments, separated by spaces. TEXT may be standard input, FILE is one.
    const char* arguments;
    /// The bits of the options that it takes.
    unsigned options;
    const char* description;

    [[nodiscard]] qsizetype argumentCount() const;
    [[nodiscard]] bool takesText() const;
    /// Which of the arguments name people.
    [[nodiscard]] QList<qsizetype> placesOfNames() const;
    /// The name with the arguments and the options of its own, as "post TEXT [--reply-to ID]".
    [[nodiscard]] QString synopsis() const;
};

struct OptionForm {
    const char* name;
    /// The name of its value; null when it has none.
    const char* value;
    /// What commands take it by; 0 when every one does.
    unsigned bit;
    const char* description;
    /// Puts the value into the line; false when it makes no sense.
    bool (*apply)(CommandLine& line, const QString& value);
    /// Whether a synopsis shows it. Those of lists are told together.
    bool isInSynopsis = false;
    /// What values that make sense are.
    const char* needs = "a number";

    /// The name and the value, as "--page N".
    [[nodiscard]] QString synopsis() const;
    [[nodiscard]] bool takesFile() const { return QLatin1String(value) == QLatin1String("FILE"); }
};

[[nodiscard]] std::span<const CommandForm> commands();
[[nodiscard]] std::span<const OptionForm> options();
/// Null when there is none of the name.
[[nodiscard]] const CommandForm* commandNamed(const QString& name);
[[nodiscard]] const OptionForm* optionNamed(const QString& name);

} // namespace CommandTable
