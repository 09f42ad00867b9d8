#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

constexpr std::int64_t duplicateSeconds = 60;
constexpr std::size_t longestSource = 40;

// A post that the caller may work with, or the answer that says why not.
struct FoundStatus {
    std::optional<Status> status;
    Answer refusal;
};

FoundStatus findStatus(Site& site, const Call& call)
{
    const auto id = decimalNumber(call.argument);
    auto status = id ? site.statuses.withID(*id) : std::nullopt;
    if (!status)
        return { std::nullopt, errorAnswer(call, 404, "No such notice.") };
    if (status->isDeleted)
        return { std::nullopt, errorAnswer(call, 410, "Notice deleted.") };
    const auto author = site.users.withID(status->userID);
    if (!author || !site.users.maySee(call.viewerID(), *author))
        return { std::nullopt, errorAnswer(call, 403, "Only authorized subscribers may read this notice.") };
    return { std::move(status), {} };
}

Answer statusAnswer(Site& site, const Call& call, const Status& status)
{
    return xmlAnswer(RestDocuments(site, call.viewerID()).status(status));
}

Answer showStatus(Site& site, const Call& call)
{
    const FoundStatus found = findStatus(site, call);
    return found.status ? statusAnswer(site, call, *found.status) : found.refusal;
}

bool mayAnswer(Site& site, const Call& call, std::int64_t parentID)
{
    const auto parent = site.statuses.withID(parentID);
    if (!parent || parent->isDeleted)
        return false;
    const auto author = site.users.withID(parent->userID);
    return author && site.users.maySee(call.viewerID(), *author);
}

Answer updateStatus(Site& site, const Call& call)
{
    Status status;
    status.text = tidiedText(call.parameterOr("status", ""));
    status.userID = call.viewerID();
    status.createdAt = currentTime();
    status.source = tidiedText(call.parameterOr("source", "api")).substr(0, longestSource);
    if (status.source.empty() || !isValidUTF8(status.source))
        status.source = "api";
    if (status.text.empty())
        return errorAnswer(call, 400, "Client must provide a 'status' parameter with a value.");
    if (characterCount(status.text) > longestStatus)
        return errorAnswer(call, 413, "Maximum notice size is 140 characters.");
    const std::string parent = call.parameterOr("in_reply_to_status_id", "");
    if (!parent.empty()) {
        status.inReplyToStatusID = decimalNumber(parent).value_or(0);
        if (!mayAnswer(site, call, status.inReplyToStatusID))
            return errorAnswer(call, 404, "Parent notice not found.");
    }
    if (site.statuses.hasSameText(status.userID, status.text, status.createdAt - duplicateSeconds))
        return errorAnswer(call,
            400,
            "Too many duplicate messages too quickly; take a breather and post again in a few minutes.");
    Transaction transaction(site.database);
    const auto added = site.statuses.withID(site.statuses.add(status));
    transaction.commit();
    return added ? statusAnswer(site, call, *added)
                 : errorAnswer(call, 500, "The notice could not be stored.");
}

Answer destroyStatus(Site& site, const Call& call)
{
    const FoundStatus found = findStatus(site, call);
    if (!found.status)
        return found.refusal;
    if (found.status->userID != call.viewerID())
        return errorAnswer(call, 403, "You may not delete another user's status.");
    Answer answer = statusAnswer(site, call, *found.status);
    Transaction transaction(site.database);
    site.statuses.remove(found.status->id);
    transaction.commit();
    return answer;
}

Answer createFavorite(Site& site, const Call& call)
{
    const FoundStatus found = findStatus(site, call);
    if (!found.status)
        return found.refusal;
    if (site.statuses.isFavorite(call.viewerID(), found.status->id))
        return errorAnswer(call, 403, "You have already favorited this!");
    site.statuses.addFavorite(call.viewerID(), found.status->id);
    return statusAnswer(site, call, *found.status);
}

Answer destroyFavorite(Site& site, const Call& call)
{
    const FoundStatus found = findStatus(site, call);
    if (!found.status)
        return found.refusal;
    if (!site.statuses.isFavorite(call.viewerID(), found.status->id))
        return errorAnswer(call, 403, "That status is not a favorite.");
    site.statuses.removeFavorite(call.viewerID(), found.status->id);
    return statusAnswer(site, call, *found.status);
}

} // namespace

void addStatusRoutes(Router& router, Site& site)
{
    router.get("statuses/show/*.xml", Router::Access::Anyone, [&site](const Call& call) {
        return showStatus(site, call);
    });
    router.post("statuses/update.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return updateStatus(site, call);
    });
    router.post("statuses/destroy/*.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return destroyStatus(site, call);
    });
    router.post("favorites/create/*.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return createFavorite(site, call);
    });
    router.post("favorites/destroy/*.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return destroyFavorite(site, call);
    });
}

} // namespace localservice
