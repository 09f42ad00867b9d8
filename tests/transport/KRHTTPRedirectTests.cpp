#include "KRTestRequest.h"
#include "support/KRTestServer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray locationHeader(const QUrl& url)
{
    return "Location: " + url.toEncoded() + "\r\n";
}

/// Sends "/hop" on to the target with the status and answers everything else.
KRTestServer::Handler hopTo(const std::function<QByteArray()>& target, int status)
{
    return [target, status](const KRTestServer::Request& request, KRTestServer::Connection& connection) {
        if (request.target == "/hop")
            connection.respond(status, "moved", "Location: " + target() + "\r\n");
        else
            connection.respond(200, "arrived");
    };
}

void giveSecrets(KRTestRequest& request)
{
    request->setUsername(u"alice"_s);
    request->setPassword(u"secret"_s);
    request->setValueForHTTPHeaderField(u"token"_s, u"X-Api-Key"_s);
    request->setValueForHTTPHeaderField(u"en"_s, u"Accept-Language"_s);
}

} // namespace

TEST(KRHTTPRedirects, StayWithinTheOriginWithEverything)
{
    for (const int status : { 301, 302, 303, 307, 308 }) {
        KRTestServer server(hopTo([] { return "/target?x=1"; }, status));
        KRTestRequest request(server.url(u"/hop"_s));
        giveSecrets(request);
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request->data(), QByteArray("arrived"));
        EXPECT_EQ(request->statusCode(), 200);
        EXPECT_FALSE(server.requests().value(1).value("authorization").isEmpty());
        EXPECT_EQ(server.requests().value(1).value("x-api-key"), QByteArray("token"));
    }
}

TEST(KRHTTPRedirects, CarryNoSecretsAwayFromHostPortOrScheme)
{
    KRTestServer other([](const auto&, auto& connection) { connection.respond(200, "arrived"); });
    const QList<QByteArray> elsewhere { other.url(u"/there"_s).toEncoded(),
        // The same machine under another name, on another port.
        "http://localhost:" + QByteArray::number(other.port()) + "/there" };
    for (const QByteArray& target : elsewhere) {
        KRTestServer server(hopTo([&] { return target; }, 302));
        KRTestRequest request(server.url(u"/hop"_s));
        giveSecrets(request);
        ASSERT_TRUE(request.run());
        ASSERT_EQ(request->statusCode(), 200);
        const KRTestServer::Request arrived = other.requests().last();
        EXPECT_TRUE(arrived.values("authorization").isEmpty());
        EXPECT_TRUE(arrived.values("x-api-key").isEmpty());
        EXPECT_EQ(arrived.value("accept-language"), QByteArray("en"));
    }
}

TEST(KRHTTPRedirects, GiveNoSecretsBackToAHostReachedThroughAnotherOne)
{
    QUrl home;
    KRTestServer other(
        [&](const auto&, auto& connection) { connection.respond(302, {}, locationHeader(home)); });
    KRTestServer server(hopTo([&] { return other.url(u"/"_s).toEncoded(); }, 302));
    home = server.url(u"/home"_s);
    KRTestRequest request(server.url(u"/hop"_s));
    giveSecrets(request);
    ASSERT_TRUE(request.run());
    EXPECT_EQ(server.requests().last().target, QByteArray("/home"));
    EXPECT_TRUE(server.requests().last().values("authorization").isEmpty());
}

TEST(KRHTTPRedirects, NeverLeaveEncryption)
{
    KRTestTransportSettings settings([](auto& values) { values.extraCAFile = KRTestAuthorityFile(); });
    KRTestServer plain([](const auto&, auto& connection) { connection.respond(200, "leaked"); });
    KRTestServer server(hopTo([&] { return plain.url(u"/"_s).toEncoded(); }, 302), KRTestCertificate::Good);
    KRTestRequest request(server.url(u"/hop"_s));
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorInsecureRedirect);
    EXPECT_EQ(plain.connectionCount(), 0);

    KRTestServer entrance(hopTo([&] { return server.url(u"/safe"_s).toEncoded(); }, 301));
    KRTestRequest upgraded(entrance.url(u"/hop"_s));
    giveSecrets(upgraded);
    ASSERT_TRUE(upgraded.run());
    EXPECT_EQ(upgraded->data(), QByteArray("arrived"));
    EXPECT_TRUE(server.requests().last().values("authorization").isEmpty());
}

