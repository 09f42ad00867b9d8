#include "cli/CommandTable.h"

#include "transport/KRServerCertificate.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Command = CommandLine::Command;
using CommandTable::CommandForm;
using CommandTable::OptionForm;

enum Option : unsigned {
    Count = 1,
    SinceID = 2,
    MaxID = 4,
    Page = 8,
    ReplyTo = 16,
    Service = 32,
    Write = 64,
};

constexpr unsigned pages = SinceID | MaxID | Page;

constexpr CommandForm commandForms[] = {
    { Command::Verify, "verify", "", 0, "sign in, to see whether that works" },
    { Command::Timeline, "timeline", "", Count | pages, "the home timeline" },
    { Command::Mentions, "mentions", "", pages, "posts that mention the account" },
    { Command::Public, "public", "", 0, "everybody's posts" },
    { Command::User, "user", "NAME", Count | pages, "one person's posts" },
    { Command::Favorites, "favorites", "NAME", Page, "one person's favourites" },
    { Command::Show, "show", "ID", 0, "one post" },
    { Command::Conversation, "conversation", "ID", 0, "a post and those it answers, newest first" },
    { Command::Profile, "profile", "NAME", 0, "one person" },
    { Command::Friends, "friends", "NAME", Page, "whom a person follows" },
    { Command::Followers, "followers", "NAME", Page, "who follows a person" },
    { Command::Post, "post", "TEXT", ReplyTo, "post" },
    { Command::Delete, "delete", "ID", 0, "delete a post" },
    { Command::Favorite, "favorite", "ID", 0, "make a post a favourite" },
    { Command::Unfavorite, "unfavorite", "ID", 0, "take that back" },
    { Command::Follow, "follow", "NAME", 0, "follow a person" },
    { Command::Unfollow, "unfollow", "NAME", 0, "stop following" },
    { Command::Follows, "follows", "A B", 0, "whether A follows B" },
    { Command::Messages, "messages", "", pages, "direct messages to the account" },
    { Command::Sent, "sent", "", pages, "direct messages by the account" },
    { Command::Conversations, "conversations", "", 0, "the newest of both, by person" },
    { Command::Send, "send", "NAME TEXT", 0, "send a direct message" },
    { Command::Search, "search", "QUERY", Count | SinceID | Page, "posts that the service finds" },
    { Command::Trends, "trends", "", 0, "what many write about" },
    { Command::Shorten, "shorten", "URL", Service, "a short link for an address" },
    { Command::Expand, "expand", "URL", Service, "where a short link leads" },
    { Command::Upload, "upload", "FILE", Service, "a picture or a movie, answered with its link" },
    { Command::LongPost, "longpost", "TEXT", 0, "store a long text; prints what to post in its place" },
    { Command::Shrink, "shrink", "TEXT", 0, "a shorter wording" },
    { Command::Check, "check", "", Write, "what works with the server; with --write also posting" },
    { Command::RateLimit, "rate-limit", "", 0, "how many requests are left, as the service says it" },
};

template <auto member>
bool setText(CommandLine& line, const QString& value)
{
    line.*member = value;
    return true;
}

template <auto member>
bool setFlag(CommandLine& line, const QString&)
{
    line.*member = true;
    return true;
}

template <auto member>
bool setNumber(CommandLine& line, const QString& value)
{
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    line.*member = number;
    return isNumber && number >= 0;
}

bool setFingerprint(CommandLine& line, const QString& value)
{
    line.trustedFingerprint = KRServerCertificate::fingerprintFromText(value);
    return !line.trustedFingerprint.isEmpty();
}

