#include "CommandLine.h"
#include "LocalServiceFixture.h"
#include "Site.h"
#include "Text.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <sys/stat.h>

using namespace localservice;
using testing::HasSubstr;

namespace {

std::string contents(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

bool isPrivate(const std::string& path)
{
    struct stat info { };
    return ::stat(path.c_str(), &info) == 0 && (info.st_mode & 077) == 0;
}

} // namespace

TEST(CommunityTest, IsLargeVariedAndConsistent)
{
    ServiceUnderTest service;
    service.start();
    service.stop();
    Site site;
    ASSERT_TRUE(site.database.open(service.directory() + "/service.sqlite"));
    EXPECT_GE(site.users.all().size(), 14U);
    EXPECT_GE(site.statuses.count(), 480);

    Page everything;
    everything.count = 100'000;
    std::map<std::int64_t, Status> known;
    const auto statuses = site.statuses.homeTimeline(1, everything);
    for (const Status& status : statuses)
        known.emplace(status.id, status);
    std::map<TextPiece::Kind, int> pieces;
    std::map<std::int64_t, int> depths;
    int deepest = 0;
    int orphans = 0;
    std::int64_t time = 0;
    for (const auto& [id, status] : known) {
        EXPECT_LE(characterCount(status.text), 140U) << status.text;
        EXPECT_EQ(tidiedText(status.text), status.text);
        EXPECT_GE(status.createdAt, time) << "IDs grow with time";
        EXPECT_LE(status.createdAt, currentTime());
        time = status.createdAt;
        for (const TextPiece& piece : piecesOfText(status.text))
            ++pieces[piece.kind];
        if (status.inReplyToStatusID) {
            depths[id] = depths[status.inReplyToStatusID] + 1;
            deepest = std::max(deepest, depths[id]);
            const auto parent = site.statuses.withID(status.inReplyToStatusID);
            ASSERT_TRUE(parent);
            EXPECT_LT(parent->createdAt, status.createdAt);
            orphans += parent->isDeleted;
        }
    }
    EXPECT_GE(deepest, 5);
    EXPECT_GE(orphans, 1);
    EXPECT_GT(pieces[TextPiece::Kind::Link], 10);
    EXPECT_GT(pieces[TextPiece::Kind::Hashtag], 20);
    EXPECT_GT(pieces[TextPiece::Kind::Mention], 100);
    EXPECT_GT(known.rbegin()->second.createdAt, currentTime() - 15 * 60) << "somebody wrote just now";
    EXPECT_LT(known.begin()->second.createdAt, currentTime() - 4 * 24 * 3600);

    std::set<std::int64_t> correspondents;
    for (const DirectMessage& message : site.messages.receivedBy(1, everything))
        correspondents.insert(message.senderID);
    EXPECT_GE(correspondents.size(), 5U);
    for (const std::int64_t correspondent : correspondents) {
        EXPECT_TRUE(site.users.isFollowing(1, correspondent)) << correspondent;
        EXPECT_TRUE(site.users.isFollowing(correspondent, 1)) << correspondent;
    }
}

TEST(CommunityTest, StateSurvivesARestartAndResetForgetsIt)
{
    ServiceUnderTest service;
    service.start();
    const std::string authority = contents(service.running().authorityFile);
    const auto everybody = service.running().accounts.size();
    const auto ownLink
        = [&] { return "see http://127.0.0.1:" + std::to_string(service.running().httpPort) + "/bob"; };
    const std::string show = "/statuses/show/"
        + std::to_string(Caller(service, "alice", "wonderland").update(ownLink())) + ".xml";
    for (const char* name : { "/service.sqlite", "/server-key.pem", "/ca.pem", "/services.ini" })
        EXPECT_TRUE(isPrivate(service.directory() + name)) << name;
    EXPECT_TRUE(isPrivate(service.directory()));

    service.restart();
    EXPECT_EQ(contents(service.running().authorityFile), authority) << "clients trust it already";
    EXPECT_EQ(service.running().accounts.size(), everybody);
    EXPECT_EQ(Caller(service).get(show).text("status", "text"), ownLink())
        << "links into the service follow its ports";
    EXPECT_THAT(contents(service.running().servicesFile),
        HasSubstr("RESTHost=127.0.0.1:" + std::to_string(service.running().httpsPort) + "\n"));

    service.restart(true);
    EXPECT_EQ(Caller(service).get(show).status, 404);
    EXPECT_EQ(contents(service.running().authorityFile), authority);
}

TEST(CommunityTest, AFolderOrPortInUseIsRefused)
{
    ServiceUnderTest first;
    first.start();
    LocalService second;
    EXPECT_FALSE(second.start({ first.directory(), 0, 0, false }));
    EXPECT_THAT(second.failure(), HasSubstr("another service"));

    ServiceUnderTest other;
    EXPECT_FALSE(second.start({ other.directory(), first.running().httpPort, 0, false }));
    EXPECT_THAT(second.failure(), HasSubstr("is not free"));
}

TEST(CommandLineTest, UnderstandsItsOptionsAndNamesMistakes)
{
    std::istringstream words("--data /tmp/x --port 0 --tls-port 4443 --reset --seed-only --write-services f");
    const CommandLine line = parseCommandLine({ std::istream_iterator<std::string>(words), {} });
    EXPECT_EQ(line.mistake, "");
    EXPECT_EQ(line.options.dataDirectory, "/tmp/x");
    EXPECT_EQ(line.options.httpPort, 0);
    EXPECT_EQ(line.options.httpsPort, 4443);
    EXPECT_TRUE(line.options.startsFresh && line.onlyPrepares);
    EXPECT_EQ(line.copyOfServicesFile, "f");
    EXPECT_EQ(parseCommandLine({ "--port" }).mistake, "--port needs a value");
    EXPECT_EQ(parseCommandLine({ "--port", "65536" }).mistake, "\"65536\" is not a port");
    EXPECT_EQ(parseCommandLine({ "--tls-port", "http" }).mistake, "\"http\" is not a port");
    EXPECT_EQ(parseCommandLine({ "--verbose" }).mistake, "unknown option --verbose");
}
