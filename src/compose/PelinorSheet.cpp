#include "compose/PelinorSheet.h"

#include "api/TwitterServiceHosts.h"
#include "transport/KRHTTPConnection.h"
#include "transport/KRHTTPRequest.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PelinorComposeWindowController)
};

QString descriptionOf(const KRError& error)
{
    return error.description.isEmpty() ? u"%1 (%2)"_s.arg(error.domain).arg(error.code) : error.description;
}

PelinorSheet sheet(const QString& message, const QString& informativeText, bool isCritical = false)
{
    return { message, informativeText, isCritical, Texts::tr("OK") };
}

PelinorSheet mayHaveGoneOut(const QString& message, const QString& advice, const KRError* error)
{
    return { message,
        error ? u"%1\n\n%2"_s.arg(advice, descriptionOf(*error)) : advice,
        true,
        Texts::tr("OK"),
        Texts::tr("Look There"),
        PelinorSheet::Choice::ShowTimeline,
        true };
}

// A gateway that lost the server behind it does not know what that one did.
bool isLostBehindGateway(int status)
{
    return status == 502 || status == 504;
}

} // namespace

PelinorSheet PelinorSheet::uploadFailed(const KRError* error)
{
    return sheet(Texts::tr("Error"), error ? descriptionOf(*error) : Texts::tr("Could not post your photo."));
}

PelinorSheet PelinorSheet::messageTooLong(qsizetype longest)
{
    return { Texts::tr("Message too long"),
        Texts::tr("Your post must be under %1 characters.  You may post a longer message through Twitlonger.")
            .arg(longest),
        false,
        Texts::tr("Cancel"),
        Texts::tr("Post with Twitlonger"),
        Choice::PostWithTwitlonger };
}

PelinorSheet PelinorSheet::longPostFailed()
{
    return sheet(Texts::tr("Twitlonger Error"),
        Texts::tr("There was an error posting your tweet to Twitlonger."));
}

PelinorSheet PelinorSheet::postFailed(const KRError& error)
{
    return sheet(Texts::tr("There was an error posting your tweet."), descriptionOf(error), true);
}

PelinorSheet PelinorSheet::messageFailed(const KRError& error)
{
    return sheet(Texts::tr("There was an error sending your direct message."), descriptionOf(error), true);
}

PelinorSheet PelinorSheet::accountRemoved(const QString& name)
{
    return sheet(Texts::tr("Error"),
        Texts::tr("The account %1 has been removed. Choose another one to post from.").arg(name));
}

PelinorSheet PelinorSheet::postMayHaveGoneOut(const KRError* error)
{
    return mayHaveGoneOut(Texts::tr("Your tweet may have gone out."),
        Texts::tr("It was sent, but no answer came back. Look at your timeline before you post it again."),
        error);
}

PelinorSheet PelinorSheet::messageMayHaveGoneOut(const KRError* error)
{
    return mayHaveGoneOut(Texts::tr("Your direct message may have gone out."),
        Texts::tr("It was sent, but no answer came back. Look at your messages before you send it again."),
        error);
}

PelinorSheet PelinorSheet::askToDiscard()
{
    return { Texts::tr("Are you sure you want to discard this unsaved tweet?"),
        Texts::tr("Your tweet will be lost."),
        false,
        Texts::tr("Cancel"),
        Texts::tr("Discard"),
        Choice::Discard,
        true };
}

bool PelinorMayHaveGoneOut(const KRError& error)
{
    if (error.domain == QStringView(KRHTTPConnectionErrorDomain))
        return !KRHTTPConnectionErrorIsBeforeSending(error);
    if (error.domain == QStringView(KRHTTPRequestErrorDomain))
        return isLostBehindGateway(error.code);
    // The program's own errors have no status when nothing was sent.
    if (error.domain == QStringView(TwitterServiceErrorDomain))
        return (error.code >= 200 && error.code <= 299) || isLostBehindGateway(error.code);
    // An answer that could not be read.
    return true;
}
