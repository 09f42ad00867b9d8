#include "LocalServiceFixture.h"

#include <fstream>
#include <gmock/gmock.h>
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
