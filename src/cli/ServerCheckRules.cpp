#include "cli/ServerCheckRules.h"

#include "api/TwitterServiceHosts.h"
#include "transport/KRHTTPConnection.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using Outcome = ServerCheckResult::Outcome;

namespace {

QString outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Works:
        return u"works"_s;
    case Outcome::Differs:
        return u"differs"_s;
    case Outcome::Fails:
        return u"fails"_s;
    case Outcome::NotTried:
        return u"not tried"_s;
    }
    return {};
}

QString errorFinding(const KRError& error)
{
    return error.description.isEmpty() ? u"%1 %2"_s.arg(error.domain, QString::number(error.code))
                                       : error.description;
}

ServerCheckResult failure(const QString& check, const KRError& error, const QString& meaning)
{
    return { check, Outcome::Fails, errorFinding(error), meaning };
}

QString numberOf(qsizetype number, const QString& things)
{
    return number == 1 ? u"1 %1"_s.arg(things) : u"%1 %2s"_s.arg(QString::number(number), things);
}

bool isWhole(const TwitterStatusPtr& status)
{
    return !status->statusID().isEmpty() && status->date().isValid() && status->fromUser()
        && !status->fromUser()->username().isEmpty();
}

} // namespace

QJsonObject ServerCheckResult::jsonObject() const
{
    return { { u"check"_s, check },
        { u"outcome"_s, outcomeName(outcome) },
        { u"finding"_s, finding },
        { u"meaning"_s, meaning } };
}

QString ServerCheckResult::text() const
{
    const QString line
        = u"%1 %2 %3"_s.arg(outcomeName(outcome).leftJustified(9), check.leftJustified(15), finding);
    return meaning.isEmpty() ? line : u"%1\n%2%3"_s.arg(line, QString(26, u' '), meaning);
}

