#pragma once

#include "foundation/KRResult.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What was asked for on the command line.
struct CommandLine {
    QString servicesFile;
    QString caFile;
    QString account;
    bool passwordFromStandardInput = false;
    bool asJSON = false;
    /// Whether all of the log is shown.
    bool isVerbose = false;
    bool showsHelp = false;
    std::optional<int> count;
    std::optional<int> page;
    QString sinceID;
    QString maxID;
    QString replyTo;
    QString service;
    /// Whether "check" may post.
    bool writes = false;
    QString command;
    QStringList arguments;

    /// Whether the last argument is a text, for which "-" stands for standard input.
    [[nodiscard]] bool takesText() const;

    /// Reads the arguments after the program's name. The error's description says what is wrong with them.
    static KRResult<CommandLine> parse(const QStringList& arguments);
    static QString usage();
    /// What such a description is told as; its code is the exit status.
    [[nodiscard]] static KRError wrongUsage(const QString& description);
    static constexpr char16_t usageErrorDomain[] = u"com.kestrin.pelinor.usage";
};
