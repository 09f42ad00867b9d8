#include "api/TwitterStatusOperations.h"

#include "api/TwitterAnswers.h"
#include "text/KRStringAdditions.h"

using namespace KRAdditions;
using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String sourceName("pelinor");

KRParameters timelineParameters(KRParameters parameters,
    const QString& sinceID,
    const QString& maxID,
    std::optional<int> count,
    std::optional<int> page)
{
    parameters.add("since_id"_L1, sinceID)
        .add("max_id"_L1, maxID)
        .add("count"_L1, count)
        .add("page"_L1, page);
    return parameters;
}

} // namespace

void TwitterStatusesOperations::friendsTimelineSinceID(const QString& sinceID,
    const QString& maxID,
    std::optional<int> count,
    std::optional<int> page)
{
    _requireAuthentication("friendsTimelineSinceID:maxID:count:page:");
    GET(u"statuses/home_timeline.xml"_s,
        timelineParameters({}, sinceID, maxID, count, page),
        _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::repliesSinceID(const QString& sinceID,
    const QString& maxID,
    std::optional<int> page)
{
    _requireAuthentication("repliesSinceID:maxID:page:");
    GET(u"statuses/replies.xml"_s,
        timelineParameters({}, sinceID, maxID, std::nullopt, page),
        _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::userTimelineForUsername(const QString& username,
    const QString& sinceID,
    const QString& maxID,
    std::optional<int> count,
    std::optional<int> page)
{
    _requirePerson(username);
    GET(u"statuses/user_timeline.xml"_s,
        timelineParameters(KRParameters().add("screen_name"_L1, username), sinceID, maxID, count, page),
        _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::userTimelineForUserID(const QString& userID,
    const QString& sinceID,
    const QString& maxID,
    std::optional<int> count,
    std::optional<int> page)
{
    _requirePerson(userID);
    GET(u"statuses/user_timeline.xml"_s,
        timelineParameters(KRParameters().add("user_id"_L1, userID), sinceID, maxID, count, page),
        _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::publicTimeline()
{
    GET(u"statuses/public_timeline.xml"_s, _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::favoritesForUsername(const QString& username, std::optional<int> page)
{
    _requirePerson(username);
    GET(u"favorites/%1.xml"_s.arg(URLEncodedString(username)),
        KRParameters().add("page"_L1, page),
        _handler(&TwitterStatusesOperations::_statusesResponse));
}

void TwitterStatusesOperations::favoritesForUserID(const QString& userID, std::optional<int> page)
{
    favoritesForUsername(userID, page);
}

void TwitterStatusesOperations::_statusesResponse(KRHTTPRequest& request)
{
    _invokeCallback(TwitterAnswers::parsed(request, &TwitterStatus::statusesWithXML));
}

void TwitterStatusOperations::statusWithID(const QString& statusID)
{
    GET(u"statuses/show/%1.xml"_s.arg(URLEncodedString(statusID)),
        _handler(&TwitterStatusOperations::_statusResponse));
}

void TwitterStatusOperations::update(const QString& text, const QString& inReplyToStatusID)
{
    _requireAuthentication("update:inReplyToStatusID:");
    POST(u"statuses/update.xml"_s,
        KRParameters()
            .add("status"_L1, text)
            .add("in_reply_to_status_id"_L1, inReplyToStatusID)
            .add("source"_L1, QString(sourceName)),
        _handler(&TwitterStatusOperations::_statusResponse));
}

void TwitterStatusOperations::destroyStatus(const QString& statusID)
{
    _requireAuthentication("destroyStatus:");
    POST(u"statuses/destroy/%1.xml"_s.arg(URLEncodedString(statusID)),
        QByteArray(),
        _handler(&TwitterStatusOperations::_statusResponse));
}

void TwitterStatusOperations::createFavorite(const QString& statusID)
{
    _requireAuthentication("favoriteStatusID:");
    POST(u"favorites/create/%1.xml"_s.arg(URLEncodedString(statusID)),
        QByteArray(),
        _handler(&TwitterStatusOperations::_statusResponse));
}

void TwitterStatusOperations::destroyFavorite(const QString& statusID)
{
    _requireAuthentication("unfavoriteStatusID:");
    POST(u"favorites/destroy/%1.xml"_s.arg(URLEncodedString(statusID)),
        QByteArray(),
        _handler(&TwitterStatusOperations::_statusResponse));
}

void TwitterStatusOperations::_statusResponse(KRHTTPRequest& request)
{
    KRResult<TwitterStatusPtr> status = TwitterAnswers::parsed(request, &TwitterStatus::statusWithXML);
    // Some servers send the document of an error as a success.
    if (!status.isError() && status.value()->statusID().isNull())
        status = TwitterAnswers::errorForMissingRecord(request);
    _invokeCallback(std::move(status));
}
