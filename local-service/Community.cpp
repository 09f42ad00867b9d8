#include "Community.h"

#include "OutsideServices.h"
#include "Scene.h"
#include "Site.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <sstream>

namespace localservice {

namespace {

constexpr std::int64_t minute = 60;
constexpr std::int64_t day = 24LL * 60 * minute;

struct ScriptedPost {
    std::string author;
    std::string text;
    std::size_t answered = 0; // 1 + index of the post it answers
    bool isDeleted = false;
    std::vector<std::string> admirers;
    std::int64_t secondsAgo = 0;
    std::int64_t id = 0;
};

using UserTable = std::map<std::string, User, std::less<>>;

std::vector<std::string> lines(std::string_view text)
{
    std::vector<std::string> lines;
    std::istringstream stream { std::string(text) };
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// Like std::generate_canonical, but the same with every library, so that the community is the same
// everywhere.
double fraction(std::mt19937& random)
{
    return static_cast<double>(random() >> 5U) / static_cast<double>(1U << 27U);
}

std::vector<ScriptedPost> readPosts()
{
    std::vector<ScriptedPost> posts;
    std::size_t first = 0;
    for (const std::string& line : lines(communityPosts())) {
        if (line.empty())
            continue;
        if (line.starts_with("* ")) {
            posts.back().admirers = words(line.substr(2));
            continue;
        }
        const std::size_t name = line.find_first_not_of("x>^ ");
        const std::string marks = line.starts_with("x") || line.starts_with(">") || line.starts_with("^")
            ? line.substr(0, name)
            : std::string();
        const std::size_t colon = line.find(": ", marks.size());
        ScriptedPost post;
        post.author = line.substr(marks.size(), colon - marks.size());
        post.text = replacingAll(line.substr(colon + 2), "\\n", "\n");
        post.isDeleted = marks.find('x') != std::string::npos;
        if (marks.find('>') != std::string::npos)
            post.answered = posts.size();
        else if (marks.find('^') != std::string::npos)
            post.answered = first + 1;
        else
            first = posts.size();
        posts.push_back(std::move(post));
    }
    return posts;
}

// Walks from the newest talk back into the past. Talks begin some tens of minutes apart, farther at night,
// and their answers follow within the hour, so that talks overlap as they do in life.
void giveTimes(std::vector<ScriptedPost>& posts)
{
    std::mt19937 random(20081127);
    std::int64_t ago = 4 * minute;
    for (std::size_t end = posts.size(); end > 0;) {
        std::size_t begin = end - 1;
        while (posts[begin].answered != 0)
            --begin;
        std::int64_t time = ago;
        for (std::size_t i = end; i-- > begin;) {
            posts[i].secondsAgo = time;
            const double patience = fraction(random);
            time += 40 + static_cast<std::int64_t>(patience * patience * 14 * minute);
        }
        const std::int64_t hour = ago % day / (60 * minute);
        const double quiet = hour >= 9 && hour < 15 ? 3.0 : 1.0;
        ago += 90 + static_cast<std::int64_t>(-std::log(1.0 - fraction(random)) * 22 * quiet * minute);
        end = begin;
    }
}

UserTable addPeople(Site& site, std::int64_t now)
{
    UserTable table;
    for (const Person& person : communityPeople()) {
        User user;
        user.screenName = person.screenName;
        user.password = person.password;
        user.name = person.name;
        user.location = person.location;
        user.description = person.description;
        user.url = person.url;
        user.hasAvatar = person.hasAvatar;
        user.isProtected = person.isProtected;
        user.createdAt = now - (365LL * person.yearsHere + 11 * std::ssize(table)) * day;
        user.id = site.users.add(user);
        table.emplace(user.screenName, user);
    }
    for (const std::string& line : lines(communityFollows())) {
        const std::size_t colon = line.find(':');
        const User& follower = table.at(line.substr(0, colon));
        for (const std::string& followed : words(line.substr(colon + 1)))
            site.users.follow(follower, table.at(followed), true);
    }
    return table;
}

std::string sourceFor(const std::string& author)
{
    static const std::map<std::string_view, std::string_view> sources { { "alice", "pelinor" },
        { "weatherbell", "cron" },
        { "dave", "sms" },
        { "tendai", "curl" },
        { "noa", "pelinor" },
        { "kwame", "sms" } };
    const auto found = sources.find(author);
    return std::string(found == sources.end() ? "web" : found->second);
}

std::string uploadedScene(Site& site, const std::string& folder, const std::string& name, const User& author)
{
    const bool isMovie = folder == movieFolder;
    const std::string code = site.media.add(folder,
        author.id,
        isMovie ? "video/x-msvideo" : "image/png",
        isMovie ? drawnMovie() : drawnScene(name));
    return site.addresses.http + "/" + folder + "/" + code + (isMovie ? "z" : "");
}

// Puts real links in the place of “{service what}”: a short link for an address, an upload for a picture's
// name.
std::string withLinks(Site& site, std::string text, const User& author)
{
    for (std::size_t begin = text.find('{'); begin != std::string::npos; begin = text.find('{', begin + 1)) {
        const std::size_t blank = text.find(' ', begin);
        const std::size_t end = text.find('}', begin);
        if (end == std::string::npos || blank > end)
            break;
        const std::string folder = text.substr(begin + 1, blank - begin - 1);
        const std::string what = text.substr(blank + 1, end - blank - 1);
        const std::string link = what.find("://") == std::string::npos
            ? uploadedScene(site, folder, what, author)
            : site.addresses.http + "/" + folder + "/" + site.shortLinks.codeFor(folder, what);
        text.replace(begin, end - begin + 1, link);
    }
    return text;
}

void addPosts(Site& site, const UserTable& people, std::int64_t now)
{
    std::vector<ScriptedPost> posts = readPosts();
    giveTimes(posts);
    std::vector<std::size_t> order(posts.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return posts[a].secondsAgo > posts[b].secondsAgo;
    });
    for (const std::size_t index : order) {
        ScriptedPost& post = posts[index];
        Status status;
        const User& author = people.at(post.author);
        status.userID = author.id;
        status.text = withLinks(site, post.text, author);
        status.source = sourceFor(post.author);
        status.inReplyToStatusID = post.answered ? posts[post.answered - 1].id : 0;
        status.createdAt = now - post.secondsAgo;
        post.id = site.statuses.add(status);
        for (const std::string& admirer : post.admirers)
            site.statuses.addFavorite(people.at(admirer).id, post.id);
    }
    for (const ScriptedPost& post : posts) {
        if (post.isDeleted)
            site.statuses.remove(post.id);
    }
}

void addMessages(Site& site, const UserTable& people, std::int64_t now)
{
    // The times are found from the newest message back.
    std::vector<std::string> script = lines(communityMessages());
    std::reverse(script.begin(), script.end());
    std::vector<DirectMessage> messages;
    std::mt19937 random(1908);
    std::int64_t ago = 35 * minute;
    for (const std::string& line : script) {
        if (line.empty()) {
            ago += static_cast<std::int64_t>((4 + 14 * fraction(random)) * 60 * minute);
            continue;
        }
        const std::size_t arrow = line.find(" > ");
        const std::size_t colon = line.find(": ");
        DirectMessage message;
        message.senderID = people.at(line.substr(0, arrow)).id;
        message.recipientID = people.at(line.substr(arrow + 3, colon - arrow - 3)).id;
        message.text = line.substr(colon + 2);
        message.createdAt = now - ago;
        messages.push_back(std::move(message));
        ago += minute + static_cast<std::int64_t>(fraction(random) * 25 * minute);
    }
    std::reverse(messages.begin(), messages.end());
    for (const DirectMessage& message : messages)
        site.messages.add(message);
}

} // namespace

void addCommunity(Site& site, std::int64_t now)
{
    const auto lock = site.database.lock();
    Transaction transaction(site.database);
    const UserTable people = addPeople(site, now);
    addPosts(site, people, now);
    addMessages(site, people, now);
    transaction.commit();
}

} // namespace localservice
