#include "KRTestRequest.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTestLog.h"
#include "support/KRTestServer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(KRPersistentRequests, AreTriedAgainAfterEachSuccessUntilTheirLimit)
{
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
    EXPECT_FALSE(KRUserDefaults::standardUserDefaults().dataForKey("persistentHTTPRequests").isEmpty());

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
    for (const QString& line : { u"first attempt of many, add self to the persistent list"_s,
             u"add persistent request "_s,
             u"servicing persistent request "_s,
             u" attempt 1"_s,
             u"will retry later"_s,
             u"was attempted too many times, not trying again."_s,
             u"remove persistent request "_s })
        EXPECT_TRUE(log.contains(line)) << line.toStdString();
}
