#pragma once

#include "Site.h"
#include "XmlWriter.h"

#include <map>

namespace localservice {

// Writes the documents of the REST interface as one reader sees them: “following” and “favorited” are the
// reader's. Made for one answer; a page of two hundred posts has few authors, so they are looked up once.
class RestDocuments {
public:
    RestDocuments(Site& site, std::int64_t viewer)
        : m_site(site)
        , m_viewer(viewer)
    {
    }

    [[nodiscard]] std::string status(const Status& status);
    [[nodiscard]] std::string statuses(const std::vector<Status>& statuses);
    [[nodiscard]] std::string user(const User& user);
    [[nodiscard]] std::string users(const std::vector<User>& users);
    [[nodiscard]] std::string directMessage(const DirectMessage& message);
    [[nodiscard]] std::string directMessages(const std::vector<DirectMessage>& messages);

    // The text as a piece of HTML with its links, people and tags linked.
    [[nodiscard]] std::string html(std::string_view text);

private:
    struct Person {
        User user;
        UserCounts counts;
        bool isFollowed = false;
    };
    enum class Author { Included, Omitted };
    enum class NewestStatus { Included, Omitted };

    const Person& person(std::int64_t id);
    const Person* personNamed(const std::string& screenName);
    void writeStatus(const Status& status, std::string_view attributes, Author author);
    void writePerson(std::string_view elementName,
        std::int64_t id,
        std::string_view attributes,
        NewestStatus newest);
    void writeMessage(const DirectMessage& message, std::string_view attributes);

    Site& m_site;
    std::int64_t m_viewer;
    XmlWriter m_xml;
    std::map<std::int64_t, Person> m_people;
    std::map<std::string, std::int64_t> m_idsByName; // 0: nobody has this name
};

} // namespace localservice
