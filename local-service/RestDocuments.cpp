#include "RestDocuments.h"

#include "Text.h"

namespace localservice {

namespace {

constexpr std::string_view statusNamespace = R"(xmlns:statusnet="http://status.net/schema/api/1/")";
constexpr std::string_view listAttributes
    = R"(type="array" xmlns:statusnet="http://status.net/schema/api/1/")";

std::string anchor(std::string_view target, std::string_view text, std::string_view more)
{
    return "<a href=\"" + escapedMarkup(target) + "\"" + std::string(more) + ">" + escapedMarkup(text)
        + "</a>";
}

} // namespace

const RestDocuments::Person& RestDocuments::person(std::int64_t id)
{
    const auto known = m_people.find(id);
    if (known != m_people.end())
        return known->second;
    Person person;
    person.user = m_site.users.withID(id).value_or(User {});
    person.counts = m_site.users.counts(id);
    person.isFollowed = m_viewer != 0 && (m_viewer == id || m_site.users.isFollowing(m_viewer, id));
    return m_people.emplace(id, std::move(person)).first->second;
}

const RestDocuments::Person* RestDocuments::personNamed(const std::string& screenName)
{
    const std::string key = asciiLowercase(screenName);
    auto known = m_idsByName.find(key);
    if (known == m_idsByName.end()) {
        const auto user = m_site.users.withScreenName(screenName);
        known = m_idsByName.emplace(key, user ? user->id : 0).first;
    }
    return known->second ? &person(known->second) : nullptr;
}

std::string RestDocuments::html(std::string_view text)
{
    std::string html;
    for (const TextPiece& piece : piecesOfText(text)) {
        const std::string bare = piece.text.substr(std::min<std::size_t>(1, piece.text.size()));
        switch (piece.kind) {
        case TextPiece::Kind::Plain:
            html += escapedMarkup(piece.text);
            break;
        case TextPiece::Kind::Link:
            html += anchor(piece.text.starts_with("www.") ? "http://" + piece.text : piece.text,
                piece.text,
                " rel=\"nofollow external\"");
            break;
        case TextPiece::Kind::Hashtag:
            html
                += "#" + anchor(m_site.addresses.http + "/tag/" + percentEncoded(bare), bare, " rel=\"tag\"");
            break;
        case TextPiece::Kind::Mention:
            if (const Person* mentioned = personNamed(bare))
                html += "@"
                    + anchor(m_site.profileLink(mentioned->user), bare, " class=\"h-card u-url mention\"");
            else
                html += escapedMarkup(piece.text);
            break;
        }
    }
    return html;
}

void RestDocuments::writePerson(std::string_view elementName,
    std::int64_t id,
    std::string_view attributes,
    NewestStatus newest)
{
    const Person& someone = person(id);
    const User& user = someone.user;
    m_xml.beginElement(elementName, attributes);
    m_xml.element("id", user.id);
    m_xml.element("name", user.name);
    m_xml.element("screen_name", user.screenName);
    m_xml.element("location", user.location);
    m_xml.element("description", user.description);
    m_xml.element("profile_image_url", m_site.avatarLink(user, "_normal"));
    m_xml.element("profile_image_url_https",
        replacingAll(m_site.avatarLink(user, "_normal"), m_site.addresses.http, m_site.addresses.https));
    m_xml.element("profile_image_url_profile_size", m_site.avatarLink(user, "_bigger"));
    m_xml.element("profile_image_url_original", m_site.avatarLink(user, ""));
    m_xml.element("groups_count", std::int64_t { 0 });
    m_xml.element("linkcolor", false);
    m_xml.element("backgroundcolor", false);
    m_xml.element("url", user.url);
    m_xml.element("protected", user.isProtected);
    m_xml.element("followers_count", someone.counts.followers);
    m_xml.element("friends_count", someone.counts.following);
    m_xml.element("created_at", restDate(user.createdAt));
    m_xml.element("utc_offset", std::int64_t { 0 });
    m_xml.element("time_zone", "UTC");
    m_xml.element("statuses_count", someone.counts.statuses);
    m_xml.element("following", someone.isFollowed);
    m_xml.element("statusnet:blocking", false);
    m_xml.element("notifications", someone.isFollowed);
    if (newest == NewestStatus::Included && m_site.users.maySee(m_viewer, user)) {
        if (const auto status = m_site.statuses.newestOf(id))
            writeStatus(*status, {}, Author::Omitted);
    }
    m_xml.element("statusnet:profile_url", m_site.profileLink(user));
    m_xml.element("favourites_count", someone.counts.favorites);
    m_xml.endElement();
}

void RestDocuments::writeStatus(const Status& status, std::string_view attributes, Author author)
{
    const std::int64_t answered = status.inReplyToUserID;
    m_xml.beginElement("status", attributes);
    m_xml.element("text", status.text);
    m_xml.element("truncated", false);
    m_xml.element("created_at", restDate(status.createdAt));
    m_xml.identifier("in_reply_to_status_id", status.inReplyToStatusID);
    m_xml.element("uri",
        "tag:localhost," + isoDate(status.createdAt).substr(0, 10) + ":noticeId=" + std::to_string(status.id)
            + ":objectType=" + (status.inReplyToStatusID ? "comment" : "note"));
    m_xml.element("source", status.source);
    m_xml.element("source_link", "");
    m_xml.element("id", status.id);
    m_xml.identifier("in_reply_to_user_id", answered);
    m_xml.element("in_reply_to_screen_name", answered ? person(answered).user.screenName : std::string());
    m_xml.element("geo", "");
    if (author == Author::Included)
        writePerson("user", status.userID, {}, NewestStatus::Omitted);
    m_xml.element("statusnet:html", html(status.text));
    m_xml.element("statusnet:conversation_id", status.conversationID);
    m_xml.element("favorited", m_viewer != 0 && m_site.statuses.isFavorite(m_viewer, status.id));
    m_xml.element("repeated", false);
    m_xml.endElement();
}

void RestDocuments::writeMessage(const DirectMessage& message, std::string_view attributes)
{
    m_xml.beginElement("direct_message", attributes);
    m_xml.element("id", message.id);
    m_xml.element("sender_id", message.senderID);
    m_xml.element("text", message.text);
    m_xml.element("recipient_id", message.recipientID);
    m_xml.element("created_at", restDate(message.createdAt));
    m_xml.element("sender_screen_name", person(message.senderID).user.screenName);
    m_xml.element("recipient_screen_name", person(message.recipientID).user.screenName);
    writePerson("sender", message.senderID, {}, NewestStatus::Omitted);
    writePerson("recipient", message.recipientID, {}, NewestStatus::Omitted);
    m_xml.endElement();
}

std::string RestDocuments::status(const Status& status)
{
    writeStatus(status, statusNamespace, Author::Included);
    return m_xml.take();
}

std::string RestDocuments::statuses(const std::vector<Status>& statuses)
{
    m_xml.beginElement("statuses", listAttributes);
    for (const Status& status : statuses)
        writeStatus(status, {}, Author::Included);
    m_xml.endElement();
    return m_xml.take();
}

std::string RestDocuments::user(const User& user)
{
    writePerson("user", user.id, statusNamespace, NewestStatus::Included);
    return m_xml.take();
}

std::string RestDocuments::users(const std::vector<User>& users)
{
    m_xml.beginElement("users", listAttributes);
    for (const User& user : users)
        writePerson("user", user.id, {}, NewestStatus::Included);
    m_xml.endElement();
    return m_xml.take();
}

std::string RestDocuments::directMessage(const DirectMessage& message)
{
    writeMessage(message, statusNamespace);
    return m_xml.take();
}

std::string RestDocuments::directMessages(const std::vector<DirectMessage>& messages)
{
    m_xml.beginElement("direct-messages", listAttributes);
    for (const DirectMessage& message : messages)
        writeMessage(message, {});
    m_xml.endElement();
    return m_xml.take();
}

} // namespace localservice