constexpr OptionForm optionForms[] = {
    { "--services",
        "FILE",
        0,
        "the addresses of the service, in place of those of the preferences",
        setText<&CommandLine::servicesFile> },
    { "--ca-file",
        "FILE",
        0,
        "certificate authorities to trust beside the system's, as PEM",
        setText<&CommandLine::caFile> },
    { "--trust-certificate",
        "FINGERPRINT",
        0,
        "trust the certificate with this SHA-256 fingerprint for the servers of the service, whoever made it",
        setFingerprint,
        false,
        "a SHA-256 fingerprint" },
    { "--account",
        "NAME",
        0,
        "the account to use; without it, the first one of the preferences",
        setText<&CommandLine::account> },
    { "--password-stdin",
        nullptr,
        0,
        "its password is the first line of standard input; needs --account",
        setFlag<&CommandLine::passwordFromStandardInput> },
    { "--json", nullptr, 0, "one object a record a line", setFlag<&CommandLine::asJSON> },
    { "--verbose",
        nullptr,
        0,
        "the log on standard error, which otherwise has its errors alone",
        setFlag<&CommandLine::isVerbose> },
    { "--help",
        nullptr,
        0,
        "this text, or behind a command what is to be said of it",
        setFlag<&CommandLine::showsHelp> },
    { "--version", nullptr, 0, "the program's version", setFlag<&CommandLine::showsVersion> },
    { "--count", "N", Count, "how many", setNumber<&CommandLine::count> },
    { "--since-id", "ID", SinceID, "newer ones alone", setText<&CommandLine::sinceID> },
    { "--max-id", "ID", MaxID, "this one and older ones", setText<&CommandLine::maxID> },
    { "--page", "N", Page, "that page; the first is 1", setNumber<&CommandLine::page> },
    { "--reply-to", "ID", ReplyTo, "the post that it answers", setText<&CommandLine::replyTo>, true },
    { "--service",
        "NAME",
        Service,
        "who shortens (bitly, tinyurl, isgd, trim, diggbar), expands (bitly, longurl) or takes the picture "
        "(yfrog, twitpic, twitgoo, posterous, imgly, pixim), in place of the one in the preferences",
        setText<&CommandLine::service>,
        true },
    { "--write", nullptr, Write, "post and delete as well", setFlag<&CommandLine::writes>, true },
};

QStringList argumentsOf(const CommandForm& form)
{
    return QString::fromLatin1(form.arguments).split(u' ', Qt::SkipEmptyParts);
}

template <class Form>
const Form* named(std::span<const Form> forms, const QString& name)
{
    const auto found
        = std::ranges::find_if(forms, [&](const Form& form) { return name == QLatin1String(form.name); });
    return found == forms.end() ? nullptr : &*found;
}

} // namespace

qsizetype CommandTable::CommandForm::argumentCount() const
{
    return argumentsOf(*this).size();
}

bool CommandTable::CommandForm::takesText() const
{
    return argumentsOf(*this).contains(u"TEXT"_s);
}

QList<qsizetype> CommandTable::CommandForm::placesOfNames() const
{
    QList<qsizetype> places;
    const QStringList words = argumentsOf(*this);
    for (qsizetype place = 0; place < words.size(); ++place) {
        if (words[place] == u"NAME" || words[place].size() == 1)
            places.append(place);
    }
    return places;
}

QString CommandTable::CommandForm::synopsis() const
{
    QStringList words { QString::fromLatin1(name) };
    words += argumentsOf(*this);
    for (const OptionForm& option : optionForms) {
        if ((option.bit & options) && option.isInSynopsis)
            words.append(u"[%1]"_s.arg(option.synopsis()));
    }
    return words.join(u' ');
}

QString CommandTable::OptionForm::synopsis() const
{
    const QString text = QString::fromLatin1(name);
    return value ? text + u' ' + QLatin1String(value) : text;
}

std::span<const CommandForm> CommandTable::commands()
{
    return commandForms;
}

std::span<const OptionForm> CommandTable::options()
{
    return optionForms;
}

const CommandForm* CommandTable::commandNamed(const QString& name)
{
    return named(commands(), name);
}

const OptionForm* CommandTable::optionNamed(const QString& name)
{
    return named(options(), name);
}
