#include "api/TwitterCommandOperations.h"

#include "foundation/KRLog.h"

using namespace Qt::StringLiterals;

void TwitterCommandOperations::favoriteStatusID(const QString& statusID)
{
    _requireAuthentication("favoriteStatusID:");
    POST(u"favorites/create/%1.xml"_s.arg(statusID),
        QByteArray(),
        _handler(&TwitterCommandOperations::_ignoreResponse));
}

void TwitterCommandOperations::unfavoriteStatusID(const QString& statusID)
{
    _requireAuthentication("unfavoriteStatusID:");
    POST(u"favorites/destroy/%1.xml"_s.arg(statusID),
        QByteArray(),
        _handler(&TwitterCommandOperations::_ignoreResponse));
}

void TwitterCommandOperations::destroyDirectMessage(const TwitterDirectMessage&)
{
    // The services have no common way to do it, and this is all there is to it: whoever calls it finds these
    // words in the log.
    KRLog(u"not implemented"_s); // the line that the log is to hold
}

void TwitterCommandOperations::updateProfileImage(const QByteArray&) { }
void TwitterCommandOperations::updateProfileName(const QString&,
    const QString&,
    const QString&,
    const QString&)
{
}
void TwitterCommandOperations::blockUserID(const QString&) { }
void TwitterCommandOperations::blockUsername(const QString&) { }
void TwitterCommandOperations::unblockUserID(const QString&) { }
void TwitterCommandOperations::unblockUsername(const QString&) { }
void TwitterCommandOperations::enableNotificationsForUserID(const QString&) { }
void TwitterCommandOperations::enableNotificationsForUsername(const QString&) { }
void TwitterCommandOperations::disableNotificationsForUserID(const QString&) { }
void TwitterCommandOperations::disableNotificationsForUsername(const QString&) { }

void TwitterCommandOperations::_ignoreResponse(KRHTTPRequest& request)
{
    if (request.error())
        KRLog(u"Error: %1"_s.arg(request.error()->description));
}
