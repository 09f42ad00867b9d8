#include "KRTestRequest.h"
#include "support/KRTestServer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Connection = KRTestServer::Connection;
using Request = KRTestServer::Request;

struct Fault {
    const char* name;
    KRTestServer::Handler handler;
};

void drip(const Request&, Connection& connection)
{
    connection.write("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n<");
    // A byte now and then until the client gives up; the pause is the fault, not a wait of the test.
    while (!connection.isStopping() && connection.write("x"))
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
}

const std::vector<Fault>& faults()
{
    static const std::vector<Fault> all {
        { "reset before the answer", [](const Request&, Connection& connection) { connection.reset(); } },
        { "closed before the answer", [](const Request&, Connection& connection) { connection.close(); } },
        { "reset in the body",
            [](const Request&, Connection& connection) {
                connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<statuses>");
                connection.reset();
            } },
        { "body shorter than its length",
            [](const Request&, Connection& connection) {
                connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<statuses>");
                connection.close();
            } },
        { "cut chunk",
            [](const Request&, Connection& connection) {
                connection.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n64\r\n<statuses>");
                connection.close();
            } },
        { "no HTTP",
            [](const Request&, Connection& connection) {
                connection.write("SSH-2.0-OpenSSH_9.2\r\n");
                connection.close();
            } },
        { "broken compression",
            [](const Request&, Connection& connection) {
                connection.respond(200, "this is not gzip at all", "Content-Encoding: gzip\r\n");
            } },
        { "silence", [](const Request&, Connection& connection) { connection.waitForClose(); } },
        { "endless slow drip", drip },
    };
    return all;
}

/// Impatient, so that silence and drip end within the patience of a test.
void makeImpatient(KRHTTPTransportSettings& settings)
{
    settings.stallSeconds = 1;
    settings.extraCAFile = KRTestAuthorityFile();
}

} // namespace

TEST(KRHTTPFaults, EndInOneErrorAndSendAPostOnce)
{
    EXPECT_EQ(KRHTTPStallSeconds, 60);
    EXPECT_EQ(KRHTTPMaxRedirects, 20);
    KRTestTransportSettings settings(makeImpatient);
    for (const Fault& fault : faults()) {
        for (const bool isEncrypted : { false, true }) {
            const auto server = isEncrypted
                ? std::make_unique<KRTestServer>(fault.handler, KRTestCertificate::Good)
                : std::make_unique<KRTestServer>(fault.handler);
            for (const QString& method : { u"GET"_s, u"POST"_s }) {
                SCOPED_TRACE(fault.name + std::string(isEncrypted ? " over TLS, " : " in plain, ")
                    + method.toStdString());
                const int before = server->requestCount();
                KRTestRequest request(server->url());
                request->setMethod(method);
                ASSERT_TRUE(request.run());
                EXPECT_EQ(request.callbackCount(), 1);
                ASSERT_TRUE(request->error());
                EXPECT_EQ(request->error()->domain, QString::fromUtf16(KRHTTPConnectionErrorDomain));
                EXPECT_TRUE(request.errorText().contains(u"127.0.0.1")) << request.errorText().toStdString();
                EXPECT_LE(server->requestCount() - before, 1);
            }
        }
    }
}

TEST(KRHTTPFaults, NeverRepeatAPostOnAConnectionThatWasClosedMeanwhile)
{
    // Answers the first request of a connection and drops the next one unread but for its head: what a server
    // that closes idle connections looks like to a client that reuses one.
    std::atomic<int> posts = 0;
    KRTestServer server([&](const Request& request, Connection& connection) {
        if (request.method == "POST") {
            ++posts;
            connection.close();
        } else {
            connection.respond(200, "fine");
        }
    });
    for (int i = 0; i < 3; ++i) {
        KRTestRequest get(server.url());
        ASSERT_TRUE(get.run());
        EXPECT_FALSE(get->error());
        KRTestRequest post(server.url());
        post->setMethod(u"POST"_s);
        post->setBody("status=once");
        ASSERT_TRUE(post.run());
        EXPECT_TRUE(post->error());
        EXPECT_EQ(posts, i + 1);
    }
}

TEST(KRHTTPFaults, ARefusedConnectionIsAnError)
{
    QUrl url;
    {
        KRTestServer server([](const Request&, Connection&) {});
        url = server.url();
    }
    KRTestRequest request(url);
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorText(), u"The server 127.0.0.1 could not be reached"_s);
    EXPECT_EQ(request->statusCode(), 0);
}

TEST(KRHTTPFaults, TrustsNoCertificateItCannotVerify)
{
    struct Case {
        KRTestCertificate certificate;
        bool trustsAuthority;
        bool works;
    };
    for (const Case& test : { Case { KRTestCertificate::Good, true, true },
             { KRTestCertificate::Good, false, false },
             { KRTestCertificate::Expired, true, false },
             { KRTestCertificate::OtherHost, true, false },
             { KRTestCertificate::UnknownAuthority, true, false } }) {
        SCOPED_TRACE(static_cast<int>(test.certificate));
        KRTestTransportSettings settings([&](auto& values) {
            values.extraCAFile = test.trustsAuthority ? KRTestAuthorityFile() : QString();
        });
        KRTestServer server([](const Request&, Connection& connection) { connection.respond(200, "fine"); },
            test.certificate);
        KRTestRequest request(server.url());
        request->setUsername(u"alice"_s);
        request->setPassword(u"secret"_s);
        ASSERT_TRUE(request.run());
        EXPECT_EQ(!request->error(), test.works) << request.errorText().toStdString();
        EXPECT_EQ(server.requestCount(), test.works ? 1 : 0);
        if (!test.works) {
            EXPECT_TRUE(request.errorText().startsWith(
                u"The identity of the server 127.0.0.1 could not be verified"));
        }
    }
}

TEST(KRHTTPFaults, AnAnswerWithoutEndIsCutOff)
{
    KRTestTransportSettings settings([](auto& values) { values.maxResponseBytes = 4 * 1024 * 1024; });
    KRTestServer server([](const Request&, Connection& connection) {
        connection.write("HTTP/1.1 200 OK\r\n\r\n");
        const QByteArray chunk(65536, 'x');
        while (connection.write(chunk)) { }
    });
    KRTestRequest request(server.url());
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorTooLarge);
    EXPECT_LE(request->data().capacity(), 8 * 1024 * 1024);
}