namespace ServerCheckRules {

bool isUnreachable(const KRError& error)
{
    // Somebody sent the redirect that was not followed, or the answer without end.
    static const QList<int> answered { KRHTTPConnectionErrorTooManyRedirects,
        KRHTTPConnectionErrorInsecureRedirect,
        KRHTTPConnectionErrorBadRedirect,
        KRHTTPConnectionErrorTooLarge };
    // Without an address there is nothing to reach either.
    return (error.domain == QStringView(KRHTTPConnectionErrorDomain) && !answered.contains(error.code))
        || (error.domain == QStringView(TwitterServiceErrorDomain) && error.code == -1);
}

ServerCheckResult tls(const KRResult<TwitterStatusList>& answer)
{
    const QString check = u"tls"_s;
    if (!answer.isError() || !isUnreachable(answer.error()))
        return { check, Outcome::Works, u"A protected connection to a server that proved its name"_s, {} };
    if (KRHTTPConnectionErrorIsAboutTLS(answer.error())) {
        return failure(check,
            answer.error(),
            u"Pelinor sends nothing to a server that cannot prove its name. If the site has an authority of "
            "its own, give its certificate with --ca-file. If it made its certificate itself, compare the "
            "fingerprint with what the site's operator says, and give it with --trust-certificate."_s);
    }
    return notTried(check, u"No server was reached"_s);
}

ServerCheckResult searchTLS(const QUrl& searchURL)
{
    const QString check = u"tls of search"_s;
    if (searchURL.scheme() == "https"_L1)
        return { check, Outcome::Works, u"Search and trends are asked for over https"_s, {} };
    return { check,
        Outcome::Differs,
        u"Search and trends are asked for over plain http"_s,
        u"Others on the network can read what is searched for. Put https:// in front of SearchHost if the "
        "site offers it."_s };
}

ServerCheckResult signIn(const KRResult<bool>& answer, const QString& username)
{
    const QString check = u"sign-in"_s;
    if (!answer.isError() && answer.value())
        return { check, Outcome::Works, u"Signed in as %1"_s.arg(username), {} };
    const QString meaning = u"The account cannot be used: look at the name, the password and RESTHost."_s;
    return answer.isError() ? failure(check, answer.error(), meaning)
                            : ServerCheckResult { check, Outcome::Fails, u"Refused"_s, meaning };
}

ServerCheckResult
timeline(const QString& check, const KRResult<TwitterStatusList>& answer, const QString& meaningOfError)
{
    if (answer.isError())
        return failure(check, answer.error(), meaningOfError);
    const TwitterStatusList& statuses = answer.value();
    const auto isPartial = [](const TwitterStatusPtr& status) { return !isWhole(status); };
    const auto partial = std::count_if(statuses.begin(), statuses.end(), isPartial);
    if (partial > 0) {
        return { check,
            Outcome::Differs,
            u"%1 of %2 have no ID, date or author"_s.arg(QString::number(partial),
                numberOf(statuses.size(), u"post"_s)),
            u"They are shown without, or at the wrong place."_s };
    }
    return { check, Outcome::Works, numberOf(statuses.size(), u"post"_s), {} };
}

ServerCheckResult count(const KRResult<QStringList>& answer)
{
    const QString check = u"count"_s;
    if (answer.isError())
        return failure(check, answer.error(), u"Timelines cannot be loaded in pages of any size."_s);
    const qsizetype number = answer.value().size();
    if (number == pageSize)
        return { check, Outcome::Works, u"A page has as many posts as are asked for"_s, {} };
    const QString finding
        = u"%1 where %2 were asked for"_s.arg(numberOf(number, u"post"_s), QString::number(pageSize));
    if (number > pageSize) {
        return { check,
            Outcome::Differs,
            finding,
            u"Pelinor asks for 200 new posts at once; what the server leaves out of a long absence stays "
            "missing."_s };
    }
    return { check, Outcome::Differs, finding, u"The end of a list may be shown too early."_s };
}

ServerCheckResult sinceID(const QStringList& known, const KRResult<QStringList>& answer)
{
    const QString check = u"since_id"_s;
    if (answer.isError())
        return failure(check, answer.error(), u"A refresh brings nothing new."_s);
    const QStringList& got = answer.value();
    if (!got.contains(known.at(0)) || !got.contains(known.at(1)))
        return { check, Outcome::Fails, u"Newer posts are left out"_s, u"A refresh misses posts."_s };
    if (got.contains(known.at(3))) {
        return { check,
            Outcome::Differs,
            u"Older posts come as well"_s,
            u"A refresh loads a whole page every time; posts that are known are dropped."_s };
    }
    if (got.contains(known.at(2))) {
        return { check,
            Outcome::Differs,
            u"The post itself comes as well"_s,
            u"Nothing: a post that is known is dropped."_s };
    }
    return { check, Outcome::Works, u"Only newer posts"_s, {} };
}

ServerCheckResult maxID(const QStringList& known, const KRResult<QStringList>& answer)
{
    const QString check = u"max_id"_s;
    const QString noOlder = u"Older posts cannot be loaded beyond the first page."_s;
    if (answer.isError())
        return failure(check, answer.error(), noOlder);
    const QStringList& got = answer.value();
    if (got.contains(known.at(0)) || got.contains(known.at(1)))
        return { check, Outcome::Fails, u"Newer posts come as well"_s, noOlder };
    if (!got.contains(known.at(3)))
        return { check, Outcome::Fails, u"Older posts are left out"_s, noOlder };
    if (!got.contains(known.at(2))) {
        return { check,
            Outcome::Differs,
            u"Older posts without the post itself"_s,
            u"Nothing: Pelinor takes both."_s };
    }
    return { check, Outcome::Works, u"The post itself and older ones"_s, {} };
}

ServerCheckResult page(const QStringList& known, const KRResult<QStringList>& answer)
{
    const QString check = u"page"_s;
    const QString firstPageOnly
        = u"Favourites, friends, followers and messages are not loaded beyond their first page."_s;
    if (answer.isError())
        return failure(check, answer.error(), firstPageOnly);
    const QStringList& got = answer.value();
    if (got.isEmpty())
        return { check, Outcome::Fails, u"The second page is empty"_s, firstPageOnly };
    // A post that came meanwhile moves the pages by one, towards the newest.
    const qsizetype first = known.indexOf(got.at(0));
    if (first == 0)
        return { check, Outcome::Fails, u"The second page is the first"_s, firstPageOnly };
    if (first < 0 || first > pageSize) {
        return { check,
            Outcome::Differs,
            u"The second page does not follow the first"_s,
            u"Lists that are loaded by page may miss something between two pages."_s };
    }
    return { check, Outcome::Works, u"The second page follows the first"_s, {} };
}

QString searchWord(const TwitterStatusList& statuses)
{
    // Standing alone: no part of a link, a name or a tag. The longest is the rarest, and no word that
    // searches leave out.
    static const QRegularExpression word(u"(?<!\\S)[A-Za-z]{4,20}(?=[.,;:!?]*(\\s|$))"_s);
    for (const TwitterStatusPtr& status : statuses) {
        QString longest;
        for (const QRegularExpressionMatch& match : word.globalMatch(status->text())) {
            if (match.capturedLength() > longest.size())
                longest = match.captured();
        }
        if (!longest.isNull())
            return longest;
    }
    return {};
}

ServerCheckResult search(const QString& word, bool isOfAPost, const KRResult<QByteArray>& answer)
{
    const QString check = u"search"_s;
    const QString nothing = u"Searches and saved searches stay empty."_s;
    if (answer.isError())
        return failure(check, answer.error(), nothing);
    const QByteArray body = answer.value().trimmed();
    const bool isBare = body.startsWith('[');
    if (!isBare && !(body.startsWith('{') && body.contains("\"results\"")))
        return { check, Outcome::Fails, u"The answer is no list of posts"_s, nothing };
    const KRResult<TwitterStatusList> statuses = TwitterStatus::statusesWithSearchJSON(body);
    if (statuses.isError())
        return failure(check, statuses.error(), nothing);
    const QString found = u"%1 with \"%2\""_s.arg(numberOf(statuses.value().size(), u"post"_s), word);
    if (isOfAPost && statuses.value().isEmpty()) {
        return { check,
            Outcome::Differs,
            u"%1, a word of a public post"_s.arg(found),
            u"Searches may miss posts."_s };
    }
    if (isBare) {
        return { check,
            Outcome::Differs,
            u"A bare array of full posts; %1"_s.arg(found),
            u"Nothing: Pelinor reads both forms."_s };
    }
    return { check, Outcome::Works, u"The classic form; %1"_s.arg(found), {} };
}

ServerCheckResult trends(const KRResult<QStringList>& answer)
{
    const QString check = u"trends"_s;
    if (answer.isError())
        return failure(check, answer.error(), u"Pelinor shows no trends for this site."_s);
    return { check, Outcome::Works, numberOf(answer.value().size(), u"trend"_s), {} };
}

ServerCheckResult messages(const QString& check, const KRResult<qsizetype>& answer)
{
    if (answer.isError())
        return failure(check, answer.error(), u"Conversations by direct message stay empty."_s);
    return { check, Outcome::Works, numberOf(answer.value(), u"message"_s), {} };
}

ServerCheckResult uploads(const QUrl& address, const KRResult<int>& answer)
{
    const QString check = u"uploads"_s;
    const QString meaning = u"Pictures cannot be attached."_s;
    if (answer.isError())
        return failure(check, answer.error(), meaning);
    const QString finding = u"%1 answers with status %2"_s.arg(
        address.toDisplayString(QUrl::RemoveUserInfo | QUrl::RemoveQuery),
        QString::number(answer.value()));
    // Whatever it says to a request without a file, it is there.
    if (answer.value() == 404 || answer.value() == 410 || answer.value() >= 500)
        return { check, Outcome::Fails, finding, meaning };
    return { check,
        Outcome::Works,
        finding,
        u"No file was sent: it would stay there. Try one with \"upload FILE\"."_s };
}

ServerCheckResult uploadsWithoutService(const KRError& error)
{
    return { u"uploads"_s,
        Outcome::NotTried,
        errorFinding(error),
        u"Pictures cannot be attached until a service for them is set up."_s };
}

ServerCheckResult posting(const QString& text, const KRResult<TwitterStatusPtr>& answer)
{
    const QString check = u"posting"_s;
    if (answer.isError())
        return failure(check, answer.error(), u"Nothing can be posted."_s);
    if (answer.value()->text() != text) {
        return { check,
            Outcome::Differs,
            u"The server answers with another text than was sent: \"%1\""_s.arg(answer.value()->text()),
            u"It is not deleted. Look whether a post by pelinor-cli is left over."_s };
    }
    return { check, Outcome::Works, u"Posted %1"_s.arg(answer.value()->statusID()), {} };
}

ServerCheckResult deleting(const QString& statusID, const KRResult<TwitterStatusPtr>& answer)
{
    const QString check = u"deleting"_s;
    if (answer.isError()) {
        return failure(check,
            answer.error(),
            u"Posts cannot be deleted with Pelinor. Delete %1 by hand."_s.arg(statusID));
    }
    return { check, Outcome::Works, u"Deleted %1"_s.arg(statusID), {} };
}

ServerCheckResult notTried(const QString& check, const QString& reason)
{
    return { check, Outcome::NotTried, reason, {} };
}

} // namespace ServerCheckRules
