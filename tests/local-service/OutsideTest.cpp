#include "LocalServiceFixture.h"
#include "Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <gmock/gmock.h>
#include <set>

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

QJsonObject json(const std::string& body)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(body), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << body;
    return document.object();
}

} // namespace

// Reaches the outside services the way a client does: through the table of hosts.
class OutsideTest : public LocalServiceTest {
protected:
    [[nodiscard]] static std::string host(const char* key)
    {
        const QSettings table(QString::fromStdString(service().running().servicesFile), QSettings::IniFormat);
        const auto value
            = table.value(QStringLiteral("ServiceHosts/") + QLatin1String(key)).toString().toStdString();
        EXPECT_FALSE(value.empty()) << key;
        return value;
    }

    // The address of a service that speaks plain HTTP.
    [[nodiscard]] static std::string at(const char* key) { return "http://" + host(key); }

    [[nodiscard]] static Reply replyOf(const httplib::Result& result)
    {
        return result ? Reply { result->status, result->body, result->headers } : Reply {};
    }

    // Asks for a whole address, without following redirects.
    [[nodiscard]] static Reply get(const std::string& address)
    {
        const std::size_t path = address.find('/', address.find("://") + 3);
        return replyOf(httplib::Client(address.substr(0, path)).Get(address.substr(path)));
    }

    template <class Form>
    [[nodiscard]] static Reply post(const std::string& address, const Form& form)
    {
        const std::size_t path = address.find('/', address.find("://") + 3);
        httplib::Client client(address.substr(0, path));
        client.set_ca_cert_path(service().running().authorityFile.c_str());
        return replyOf(client.Post(address.substr(path), form));
    }

    static std::vector<std::string> found(const std::string& query)
    {
        const Reply reply = get(at("SearchHost") + "/search.json?" + query);
        EXPECT_EQ(reply.status, 200) << reply.body;
        std::vector<std::string> ids;
        for (const auto& result : json(reply.body)[QLatin1String("results")].toArray())
            ids.push_back(result.toObject()[QLatin1String("id")].toString().toStdString());
        return ids;
    }
};

namespace {

std::string encoded(const std::string& text)
{
    return localservice::percentEncoded(text);
}

} // namespace

TEST_F(OutsideTest, SearchFindsAllTermsNewestFirstAndInPages)
{
    const std::string first = std::to_string(alice().update("Zebrafinch number one, Übung #Täg @bob"));
    const std::string second = std::to_string(
        bob().update("@alice zebrafinch & <number> two http://example.org/x", std::stoll(first)));
    Caller(service(), "priya", "fourteenacross").update("zebrafinch for friends only");

    const struct {
        const char* query;
        std::vector<std::string> ids;
    } cases[] = {
        { "zebrafinch", { second, first } },
        { "ZEBRAFINCH one", { first } },
        { "übung zebrafinch", { first } },
        { "#täg", { first } },
        { "zebrafinch @bob", { first } },
        { "zebrafinch from:bob", { second } },
        { "zebrafinch to:alice", { second } },
        { "zebrafinch -one", { second } },
        { "zebrafinch one OR two", { second, first } },
        { "\"zebrafinch number\"", { first } },
        { "\"number zebrafinch\"", {} },
        { "zebrafinch' OR '1'='1", {} },
        { "", {} },
        { "\"", {} },
    };
    for (const auto& c : cases)
        EXPECT_EQ(found("q=" + encoded(c.query)), c.ids) << c.query;
    EXPECT_EQ(found("q=e").size(), 15U);
    EXPECT_EQ(found("q=e&rpp=1000").size(), 100U);
    const Reply reply = get(at("SearchHost") + "/search.json?q=zebrafinch%20two");
    const QJsonObject hit = json(reply.body)[QLatin1String("results")].toArray().first().toObject();
    EXPECT_EQ(hit[QLatin1String("to_user")].toString(), QStringLiteral("alice"));
    EXPECT_EQ(get(hit[QLatin1String("profile_image_url")].toString().toStdString()).status, 200);
}

