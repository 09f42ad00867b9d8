#include "KRTestRequest.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTestServer.h"

namespace {

constexpr auto defaultsKey = "persistentHTTPRequests"_L1;

qsizetype archivedCount()
{
    const QByteArray data = KRUserDefaults::standardUserDefaults().dataForKey(defaultsKey);
    return KRKeyedUnarchiver::unarchiverWithData(data).value().decodeObjects("requests"_L1).size();
}

/// The list is read once, before any test asks for it.
class ListOfTheRunBefore : public testing::Environment {
    void SetUp() override
    {
        const auto left = KRHTTPRequest::request();
        left->setUrl(QUrl(u"https://example.org/left"_s));
        KRKeyedArchiver archiver;
        archiver.encodeObjects("requests"_L1, QList { left });
        KRUserDefaults::standardUserDefaults().setData(defaultsKey, archiver.archivedData());
        const auto listed = KRHTTPRequest::persistentRequests();
        ASSERT_EQ(listed.size(), 1);
        EXPECT_EQ(listed.first()->url(), left->url());
        KRHTTPRequest::addPersistentRequest(listed.first());
        EXPECT_EQ(KRHTTPRequest::persistentRequests().size(), 1) << "nothing is in it twice";
        KRHTTPRequest::removePersistentRequest(listed.first());
        EXPECT_EQ(archivedCount(), 0);
    }
};

const auto* listOfTheRunBefore = testing::AddGlobalTestEnvironment(new ListOfTheRunBefore);

} // namespace

TEST(KRPersistentRequests, AreTriedAgainAfterEachSuccessUntilTheirLimit)
{
    ASSERT_TRUE(listOfTheRunBefore);
    KRTestServer server([](const KRTestServer::Request& request, auto& connection) {
        connection.respond(request.target == "/fails" ? 503 : 200, "answer");
    });
    const auto succeed = [&server] {
        KRTestRequest other(server.url(u"/works"_s));
        return other.run() && !other->error();
    };
    KRTestLog log;
    KRTestRequest request(server.url(u"/fails"_s));
    request->setMaxRetries(2);
    ASSERT_TRUE(request.run());
    EXPECT_EQ(KRHTTPRequest::persistentRequests().size(), 1);
    EXPECT_EQ(archivedCount(), 1);

    const auto attempts = [&server] {
        const auto requests = server.requests();
        return std::count_if(requests.begin(), requests.end(), [](const auto& one) {
            return one.target == "/fails";
        });
    };
    EXPECT_EQ(attempts(), 1) << "a failure alone starts nothing";
    ASSERT_TRUE(succeed());
    ASSERT_TRUE(KRWaitUntil([&] { return log.lines().filter(u"will retry later"_s).size() == 2; }));
    ASSERT_TRUE(succeed());
    ASSERT_TRUE(KRWaitUntil([&] { return KRHTTPRequest::persistentRequests().isEmpty(); }));
    ASSERT_TRUE(succeed());
    EXPECT_EQ(attempts(), 3);
    const QString lines
        = u"first attempt of many, add self to the persistent list|add persistent request |servicing "
          u"persistent "
          "request | attempt 1|was attempted too many times, not trying again.|remove persistent request "_s;
    for (const QString& line : lines.split(u'|'))
        EXPECT_TRUE(log.contains(line)) << line.toStdString();
}
