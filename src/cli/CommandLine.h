#pragma once

#include "foundation/KRResult.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What was asked for on the command line. A value; any thread.
struct CommandLine {
    enum class Command {
        Verify,
        Timeline,
        Mentions,
        Public,
        User,
        Favorites,
        Show,
        Conversation,
        Profile,
        Friends,
        Followers,
        Post,
        Delete,
        Favorite,
        Unfavorite,
        Follow,
        Unfollow,
        Follows,
        Messages,
        Sent,
        Conversations,
        Send,
        Search,
        Trends,
        Shorten,
        Expand,
        Upload,
        LongPost,
        Shrink,
        Check,
        RateLimit,
    };

    QString servicesFile;
    QString caFile;
    /// Of the certificate to trust for the servers of the service.
    QString trustedFingerprint;
    QString account;
    bool passwordFromStandardInput = false;
    bool asJSON = false;
    /// Whether all of the log is shown.
    bool isVerbose = false;
    /// For the command of the name, or for all when it is null.
    bool showsHelp = false;
    bool showsVersion = false;
    std::optional<int> count;
    std::optional<int> page;
    QString sinceID;
    QString maxID;
    QString replyTo;
    QString service;
    /// Whether "check" may post.
    bool writes = false;
    /// The command as it was written, and which it is.
    QString name;
    Command command = Command::Verify;
    QStringList arguments;
    /// Whether the last argument is a text, for which "-" stands for standard input.
    bool takesText = false;

    /// Reads the arguments after the program's name. The error's description says what is wrong with them.
    static KRResult<CommandLine> parse(const QStringList& arguments);
    /// What such a description is told as; its code is the exit status.
    [[nodiscard]] static KRError wrongUsage(const QString& description);
    static constexpr char16_t usageErrorDomain[] = u"com.kestrin.pelinor.usage";
};
