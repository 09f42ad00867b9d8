#include "KRTestRequest.h"
#include "support/KRTestServer.h"

namespace {

using Connection = KRTestServer::Connection;
using Request = KRTestServer::Request;

/// Writes some bytes of an answer, and closes the connection.
KRTestServer::Handler breakOff(const QByteArray& bytes)
{
    return [bytes](const Request&, Connection& connection) {
        connection.write(bytes);
        connection.close();
    };
}

void drip(const Request&, Connection& connection)
{
    connection.write("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n<");
    // A byte now and then until the client gives up; the pause is the fault, not a wait of the test.
    while (!connection.isStopping() && connection.write("x"))
        std::this_thread::sleep_for(200ms);
}

} // namespace

TEST(KRHTTPFaults, EndInOneErrorAndSendAPostOnce)
{
    const QByteArray head = "HTTP/1.1 200 OK\r\n";
    const QString lost = u"The connection to 127.0.0.1 was lost ("_s;
    const QString failed = u"The connection to 127.0.0.1 failed ("_s;
    const QString late = u"The server 127.0.0.1 did not answer in time"_s;
    const struct {
        const char* name;
        KRTestServer::Handler handler;
        QString text;
    } faults[] = {
        { "reset before the answer",
            [](const Request&, Connection& connection) { connection.reset(); },
            lost },
        { "closed before the answer", breakOff({}), lost },
        { "reset in the body",
            [=](const Request&, Connection& connection) {
                connection.write(head + "Content-Length: 1000\r\n\r\n<statuses>");
                connection.reset();
            },
            lost },
        { "short body", breakOff(head + "Content-Length: 1000\r\n\r\n<statuses>"), lost },
        { "cut chunk", breakOff(head + "Transfer-Encoding: chunked\r\n\r\n64\r\n<statuses>"), lost },
        { "no HTTP", breakOff("SSH-2.0-OpenSSH_9.2\r\n"), failed },
        { "broken compression",
            KRTestServer::always(200, "no gzip at all", "Content-Encoding: gzip\r\n"),
            failed },
        { "silence", [](const Request&, Connection& connection) { connection.waitForClose(); }, late },
        { "endless slow drip", drip, late },
    };
    EXPECT_EQ(KRHTTPStallSeconds, 60);
    EXPECT_EQ(KRHTTPMaxRedirects, 20);
    // Impatient, so that silence and drip end within the patience of a test.
    KRTestTransportSettings settings([](KRHTTPTransportSettings& values) {
        values.stallSeconds = 1;
        values.extraCAFile = KRTestAuthorityFile();
    });
    for (const auto& fault : faults) {
        for (const bool isEncrypted : { false, true }) {
            const auto server = isEncrypted
                ? std::make_unique<KRTestServer>(fault.handler, KRTestCertificate::Good)
                : std::make_unique<KRTestServer>(fault.handler);
            for (const QString& method : { u"GET"_s, u"POST"_s }) {
                SCOPED_TRACE(testing::Message()
                    << fault.name << (isEncrypted ? " TLS " : " plain ") << qPrintable(method));
                const int before = server->requestCount();
                KRTestRequest request(server->url(), method);
                ASSERT_TRUE(request.run());
                EXPECT_EQ(request.callbackCount(), 1);
                ASSERT_TRUE(request->error());
                EXPECT_EQ(request->error()->domain, QString::fromUtf16(KRHTTPConnectionErrorDomain));
                EXPECT_TRUE(request.errorText().startsWith(fault.text)) << qPrintable(request.errorText());
                EXPECT_EQ(server->requestCount() - before, 1);
            }
        }
    }
}

TEST(KRHTTPFaults, ARefusedConnectionIsAnError)
{
    const QUrl url = KRTestServer(KRTestServer::always(200)).url();
    KRTestRequest request(url);
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorText(), u"The server 127.0.0.1 could not be reached"_s);
    EXPECT_EQ(request->statusCode(), 0);
    EXPECT_FALSE(KRHTTPConnectionErrorIsAboutTLS(*request->error()));
}

TEST(KRHTTPFaults, AnAnswerWithoutEndIsCutOff)
{
    constexpr qint64 most = 4 * 1024 * 1024;
    KRTestTransportSettings settings([](auto& values) { values.maxResponseBytes = most; });
    KRTestServer server([](const Request& request, Connection& connection) {
        const QByteArray all(most, 'x');
        if (request.target != "/endless")
            connection.respond(200, all);
        else if (connection.write("HTTP/1.1 200 OK\r\n\r\n"))
            while (connection.write(all)) { }
    });
    KRTestRequest longest(server.url());
    ASSERT_TRUE(longest.run());
    EXPECT_EQ(longest->data().size(), most);
    KRTestRequest request(server.url(u"/endless"_s));
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorTooLarge);
    EXPECT_EQ(request.errorText(), u"The answer of 127.0.0.1 is larger than 4 MB"_s);
    EXPECT_LE(request->data().capacity(), 2 * most);
}