TEST_F(OutsideTest, TrendsAreTheTagsOfTheCommunity)
{
    std::set<std::string> names;
    for (const auto& trend :
        json(get(at("SearchHost") + "/trends.json").body)[QLatin1String("trends")].toArray()) {
        const std::string name = trend.toObject()[QLatin1String("name")].toString().toStdString();
        EXPECT_THAT(name, StartsWith("#"));
        EXPECT_FALSE(found("q=" + encoded(name)).empty()) << name;
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_EQ(names.size(), 10U);
    EXPECT_EQ(names.count("#letterpress"), 1U);
}

TEST_F(OutsideTest, ShortLinksLeadBackAndAreMadeOnce)
{
    const std::string target = "http://example.org/a_(b)?x=1&y=ü#z";
    const std::pair<const char*, const char*> services[] = {
        { "IsGd", "/api.php?longurl=" },
        { "TinyURL", "/api-create.php?url=" },
        { "TrIm", "/api/trim_simple?url=" },
    };
    for (const auto& [name, path] : services) {
        const std::string key(name);
        const std::string shorten = at((key + "APIHost").c_str()) + path + encoded(target);
        std::string link = get(shorten).body;
        EXPECT_EQ(get(shorten).body, link);
        EXPECT_THAT(link, StartsWith(at((key + "LinkHost").c_str()) + "/"));
        ASSERT_EQ(link.ends_with("\n"), key == "TrIm");
        link.erase(link.find_last_not_of('\n') + 1);
        const Reply redirect = get(link);
        EXPECT_EQ(redirect.status, 301);
        // The client library has already decoded the header.
        EXPECT_EQ(redirect.headers.find("Location")->second, target);
    }
}

TEST_F(OutsideTest, ShortenersRefuseWhatIsNoLink)
{
    const std::string bitly = at("BitlyAPIHost");
    EXPECT_THAT(get(bitly + "/shorten?login=a&apiKey=R_1&longUrl=nonsense").body, Not(HasSubstr("shortUrl")));
    EXPECT_THAT(get(bitly + "/shorten?longUrl=http://example.org/").body, HasSubstr("INVALID_LOGIN"));
    EXPECT_THAT(get(bitly + "/expand?login=a&apiKey=R_1&shortUrl=http://example.org/x").body,
        Not(HasSubstr("longUrl")));
    for (const std::string nonsense :
        { "", "javascript:alert(1)", "http://a b.example/", "http://a.example/%0d%0aX-Evil:+1" })
        EXPECT_EQ(get(at("TinyURLAPIHost") + "/api-create.php?url=" + nonsense).status, 400) << nonsense;
    EXPECT_EQ(get(at("DiggBarAPIHost") + "/url/short/create").status, 400);
    EXPECT_EQ(get(at("LongURLAPIHost") + "/v1/expand?url=http://example.org/").status, 400);
    EXPECT_EQ(get(at("ExpansionAPIHost") + "/api/v1.1?q=http://example.org/").status, 404);
    EXPECT_EQ(get(at("OtherShort1LinkHost") + "/nosuch").status, 404);
    EXPECT_THAT(get(at("TinyURLAPIHost") + "/api-create.php?url=www.example.org").body,
        StartsWith("http://"));
}

TEST_F(OutsideTest, UploadsAreKeptWithTheirKindAndNothingElseIs)
{
    const std::string picture = "\xff\xd8\xff\xe0 a picture" + std::string(100'000, '\7');
    const std::string movie = std::string("\0\0\0\024ftypqt  ", 12) + std::string(50'000, '\1');
    const auto upload = [](const std::string& address, const std::string& part, const std::string& content) {
        return post(address,
            httplib::MultipartFormDataItems { { "username", "alice", "", "" },
                { "password", "wonderland", "", "" },
                { part, content, "image.jpg", "image/jpeg" } });
    };
    const struct {
        std::string address, part, parent, element, full;
    } services[] = {
        { "https://" + host("TwitPicAPIHost") + "/api/upload", "media", "rsp", "mediaurl", "" },
        { "https://" + host("YFrogAPIHost") + "/api/upload", "media", "rsp", "mediaurl", ":iphone" },
        { at("PixImAPIHost") + "/api/pictures.xml", "picture", "picture", "picture_url", "/full" },
    };
    for (const auto& s : services) {
        SCOPED_TRACE(s.address);
        const std::string link = upload(s.address, s.part, picture).text(s.parent, s.element);
        ASSERT_FALSE(link.empty());
        EXPECT_EQ(get(link).status, 200);
        EXPECT_THAT(link, Not(EndsWith("z")));
        if (!s.full.empty()) {
            EXPECT_EQ(get(link + s.full).headers.find("Content-Type")->second, "image/jpeg");
        }
        EXPECT_THAT(upload(s.address, "other", picture).body, Not(HasSubstr(s.element)));
        EXPECT_THAT(upload(s.address, s.part, "<html>").body, Not(HasSubstr(s.element)));
        const Reply film = upload(s.address, s.part, movie);
        if (s.full != ":iphone") {
            EXPECT_THAT(film.body, Not(HasSubstr(s.element)));
            continue;
        }
        const std::string seen = film.text("rsp", "mediaurl");
        EXPECT_THAT(seen, StartsWith(at("YFrogSecondLinkHost") + "/"));
        EXPECT_EQ(get(seen + ":iphone").headers.find("Content-Type")->second, "video/quicktime");
    }
    EXPECT_EQ(get(at("YFrogLinkHost") + "/..%2f..%2fservice.sqlite:iphone").status, 404);
}

TEST_F(OutsideTest, LongPostsAreShortenedToAPostThatFits)
{
    const auto posted = [](const std::string& message, const std::string& key) {
        return post(at("TwitlongerAPIHost") + "/api_post",
            httplib::Params { { "application", "pelinordesktop" },
                { "api_key", key },
                { "username", "alice" },
                { "message", message } });
    };
    std::string text;
    for (int i = 0; i < 4000; ++i)
        text += "wört & <" + std::to_string(i) + "> = ";
    const Reply stored = posted(text, "key");
    ASSERT_EQ(stored.status, 200);
    const std::string content = stored.text("post", "content");
    EXPECT_LE(QString::fromStdString(content).size(), 140);
    EXPECT_THAT(content, StartsWith("wört & <0> = wört & <1>"));
    EXPECT_THAT(content, EndsWith("… " + stored.text("post", "short")));
    for (const char* element : { "link", "short" })
        EXPECT_THAT(get(stored.text("post", element)).body, HasSubstr("wört &amp; &lt;3999&gt; ="));
    EXPECT_FALSE(stored.text("post", "id").empty());
    EXPECT_EQ(posted("", "key").status, 400);
    EXPECT_EQ(posted(text, "").status, 403);
    const std::string oneWord = posted(std::string(500, 'x'), "key").text("post", "content");
    EXPECT_LE(QString::fromStdString(oneWord).size(), 140);

    const Reply shrunk = get(at("TweetshrinkAPIHost") + "/shrink?format=xml&text="
        + encoded("Thanks to you, @tomorrow! See http://to.example/for  later."));
    EXPECT_EQ(shrunk.text("tweetshrink", "text"), "thx 2 u, @tomorrow! c http://to.example/for l8r.");
}

TEST_F(OutsideTest, LinksOfTheCommunityWork)
{
    int pictures = 0;
    int movies = 0;
    int redirects = 0;
    for (int page = 1; page <= 3; ++page) {
        const Reply timeline
            = alice().get("/statuses/home_timeline.xml?count=200&page=" + std::to_string(page));
        for (const std::string& text : timeline.texts("status", "text")) {
            const std::size_t begin = text.find("http://127.0.0.1:");
            if (begin == std::string::npos)
                continue;
            const std::string link = text.substr(begin, text.find_first_of(" \n", begin) - begin);
            const Reply reply = get(link);
            redirects += reply.status == 301;
            movies += link.ends_with("z") && get(link + ":iphone").body.starts_with("RIFF");
            pictures += reply.body.find("<img") != std::string::npos;
            EXPECT_LT(reply.status, 400) << text;
        }
    }
    EXPECT_GE(pictures, 8);
    EXPECT_EQ(movies, 1);
    EXPECT_GE(redirects, 8);
}
