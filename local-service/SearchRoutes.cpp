#include "JsonWriter.h"
#include "OutsideRoutes.h"
#include "SearchQuery.h"

#include <algorithm>
#include <map>

namespace localservice {

namespace {

constexpr std::int64_t resultsPerPage = 15;
constexpr std::int64_t mostResultsPerPage = 100;
constexpr std::int64_t trendSeconds = 14LL * 24 * 3600;
constexpr std::size_t trendCount = 10;

struct Hit {
    Status status;
    User author;
    std::optional<User> answered;
};

std::vector<Hit> findHits(Site& site, const SearchQuery& query, const Page& page)
{
    std::vector<Hit> hits;
    std::map<std::int64_t, User> people;
    for (User& user : site.users.all())
        people.emplace(user.id, std::move(user));
    std::int64_t toSkip = page.offset;
    for (Status& status : site.statuses.publicSince(0)) {
        if (status.id <= page.sinceID || std::ssize(hits) == page.count)
            break;
        const User& author = people[status.userID];
        const auto answered = people.find(status.inReplyToUserID);
        const bool isAnswer = answered != people.end();
        if (!query.matches(status, author, isAnswer ? answered->second.screenName : std::string()))
            continue;
        if (toSkip-- > 0)
            continue;
        hits.push_back(
            { std::move(status), author, isAnswer ? std::optional(answered->second) : std::nullopt });
    }
    return hits;
}

void writeHit(JsonWriter& json, const Site& site, const Hit& hit)
{
    json.beginObject();
    json.member("text", hit.status.text);
    if (hit.answered) {
        json.member("to_user_id", std::to_string(hit.answered->id));
        json.member("to_user", hit.answered->screenName);
    } else {
        json.null("to_user_id");
        json.null("to_user");
    }
    json.member("from_user", hit.author.screenName);
    json.member("id", std::to_string(hit.status.id));
    json.member("from_user_id", std::to_string(hit.author.id));
    json.member("iso_language_code", "en");
    json.member("source", hit.status.source);
    json.member("source_link", "");
    json.member("profile_image_url", site.avatarLink(hit.author, "_normal"));
    json.member("created_at", searchDate(hit.status.createdAt));
    json.endObject();
}

Answer searchAnswer(Site& site, const Call& call)
{
    const std::string text = call.parameterOr("q", "");
    Page page;
    page.sinceID = call.numberOr("since_id", 0);
    page.count = std::clamp<std::int64_t>(call.numberOr("rpp", resultsPerPage), 1, mostResultsPerPage);
    const std::int64_t number = std::clamp<std::int64_t>(call.numberOr("page", 1), 1, 1'000'000);
    page.offset = (number - 1) * page.count;
    const std::vector<Hit> hits = findHits(site, SearchQuery(text), page);
    const std::int64_t newest = hits.empty() ? page.sinceID : hits.front().status.id;

    JsonWriter json;
    json.beginObject();
    json.beginArray("results");
    for (const Hit& hit : hits)
        writeHit(json, site, hit);
    json.endArray();
    json.member("since_id", page.sinceID);
    json.member("max_id", newest);
    json.member("refresh_url", "?since_id=" + std::to_string(newest) + "&q=" + percentEncoded(text));
    json.member("results_per_page", page.count);
    json.member("page", number);
    json.member("query", percentEncoded(text));
    json.endObject();
    return jsonAnswer(json.take());
}

Answer trendsAnswer(Site& site)
{
    // Tags that differ only in case are one; the spelling of the newest post is shown.
    std::map<QString, std::pair<std::string, int>> counts;
    for (const Status& status : site.statuses.publicSince(currentTime() - trendSeconds)) {
        for (const TextPiece& piece : piecesOfText(status.text)) {
            if (piece.kind != TextPiece::Kind::Hashtag)
                continue;
            auto& entry = counts[QString::fromStdString(piece.text).toCaseFolded()];
            if (entry.first.empty())
                entry.first = piece.text;
            ++entry.second;
        }
    }
    std::vector<std::pair<std::string, int>> tags;
    tags.reserve(counts.size());
    for (const auto& [key, entry] : counts)
        tags.push_back(entry);
    std::stable_sort(tags.begin(), tags.end(), [](const auto& a, const auto& b) {
        return a.second > b.second;
    });
    tags.resize(std::min(tags.size(), trendCount));

    JsonWriter json;
    json.beginObject();
    json.beginArray("trends");
    for (const auto& [name, count] : tags) {
        json.beginObject();
        json.member("name", name);
        json.member("url", site.addresses.http + "/tag/" + percentEncoded(name.substr(1)));
        json.endObject();
    }
    json.endArray();
    json.member("as_of", searchDate(currentTime()));
    json.endObject();
    return jsonAnswer(json.take());
}

} // namespace

void addSearchRoutes(Router& router, Site& site)
{
    router.get("search.json", Router::Access::Anyone, [&site](const Call& call) {
        return searchAnswer(site, call);
    });
    router.get("trends.json", Router::Access::Anyone, [&site](const Call&) { return trendsAnswer(site); });
}

} // namespace localservice
