#include "LocalServiceFixture.h"
#include "Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <gmock/gmock.h>

using namespace testing;

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

    // Asks for a whole address, without following redirects.
    [[nodiscard]] static Reply get(const std::string& address)
    {
        const std::size_t path = address.find('/', address.find("://") + 3);
        return replyOf(httplib::Client(address.substr(0, path)).Get(address.substr(path)));
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
        { "zebrafinch @bob #täg", { first } },
        { "zebrafinch from:bob", { second } },
        { "zebrafinch to:alice", { second } },
        { "zebrafinch -one", { second } },
        { "zebrafinch one OR two", { second, first } },
        { "\"zebrafinch number\"", { first } },
        { "zebrafinch' OR '1'='1", {} },
        { "", {} },
        { "\"", {} },
    };
    for (const auto& c : cases)
        EXPECT_EQ(found("q=" + localservice::percentEncoded(c.query)), c.ids) << c.query;
    EXPECT_EQ(found("q=e").size(), 15U);
    EXPECT_EQ(found("q=e&rpp=1000").size(), 100U);
    const Reply reply = get(at("SearchHost") + "/search.json?q=zebrafinch%20two");
    const QJsonObject hit = json(reply.body)[QLatin1String("results")].toArray().first().toObject();
    EXPECT_EQ(hit[QLatin1String("to_user")].toString(), QStringLiteral("alice"));
    EXPECT_EQ(get(hit[QLatin1String("profile_image_url")].toString().toStdString()).status, 200);
}

TEST_F(OutsideTest, ShortenersRefuseWhatIsNoLink)
{
    const std::string bitly = at("BitlyAPIHost");
    EXPECT_THAT(get(bitly + "/shorten?longUrl=http://example.org/").body, HasSubstr("INVALID_LOGIN"));
    for (const std::string nonsense :
        { "", "javascript:alert(1)", "http://a b.example/", "http://a.example/%0d%0aX-Evil:+1" })
        EXPECT_EQ(get(at("TinyURLAPIHost") + "/api-create.php?url=" + nonsense).status, 400) << nonsense;
    EXPECT_EQ(get(at("ExpansionAPIHost") + "/api/v1.1?q=http://example.org/").status, 404);
    EXPECT_EQ(get(at("OtherShort1LinkHost") + "/nosuch").status, 404);
    EXPECT_THAT(get(at("TinyURLAPIHost") + "/api-create.php?url=www.example.org").body,
        StartsWith("http://"));
}

TEST_F(OutsideTest, TheSitesOwnPictureStoreSaysWhatItTook)
{
    const std::string png
        = QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAIAAAADCAIAAAA2iEnWAAAADklEQVR4nGP4DwYMEAoA"
                                 "U7oL9TCGTn8AAAAASUVORK5CYII=")
              .toStdString();
    const auto upload = [](Caller caller, const std::string& content) {
        return caller.postBody("/api/statusnet/media/upload",
            "--b\r\nContent-Disposition: form-data; name=\"media\"; filename=\"a.png\"\r\n\r\n" + content
                + "\r\n--b--\r\n",
            "multipart/form-data; boundary=b");
    };
    EXPECT_EQ(upload(nobody(), png).status, 401);
    const Reply picture = upload(alice(), png);
    EXPECT_THAT(picture.body, HasSubstr(R"(<image w="2" h="3" image_type="image/png">)"));
    EXPECT_EQ(picture.text("rsp", "mediaurl"), picture.text("rsp", "media_url"));
    EXPECT_THAT(picture.text("rsp", "mediaurl"), testing::EndsWith("/" + picture.text("rsp", "mediaid")));
    const Reply words = upload(alice(), "words");
    EXPECT_THAT(words.body, Not(HasSubstr("<image")));
    EXPECT_EQ(words.text("rsp", "size"), "5");
}
