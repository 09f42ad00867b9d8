#include "api/TwitterDirectMessageOperations.h"

#include "api/TwitterAnswers.h"

using namespace Qt::StringLiterals;

namespace {

KRParameters pageParameters(const QString& sinceID, const QString& maxID, std::optional<int> page)
{
    return KRParameters().add("since_id"_L1, sinceID).add("max_id"_L1, maxID).add("page"_L1, page);
}

} // namespace

void TwitterDirectMessagesOperations::directMessagesSinceID(const QString& sinceID,
    const QString& maxID,
    std::optional<int> page)
{
    _requireAuthentication("directMessagesSinceID:maxID:page:");
    GET(u"direct_messages.xml"_s,
        pageParameters(sinceID, maxID, page),
        _handler(&TwitterDirectMessagesOperations::_directMessagesResponse));
}

void TwitterDirectMessagesOperations::sentDirectMessagesSinceID(const QString& sinceID,
    const QString& maxID,
    std::optional<int> page)
{
    _requireAuthentication("sentDirectMessagesSinceID:maxID:page:");
    GET(u"direct_messages/sent.xml"_s,
        pageParameters(sinceID, maxID, page),
        _handler(&TwitterDirectMessagesOperations::_directMessagesResponse));
}

void TwitterDirectMessagesOperations::_directMessagesResponse(KRHTTPRequest& request)
{
    _invokeCallback(TwitterAnswers::parsed(request, &TwitterDirectMessage::messagesWithXML));
}

void TwitterDirectMessageOperations::sendToUsername(const QString& text, const QString& username)
{
    _requireAuthentication("send:toUsername:");
    _send(text, username);
}

void TwitterDirectMessageOperations::sendToUserID(const QString& text, const QString& userID)
{
    _requireAuthentication("send:toUserID:");
    _send(text, userID);
}

void TwitterDirectMessageOperations::_send(const QString& text, const QString& recipient)
{
    _requirePerson(recipient);
    POST(u"direct_messages/new.xml"_s,
        KRParameters().add("user"_L1, recipient).add("text"_L1, text),
        _handler(&TwitterDirectMessageOperations::_directMessageResponse));
}

void TwitterDirectMessageOperations::_directMessageResponse(KRHTTPRequest& request)
{
    KRResult<TwitterDirectMessagePtr> message
        = TwitterAnswers::parsed(request, &TwitterDirectMessage::messageWithXML);
    if (!message.isError() && message.value()->messageID().isNull())
        message = TwitterAnswers::errorForMissingRecord(request);
    _invokeCallback(std::move(message));
}
