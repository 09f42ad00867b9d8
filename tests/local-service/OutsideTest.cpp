#include "LocalServiceFixture.h"
#include "Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <gmock/gmock.h>
#include <map>
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

    // Asks for a whole address, without following redirects.
    [[nodiscard]] static Reply get(const std::string& address)
    {
        const std::size_t path = address.find('/', address.find("://") + 3);
        httplib::Client client(address.substr(0, path));
        const auto result = client.Get(address.substr(path));
        return result ? Reply { result->status, result->body, result->headers } : Reply {};
    }

    static std::vector<std::string> found(const std::string& query)
    {
        const Reply reply = get("http://" + host("SearchHost") + "/search.json?" + query);
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
    EXPECT_EQ(found("q=zebrafinch&since_id=" + first), std::vector { second });
    EXPECT_EQ(found("q=zebrafinch&rpp=1&page=2"), std::vector { first });
    EXPECT_EQ(found("q=e").size(), 15U);
    EXPECT_EQ(found("q=e&rpp=1000").size(), 100U);

    const Reply reply = get("http://" + host("SearchHost") + "/search.json?q=zebrafinch%20two");
    const QJsonObject hit = json(reply.body)[QLatin1String("results")].toArray().first().toObject();
    EXPECT_EQ(hit[QLatin1String("text")].toString(),
        QStringLiteral("@alice zebrafinch & <number> two http://example.org/x"));
    EXPECT_EQ(hit[QLatin1String("from_user")].toString(), QStringLiteral("bob"));
    EXPECT_EQ(hit[QLatin1String("to_user")].toString(), QStringLiteral("alice"));
    EXPECT_EQ(get(hit[QLatin1String("profile_image_url")].toString().toStdString()).status, 200);
    const QString date = hit[QLatin1String("created_at")].toString();
    EXPECT_TRUE(
        QLocale::c().toDateTime(date.chopped(6), QStringLiteral("ddd, dd MMM yyyy HH:mm:ss")).isValid())
        << date.toStdString();
    EXPECT_THAT(date.toStdString(), EndsWith(" +0000"));
}

