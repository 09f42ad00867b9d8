#pragma once

#include <QString>

/// What is written about the program, made from its table of commands. Any thread.
namespace CommandDocuments {

/// What --help prints.
[[nodiscard]] QString usage();
/// What --help prints behind a command. The name is one of the table's.
[[nodiscard]] QString usageOf(const QString& command);
/// The manual page, in the language of man(7).
[[nodiscard]] QString manualPage();
/// The completion of commands and options, for bash and for zsh.
[[nodiscard]] QString bashCompletion();
[[nodiscard]] QString zshCompletion();
/// What is installed, by the name that the build asks for: "man", "bash", "zsh". Empty for any other.
[[nodiscard]] QString documentNamed(const QString& name);

} // namespace CommandDocuments
