#pragma once

#include "Site.h"
#include "Text.h"

#include <functional>

namespace localservice {

// One file or field of a multipart body.
struct BodyPart {
    std::string name;
    std::string contentType;
    std::string content;
};

// A request as the routes see it.
struct Call {
    std::string method;
    std::string path; // decoded, without the query
    std::string target; // as asked for, with the query
    std::string authorization;
    Parameters parameters; // of the query and of a form body
    std::vector<BodyPart> parts;

    // Filled in by the router.
    std::string argument; // what stood at the last “*” of the route's pattern
    std::optional<User> viewer;

    [[nodiscard]] std::optional<std::string> parameter(std::string_view name) const;
    [[nodiscard]] std::string parameterOr(std::string_view name, std::string_view otherwise) const;
    [[nodiscard]] std::int64_t numberOr(std::string_view name, std::int64_t otherwise) const;
    [[nodiscard]] const BodyPart* part(std::string_view name) const;
    [[nodiscard]] std::int64_t viewerID() const { return viewer ? viewer->id : 0; }
    // since_id, max_id, count and page. The pages 0 and 1 are both the first.
    [[nodiscard]] Page page(std::int64_t defaultCount = 20) const;
};

struct Answer {
    int status = 200;
    std::string contentType;
    std::string body;
    Parameters headers;
};

[[nodiscard]] Answer xmlAnswer(std::string body);
[[nodiscard]] Answer jsonAnswer(std::string body);
[[nodiscard]] Answer htmlAnswer(int status, std::string_view title, std::string_view body);
[[nodiscard]] Answer textAnswer(std::string body);
[[nodiscard]] Answer redirectAnswer(const std::string& target);
// The interface's error document.
[[nodiscard]] Answer errorAnswer(const Call& call, int status, std::string_view message);

// Finds the handler for a request. A “*” in a pattern stands for a part of one piece of the path, never
// empty. The first route that fits is taken; handlers run under the database's lock, one at a time.
class Router {
public:
    enum class Access { Anyone, SignedIn };
    using Handler = std::function<Answer(const Call&)>;

    explicit Router(Site& site)
        : m_site(site)
    {
    }

    void get(std::string pattern, Access access, Handler handler);
    void post(std::string pattern, Access access, Handler handler);

    [[nodiscard]] Answer answer(Call call) const;

private:
    struct Route {
        std::string method;
        std::string pattern;
        Access access;
        Handler handler;
    };

    [[nodiscard]] bool signIn(Call& call) const;

    Site& m_site;
    std::vector<Route> m_routes;
};

} // namespace localservice
