#include "api/TwitterCheckOperations.h"

#include "api/TwitterAnswers.h"
#include "text/KRDataAdditions.h"

using namespace Qt::StringLiterals;

namespace {

KRResult<bool> friendshipWithXML(const QByteArray& data)
{
    bool follows = false;
    const auto handler = KRXMLParser::Handler::withFunction([&follows](KRXMLParser& parser) {
        if (parser.elementName() == "friends" && parser.characters() == "true"_L1)
            follows = true;
    });
    const KRResult<void> parsed = KRXMLParser::parseData(data, handler);
    if (parsed.isError())
        return parsed.error();
    return follows;
}

/// Some servers send the document of an error as a success, which answers nothing.
KRResult<bool> unlessErrorDocument(bool value, const KRHTTPRequest& request)
{
    if (TwitterAnswers::errorText(request.data()).isEmpty())
        return value;
    return TwitterAnswers::errorForMissingRecord(request);
}

} // namespace

void TwitterCheckOperations::usernameFollowsUsername(const QString& username, const QString& otherUsername)
{
    _friendshipExists(username, otherUsername);
}

void TwitterCheckOperations::userIDFollowsUserID(const QString& userID, const QString& otherUserID)
{
    _friendshipExists(userID, otherUserID);
}

void TwitterCheckOperations::_friendshipExists(const QString& nameOrID, const QString& other)
{
    _requirePerson(nameOrID);
    _requirePerson(other);
    GET(u"friendships/exists.xml"_s,
        KRParameters().add("user_a"_L1, nameOrID).add("user_b"_L1, other),
        _handler(&TwitterCheckOperations::_friendshipExistsResponse));
}

void TwitterCheckOperations::_friendshipExistsResponse(KRHTTPRequest& request)
{
    KRResult<bool> follows = TwitterAnswers::parsed(request, &friendshipWithXML);
    if (!follows.isError() && !follows.value())
        follows = unlessErrorDocument(false, request);
    _invokeCallback(std::move(follows));
}

void TwitterCheckOperations::verifyCredentials()
{
    GET(u"account/verify_credentials.xml"_s, _handler(&TwitterCheckOperations::_verifyCredentialsResponse));
}

void TwitterCheckOperations::_verifyCredentialsResponse(KRHTTPRequest& request)
{
    if (request.error())
        _invokeCallback(*request.error());
    else
        _invokeCallback(unlessErrorDocument(true, request));
}

void TwitterTextOperations::rateLimitStatus()
{
    GET(u"account/rate_limit_status.xml"_s, _handler(&TwitterTextOperations::_rateLimitResponse));
}

void TwitterTextOperations::_rateLimitResponse(KRHTTPRequest& request)
{
    if (request.error()) {
        _invokeCallback(*request.error());
        return;
    }
    const QString text = KRAdditions::UTF8String(request.data());
    if (text.isNull())
        _invokeCallback(TwitterAnswers::errorForMissingRecord(request));
    else
        _invokeCallback(text);
}