TEST(KRHTTPRedirects, TurnAPostIntoAGetOrRepeatItOnlyToTheSameOrigin)
{
    KRTestServer other([](const auto&, auto& connection) { connection.respond(200, "arrived"); });
    const auto post = [](const QUrl& url) {
        auto request = std::make_unique<KRTestRequest>(url);
        (*request)->setMethod(u"POST"_s);
        (*request)->setBody("text=private");
        (*request)->setValueForHTTPHeaderField(u"text/xml"_s, u"Content-Type"_s);
        EXPECT_TRUE(request->run());
        return request;
    };
    for (const int status : { 301, 302, 303 }) {
        KRTestServer server(hopTo([] { return "/after"; }, status));
        EXPECT_EQ((*post(server.url(u"/hop"_s)))->statusCode(), 200);
        EXPECT_EQ(server.requests().last().method, QByteArray("GET"));
        EXPECT_TRUE(server.requests().last().body.isEmpty());
        EXPECT_TRUE(server.requests().last().values("content-length").isEmpty());
        EXPECT_TRUE(server.requests().last().values("content-type").isEmpty()) << "there is no content";
    }
    for (const int status : { 307, 308 }) {
        KRTestServer same(hopTo([] { return "/after"; }, status));
        EXPECT_EQ((*post(same.url(u"/hop"_s)))->statusCode(), 200);
        EXPECT_EQ(same.requests().last().method, QByteArray("POST"));
        EXPECT_EQ(same.requests().last().body, QByteArray("text=private"));
        EXPECT_EQ(same.requests().last().value("content-type"), QByteArray("text/xml"));

        KRTestServer away(hopTo([&] { return other.url(u"/"_s).toEncoded(); }, status));
        EXPECT_EQ(post(away.url(u"/hop"_s))->errorCode(), status);
        EXPECT_EQ(other.connectionCount(), 0);
    }
}

TEST(KRHTTPRedirects, EndAfterTwentyHops)
{
    KRTestServer server([](const KRTestServer::Request& request, auto& connection) {
        const int number = request.target.mid(1).toInt();
        if (number < 20)
            connection.respond(302, {}, "Location: /" + QByteArray::number(number + 1) + "\r\n");
        else
            connection.respond(number == 20 ? 200 : 302, "end", "Location: /99\r\n");
    });
    KRTestRequest justEnough(server.url(u"/0"_s));
    ASSERT_TRUE(justEnough.run());
    EXPECT_EQ(justEnough->data(), QByteArray("end"));

    KRTestServer loop([](const auto&, auto& connection) { connection.respond(302, {}, "Location: /\r\n"); });
    KRTestRequest endless(loop.url());
    ASSERT_TRUE(endless.run());
    EXPECT_EQ(endless.errorCode(), KRHTTPConnectionErrorTooManyRedirects);
    EXPECT_EQ(loop.requestCount(), KRHTTPMaxRedirects + 1);
}

TEST(KRHTTPRedirects, RefuseAddressesThatAreNoWebAddresses)
{
    for (const QByteArray& target :
        { QByteArray("file:///etc/passwd"), QByteArray("ftp://127.0.0.1/"), QByteArray("//") }) {
        KRTestServer server(hopTo([&] { return target; }, 302));
        KRTestRequest request(server.url(u"/hop"_s));
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorBadRedirect) << target.toStdString();
        EXPECT_TRUE(request->data().isEmpty());
    }
    for (const QString& address : { u"file:///etc/passwd"_s, u""_s, u"nonsense"_s, u"http://"_s }) {
        KRTestRequest request { QUrl(address) };
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorBadURL) << address.toStdString();
    }
}