TEST_F(OutsideTest, TrendsAreTheTagsOfTheCommunity)
{
    std::set<std::string> names;
    for (const auto& trend :
        json(get("http://" + host("SearchHost") + "/trends.json").body)[QLatin1String("trends")].toArray()) {
        const std::string name = trend.toObject()[QLatin1String("name")].toString().toStdString();
        EXPECT_THAT(name, StartsWith("#"));
        EXPECT_FALSE(found("q=" + encoded(name)).empty()) << name;
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_EQ(names.size(), 10U);
    EXPECT_EQ(names.count("#letterpress"), 1U);
}

TEST_F(OutsideTest, ShortLinksLeadBackAndExpand)
{
    const std::string target = "http://example.org/a_(b)?x=1&y=ü#z";
    const std::string account = "version=2.0.1&login=pelinorapp&apiKey=R_0&format=json&";
    const auto url = [](const std::string& link) { return encoded(link); };

    const QJsonObject bitly
        = json(get("http://" + host("BitlyAPIHost") + "/shorten?" + account + "longUrl=" + url(target)).body);
    std::map<std::string, std::string> links;
    links["Bitly"] = bitly[QLatin1String("results")]
                         .toObject()
                         .begin()
                         ->toObject()[QLatin1String("shortUrl")]
                         .toString()
                         .toStdString();
    links["TinyURL"] = get("http://" + host("TinyURLAPIHost") + "/api-create.php?url=" + url(target)).body;
    links["IsGd"] = get("http://" + host("IsGdAPIHost") + "/api.php?longurl=" + url(target)).body;
    const std::string trim
        = get("http://" + host("TrImAPIHost") + "/api/trim_simple?url=" + url(target)).body;
    ASSERT_THAT(trim, EndsWith("\n"));
    links["TrIm"] = trim.substr(0, trim.size() - 1);
    for (const auto& [service, link] : links)
        EXPECT_THAT(link, StartsWith("http://" + host((service + "LinkHost").c_str()) + "/"));

    const std::string digg
        = get("http://" + host("DiggBarAPIHost") + "/url/short/create?appkey=http://a.b/&url=" + url(target))
              .body;
    const std::size_t begin = digg.find("short_url=\"") + 11;
    links["DiggBar"] = digg.substr(begin, digg.find('"', begin) - begin);

    for (const auto& [service, link] : links) {
        SCOPED_TRACE(service);
        const Reply redirect = get(link);
        EXPECT_EQ(redirect.status, 301);
        // The client library has already decoded the header.
        EXPECT_EQ(redirect.headers.find("Location")->second, target);

        const QJsonObject longURL
            = json(get("http://" + host("LongURLAPIHost") + "/v1/expand?format=json&url=" + url(link)).body);
        EXPECT_EQ(longURL[QLatin1String("long_url")].toString().toStdString(), target);
        const QJsonObject plain
            = json(get("http://" + host("ExpansionAPIHost") + "/api/v1.1?q=" + url(link)).body);
        EXPECT_EQ(plain.size(), 1);
        EXPECT_EQ(plain[QString::fromStdString(link)].toString().toStdString(), target);
        EXPECT_THAT(
            get("http://" + host("BitlyAPIHost") + "/expand?" + account + "shortUrl=" + url(link)).body,
            HasSubstr("\"longUrl\":\"" + target + "\""));
    }
    EXPECT_EQ(get("http://" + host("IsGdAPIHost") + "/api.php?longurl=" + url(target)).body, links["IsGd"]);
}

TEST_F(OutsideTest, ShortenersRefuseWhatIsNoLink)
{
    const std::string bitly = "http://" + host("BitlyAPIHost");
    EXPECT_THAT(get(bitly + "/shorten?login=a&apiKey=R_1&longUrl=nonsense").body, Not(HasSubstr("shortUrl")));
    EXPECT_THAT(get(bitly + "/shorten?longUrl=http://example.org/").body, HasSubstr("INVALID_LOGIN"));
    EXPECT_THAT(get(bitly + "/expand?login=a&apiKey=R_1&shortUrl=http://example.org/x").body,
        Not(HasSubstr("longUrl")));
    for (const std::string nonsense :
        { "", "javascript:alert(1)", "http://a b.example/", "http://a.example/%0d%0aX-Evil:+1" })
        EXPECT_EQ(get("http://" + host("TinyURLAPIHost") + "/api-create.php?url=" + nonsense).status, 400)
            << nonsense;
    EXPECT_EQ(get("http://" + host("DiggBarAPIHost") + "/url/short/create").status, 400);
    EXPECT_EQ(get("http://" + host("LongURLAPIHost") + "/v1/expand?url=http://example.org/").status, 400);
    EXPECT_EQ(get("http://" + host("ExpansionAPIHost") + "/api/v1.1?q=http://example.org/").status, 404);
    EXPECT_EQ(get("http://" + host("OtherShort1LinkHost") + "/nosuch").status, 404);
    EXPECT_THAT(get("http://" + host("TinyURLAPIHost") + "/api-create.php?url=www.example.org").body,
        StartsWith("http://"));
}

TEST_F(OutsideTest, UploadsComeBackAtTheirLinks)
{
    const std::string picture = std::string("\xff\xd8\xff\xe0 a picture") + std::string(100'000, '\7');
    const std::string movie = std::string("\0\0\0\x14"
                                          "ftypqt  ",
                                  12)
        + std::string(50'000, '\1');
    const auto upload = [](const std::string& key,
                            const std::string& path,
                            const std::string& part,
                            const std::string& password,
                            const std::string& content) {
        const bool isSecure = key == "TwitPic" || key == "YFrog";
        const std::string address = host((key + "APIHost").c_str());
        const std::size_t slash = address.find('/');
        httplib::Client client((isSecure ? "https://" : "http://") + address.substr(0, slash));
        client.set_ca_cert_path(service().running().authorityFile.c_str());
        const auto result = client.Post(address.substr(slash) + path,
            httplib::MultipartFormDataItems { { "username", "alice", "", "" },
                { "password", password, "", "" },
                { "source", "pelinor", "", "" },
                { part, content, "image.jpg", "image/jpeg" } });
        return result ? Reply { result->status, result->body, result->headers } : Reply {};
    };
    const struct {
        const char* key;
        const char* path;
        const char* part;
        const char* element;
        std::function<std::string(const std::string&)> full;
    } services[] = {
        { "TwitPic",
            "/api/upload",
            "media",
            "mediaurl",
            [](const std::string& link) {
                const std::string prefix = "http://" + host("TwitPicLinkHost");
                return prefix + "/show/iphone" + link.substr(prefix.size());
            } },
        { "YFrog",
            "/api/upload",
            "media",
            "mediaurl",
            [](const std::string& link) { return link + ":iphone"; } },
        { "Twitgoo",
            "/api/upload",
            "media",
            "mediaurl",
            [](const std::string& link) { return link + "/img"; } },
        { "Posterous", "/api/upload", "media", "mediaurl", nullptr },
        { "ImgLy",
            "/api/upload",
            "media",
            "mediaurl",
            [](const std::string& link) {
                const std::string prefix = "http://" + host("ImgLyLinkHost");
                return prefix + "/show/large" + link.substr(prefix.size());
            } },
        { "PixIm",
            "/api/pictures.xml",
            "picture",
            "picture_url",
            [](const std::string& link) { return link + "/full"; } },
    };
    for (const auto& s : services) {
        SCOPED_TRACE(s.key);
        const Reply stored = upload(s.key, s.path, s.part, "wonderland", picture);
        EXPECT_EQ(stored.status, 200);
        const std::string link
            = stored.text(s.element == std::string("mediaurl") ? "rsp" : "picture", s.element);
        ASSERT_FALSE(link.empty()) << stored.body;
        EXPECT_EQ(get(link).status, 200);
        if (s.full) {
            EXPECT_THAT(link, StartsWith("http://" + host((std::string(s.key) + "LinkHost").c_str()) + "/"));
            EXPECT_THAT(link, Not(EndsWith("z")));
            const Reply full = get(s.full(link));
            EXPECT_EQ(full.body, picture);
            EXPECT_EQ(full.headers.find("Content-Type")->second, "image/jpeg");
        }
        const std::string element = std::string("<") + s.element;
        EXPECT_THAT(upload(s.key, s.path, s.part, "wrong", picture).body, Not(HasSubstr(element)));
        EXPECT_THAT(upload(s.key, s.path, "other", "wonderland", picture).body, Not(HasSubstr(element)));
        EXPECT_THAT(upload(s.key, s.path, s.part, "wonderland", "<html>").body, Not(HasSubstr(element)));
        if (s.key != std::string("YFrog")) {
            EXPECT_THAT(upload(s.key, s.path, s.part, "wonderland", movie).body, Not(HasSubstr(element)));
        }
    }

    const std::string link
        = upload("YFrog", "/api/upload", "media", "wonderland", movie).text("rsp", "mediaurl");
    EXPECT_THAT(link, StartsWith("http://" + host("YFrogSecondLinkHost") + "/"));
    EXPECT_THAT(link, EndsWith("z"));
    EXPECT_EQ(get(link + ":iphone").body, movie);
    EXPECT_EQ(get(link + ":iphone").headers.find("Content-Type")->second, "video/quicktime");
    EXPECT_EQ(get("http://" + host("YFrogLinkHost") + "/..%2f..%2fservice.sqlite:iphone").status, 404);
}

TEST_F(OutsideTest, LongPostsAreShortenedToAPostThatFits)
{
    const auto post = [](const std::string& message, const std::string& key) {
        const std::string address = host("TwitlongerAPIHost");
        const std::size_t slash = address.find('/');
        httplib::Client client("http://" + address.substr(0, slash));
        const auto result = client.Post(address.substr(slash) + "/api_post",
            httplib::Params { { "application", "pelinordesktop" },
                { "api_key", key },
                { "username", "alice" },
                { "message", message } });
        return result ? Reply { result->status, result->body, result->headers } : Reply {};
    };
    std::string text;
    for (int i = 0; i < 4000; ++i)
        text += "wört & <" + std::to_string(i) + "> = ";
    const Reply stored = post(text, "key");
    ASSERT_EQ(stored.status, 200);
    const std::string content = stored.text("post", "content");
    EXPECT_LE(QString::fromStdString(content).size(), 140);
    EXPECT_THAT(content, StartsWith("wört & <0> = wört & <1>"));
    EXPECT_THAT(content, EndsWith("… " + stored.text("post", "short")));
    for (const char* element : { "link", "short" })
        EXPECT_THAT(get(stored.text("post", element)).body, HasSubstr("wört &amp; &lt;3999&gt; ="));
    EXPECT_FALSE(stored.text("post", "id").empty());
    EXPECT_EQ(post("", "key").status, 400);
    EXPECT_EQ(post(text, "").status, 403);
    EXPECT_LE(QString::fromStdString(post(std::string(500, 'x'), "key").text("post", "content")).size(), 140);

    const Reply shrunk = get("http://" + host("TweetshrinkAPIHost") + "/shrink?format=xml&text="
        + encoded("Thanks to you, @tomorrow! See http://to.example/for  later."));
    EXPECT_EQ(shrunk.text("tweetshrink", "text"), "thx 2 u, @tomorrow! c http://to.example/for l8r.");
    EXPECT_EQ(shrunk.text("tweetshrink", "difference"), "11");
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
