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
        { u"fromUser"_s, status.fromUser() ? QJsonValue(jsonObject(*status.fromUser())) : QJsonValue(QJsonValue::Null) },
        { u"inReplyToStatusID"_s, jsonText(status.inReplyToStatusID()) },
        { u"isPartialStatus"_s, status.isPartialStatus() },
        { u"links"_s, jsonRanges(ranges.links()) },
        { u"hashtags"_s, jsonRanges(ranges.hashtags()) },
        { u"usernames"_s, jsonRanges(ranges.usernames()) },
        { u"stockSymbols"_s, jsonRanges(ranges.stockSymbols()) },
        { u"emailAddresses"_s, jsonRanges(ranges.emailAddresses()) } };
}

QString text(const TwitterStatus& status)
{
    const TwitterUserPtr author = status.fromUser();
    const QString name = author ? u"%1 (%2)"_s.arg(author->username(), author->fullName()) : u"?"_s;
    const QString age = status.date().isValid() ? KRAdditions::relativeTimeAgoString(status.date()) : u"no date"_s;
    QString head = u"%1, %2, %3"_s.arg(name, age, status.statusID());
    if (!status.inReplyToStatusID().isNull())
        head += u", answers %1"_s.arg(status.inReplyToStatusID());
    return safeForTerminal(u"%1\n  %2\n"_s.arg(head, QString(status.text()).replace(u'\n', u"\n  "_s)));
}

QString text(const TwitterUser& user)
{
    QString lines = u"%1 (%2)"_s.arg(user.username(), user.fullName());
    const auto add = [&lines](const char* label, const QString& value) {
        if (!value.isEmpty())
            lines += u"\n  %1: %2"_s.arg(QLatin1String(label), value);
    };
    const auto number = [](const std::optional<qint32>& value) { return value ? QString::number(*value) : QString(); };
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

QString safeForTerminal(QString text)
{
    for (QChar& character : text) {
        const bool isCommand = character.category() == QChar::Other_Control && character != u'\n' && character != u'\t';
        if (isCommand)
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace RecordOutput
