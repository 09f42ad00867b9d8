#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

constexpr std::size_t longestMessage = 140;

Answer messagesAnswer(Site& site, const Call& call, const std::vector<DirectMessage>& messages)
{
    return xmlAnswer(RestDocuments(site, call.viewerID()).directMessages(messages));
}

Answer sendMessage(Site& site, const Call& call)
{
    DirectMessage message;
    message.text = tidiedText(call.parameterOr("text", ""));
    message.senderID = call.viewerID();
    message.createdAt = currentTime();
    if (message.text.empty())
        return errorAnswer(call, 406, "No message text!");
    if (characterCount(message.text) > longestMessage)
        return errorAnswer(call, 413, "That's too long. Maximum message size is 140 characters.");
    const auto recipient = site.users.withIDOrScreenName(
        call.parameterOr("user", call.parameterOr("user_id", call.parameterOr("screen_name", ""))));
    if (!recipient)
        return errorAnswer(call, 404, "Recipient user not found.");
    if (recipient->id == message.senderID)
        return errorAnswer(call,
            403,
            "Do not send a message to yourself; just say it to yourself quietly instead.");
    if (!site.users.isFollowing(message.senderID, recipient->id)
        || !site.users.isFollowing(recipient->id, message.senderID))
        return errorAnswer(call, 403, "Cannot send direct messages to users who aren't your friend.");
    message.recipientID = recipient->id;
    message.id = site.messages.add(message);
    return xmlAnswer(RestDocuments(site, call.viewerID()).directMessage(message));
}

} // namespace

void addDirectMessageRoutes(Router& router, Site& site)
{
    router.get("direct_messages.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return messagesAnswer(site, call, site.messages.receivedBy(call.viewerID(), call.page()));
    });
    router.get("direct_messages/sent.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return messagesAnswer(site, call, site.messages.sentBy(call.viewerID(), call.page()));
    });
    router.post("direct_messages/new.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return sendMessage(site, call);
    });
}

} // namespace localservice
