#include "cli/RecordOutput.h"

#include "text/KRDateAdditions.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

QJsonValue jsonText(const QString& text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonValue jsonDate(const QDateTime& date)
{
    return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODate)) : QJsonValue(QJsonValue::Null);
}

QJsonValue jsonURL(const QUrl& url)
{
    return url.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(QString::fromLatin1(url.toEncoded()));
}

template <class Number>
QJsonValue jsonNumber(const std::optional<Number>& number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QString ageOf(const QDateTime& date)
{
    return date.isValid() ? KRAdditions::relativeTimeAgoString(date) : u"no date"_s;
}

QString indented(QString text)
{
    return text.replace(u'\n', u"\n  "_s);
}

/// Pairs of location and length in UTF-16 code units.
QJsonArray jsonRanges(const KRRangeList& ranges)
{
    QJsonArray array;
    for (const KRRange& range : ranges)
        array.append(QJsonArray { range.location, range.length });
    return array;
}

} // namespace

namespace RecordOutput {

QJsonObject jsonObject(const TwitterUser& user)
{
    return { { u"userID"_s, jsonText(user.userID()) },
        { u"username"_s, jsonText(user.username()) },
        { u"fullName"_s, jsonText(user.fullName()) },
        { u"location"_s, jsonText(user.location()) },
        { u"bio"_s, jsonText(user.bio()) },
        { u"url"_s, jsonURL(user.url()) },
        { u"profileImageURL"_s, jsonURL(user.profileImageURL()) },
        { u"isProtected"_s, jsonNumber(user.isProtected()) },
        { u"numberOfFollowers"_s, jsonNumber(user.numberOfFollowers()) },
        { u"numberOfFollowing"_s, jsonNumber(user.numberOfFollowing()) },
        { u"numberOfStatuses"_s, jsonNumber(user.numberOfStatuses()) },
        { u"numberOfFavorites"_s, jsonNumber(user.numberOfFavorites()) } };
}

QJsonObject jsonObject(const TwitterStatus& status)
{
    const KRActiveTextRanges& ranges = status.activeTextRanges();
    return { { u"statusID"_s, jsonText(status.statusID()) },
        { u"text"_s, status.text() },
        { u"date"_s, jsonDate(status.date()) },
        { u"originalDateString"_s, jsonText(status.originalDateString()) },
        { u"fromUser"_s,
            status.fromUser() ? QJsonValue(jsonObject(*status.fromUser())) : QJsonValue(QJsonValue::Null) },
        { u"inReplyToStatusID"_s, jsonText(status.inReplyToStatusID()) },
        { u"isPartialStatus"_s, status.isPartialStatus() },
        { u"links"_s, jsonRanges(ranges.links()) },
        { u"hashtags"_s, jsonRanges(ranges.hashtags()) },
        { u"usernames"_s, jsonRanges(ranges.usernames()) },
        { u"stockSymbols"_s, jsonRanges(ranges.stockSymbols()) },
        { u"emailAddresses"_s, jsonRanges(ranges.emailAddresses()) } };
}

QJsonObject jsonObject(const TwitterDirectMessage& message)
{
    const auto person = [](const TwitterUserPtr& user) {
        return user ? QJsonValue(jsonObject(*user)) : QJsonValue(QJsonValue::Null);
    };
    return { { u"messageID"_s, jsonText(message.messageID()) },
        { u"text"_s, message.text() },
        { u"date"_s, jsonDate(message.date()) },
        { u"sender"_s, person(message.sender()) },
        { u"recipient"_s, person(message.recipient()) } };
}

QJsonObject jsonObject(const TwitterDirectMessageConversation& conversation)
{
    QJsonArray messages;
    for (const TwitterDirectMessagePtr& message : conversation.messages())
        messages.append(jsonObject(*message));
    return { { u"correspondent"_s, jsonObject(*conversation.correspondent()) }, { u"messages"_s, messages } };
}

QString text(const TwitterStatus& status)
{
    const TwitterUserPtr& author = status.fromUser();
    const QString name = author ? u"%1 (%2)"_s.arg(author->username(), author->fullName()) : u"?"_s;
    const QString age = ageOf(status.date());
    QString head = u"%1, %2, %3"_s.arg(name, age, status.statusID());
    if (!status.inReplyToStatusID().isNull())
        head += u", answers %1"_s.arg(status.inReplyToStatusID());
    return safeForTerminal(u"%1\n  %2\n"_s.arg(head, indented(status.text())));
}

QString text(const TwitterUser& user)
{
    QString lines = u"%1 (%2)"_s.arg(user.username(), user.fullName());
    const auto add = [&lines](const char* label, const QString& value) {
        if (!value.isEmpty())
            lines += u"\n  %1: %2"_s.arg(QLatin1String(label), value);
    };
    const auto number
        = [](const std::optional<qint32>& value) { return value ? QString::number(*value) : QString(); };
    add("ID", user.userID());
    add("Location", user.location());
    add("Web", user.url().toDisplayString());
    add("Bio", user.bio());
    add("Posts", number(user.numberOfStatuses()));
    add("Follows", number(user.numberOfFollowing()));
    add("Followers", number(user.numberOfFollowers()));
    add("Favourites", number(user.numberOfFavorites()));
    return safeForTerminal(lines + u'\n');
}

QString text(const TwitterDirectMessage& message)
{
    const auto nameOf = [](const TwitterUserPtr& user) { return user ? user->username() : u"?"_s; };
    return safeForTerminal(u"%1 to %2, %3, %4\n  %5\n"_s.arg(nameOf(message.sender()),
        nameOf(message.recipient()),
        ageOf(message.date()),
        message.messageID(),
        indented(message.text())));
}

QString text(const TwitterDirectMessageConversation& conversation)
{
    const TwitterUser& correspondent = *conversation.correspondent();
    QString lines = safeForTerminal(u"%1 (%2)\n"_s.arg(correspondent.username(), correspondent.fullName()));
    for (const TwitterDirectMessagePtr& message : conversation.messages())
        lines += u"  %1\n"_s.arg(indented(text(*message).trimmed()));
    return lines;
}

QString safeForTerminal(QString text)
{
    for (QChar& character : text) {
        const bool isCommand
            = character.category() == QChar::Other_Control && character != u'\n' && character != u'\t';
        if (isCommand)
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace RecordOutput
