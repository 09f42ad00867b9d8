#include "KRTestRequest.h"
#include "support/KRTestServer.h"
#include "transport/KRInputStream.h"

#include <QTemporaryFile>

namespace {

/// Sends "/hop/STATUS/ADDRESS" on to the address, with more text than is worth reading; answers everything else.
void hopOrArrive(const KRTestServer::Request& request, KRTestServer::Connection& connection)
{
    const QByteArrayList parts = request.target.split('/');
    if (parts.at(1) != "hop")
        connection.respond(200, request.method == "HEAD" ? "" : "arrived");
    else
        connection.respond(parts.at(2).toInt(),
            QByteArray(request.method == "HEAD" ? 0 : 100'000, 'x'),
            "Location: " + QByteArray::fromHex(parts.at(3)) + "\r\n");
}

QUrl hop(const KRTestServer& server, int status, const QByteArray& address)
{
    return server.url(u"/hop/%1/%2"_s.arg(status).arg(QLatin1String(address.toHex())));
}

void giveSecrets(KRTestRequest& request)
{
    request->setUsername(u"alice"_s);
    request->setPassword(u"secret"_s);
    request->setValueForHTTPHeaderField(u"token"_s, u"X-Api-Key"_s);
    request->setValueForHTTPHeaderField(u"en"_s, u"Accept-Language"_s);
}

} // namespace

TEST(KRHTTPRedirects, CarryNoMoreThanMayGoAlong)
{
    const struct {
        const char* method;
        QList<int> statuses;
        // What arrives at the same origin and at another one; nothing when that is refused.
        const char* same;
        const char* away;
    } rows[] = {
        { "GET", { 301, 302, 303, 307, 308 }, "GET", "GET" },
        { "HEAD", { 302, 307 }, "HEAD", "HEAD" },
        { "POST", { 301, 302, 303 }, "GET", "GET" },
        { "POST", { 307, 308 }, "POST", nullptr },
    };
    QTemporaryFile file;
    ASSERT_TRUE(file.open() && file.write("text=private") == 12 && file.flush());
    KRTestServer server(hopOrArrive);
    KRTestServer other(hopOrArrive);
    // The same machine on another port, and under another name.
    const QByteArray there = other.url(u"/there"_s).toEncoded();
    const QByteArray named = "http://localhost:" + QByteArray::number(server.port()) + "/there";
    for (const auto& row : rows) {
        const bool posts = row.method == std::string_view("POST");
        for (const int status : row.statuses) {
            for (const QByteArray& address : { QByteArray("/here?x=1"), there, named }) {
                for (const bool streams : { false, true }) {
                    SCOPED_TRACE(testing::Message() << row.method << status << address.data() << streams);
                    const bool isSame = address.startsWith('/');
                    KRTestRequest request(hop(server, status, address), QLatin1String(row.method));
                    giveSecrets(request);
                    if (posts && streams)
                        request->setBodyStream(std::make_shared<KRFileInputStream>(file.fileName()));
                    else if (posts)
                        request->setBody("text=private");
                    if (posts)
                        request->setValueForHTTPHeaderField(u"text/xml"_s, u"Content-Type"_s);
                    const int before = server.requestCount() + other.requestCount();
                    ASSERT_TRUE(request.run());
                    const char* const expected = isSame ? row.same : row.away;
                    EXPECT_EQ(request.errorCode(), expected ? 0 : status);
                    ASSERT_EQ(server.requestCount() + other.requestCount(), before + (expected ? 2 : 1));
                    if (!expected)
                        continue;
                    EXPECT_EQ(request->statusCode(), 200);
                    const auto arrived = (address == there ? other : server).requests().last();
                    EXPECT_EQ(arrived.method, QByteArray(expected));
                    EXPECT_EQ(arrived.value("authorization").isEmpty(), !isSame);
                    EXPECT_EQ(arrived.value("x-api-key"), isSame ? "token" : "");
                    EXPECT_EQ(arrived.value("accept-language"), "en");
                    const bool hasContent = arrived.method == "POST";
                    EXPECT_EQ(arrived.body, hasContent ? "text=private" : "");
                    EXPECT_EQ(arrived.value("content-type"), hasContent ? "text/xml" : "");
                    EXPECT_TRUE(hasContent || arrived.values("content-length").isEmpty());
                }
            }
        }
    }
    // A host that is reached again through another one gets nothing either.
    KRTestRequest back(hop(server, 302, hop(other, 302, server.url(u"/home"_s).toEncoded()).toEncoded()));
    giveSecrets(back);
    ASSERT_TRUE(back.run());
    EXPECT_EQ(server.requests().last().target, "/home");
    EXPECT_TRUE(server.requests().last().values("authorization").isEmpty());
}

TEST(KRHTTPRedirects, NeverLeaveEncryption)
{
    KRTestTransportSettings settings([](auto& values) { values.extraCAFile = KRTestAuthorityFile(); });
    KRTestServer plain(hopOrArrive);
    KRTestServer server(hopOrArrive, KRTestCertificate::Good);
    KRTestRequest request(hop(server, 302, plain.url().toEncoded()));
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorInsecureRedirect);
    EXPECT_EQ(plain.connectionCount(), 0);

    KRTestRequest upgraded(hop(plain, 301, server.url(u"/safe"_s).toEncoded()));
    giveSecrets(upgraded);
    ASSERT_TRUE(upgraded.run());
    EXPECT_EQ(upgraded->data(), QByteArray("arrived"));
    EXPECT_TRUE(server.requests().last().values("authorization").isEmpty());
}

TEST(KRHTTPRedirects, EndAfterTwentyHops)
{
    KRTestServer server([](const KRTestServer::Request& request, auto& connection) {
        const int number = request.target.mid(1).toInt();
        connection.respond(number == 20 ? 200 : 302,
            "end",
            "Location: /" + QByteArray::number(number + 1) + "\r\n");
    });
    KRTestRequest justEnough(server.url(u"/0"_s));
    ASSERT_TRUE(justEnough.run());
    EXPECT_EQ(justEnough->data(), QByteArray("end"));
    KRTestRequest endless(server.url(u"/21"_s));
    ASSERT_TRUE(endless.run());
    EXPECT_EQ(endless.errorCode(), KRHTTPConnectionErrorTooManyRedirects);
    EXPECT_EQ(server.requestCount(), 2 * (KRHTTPMaxRedirects + 1));
}

TEST(KRHTTPRedirects, RefuseAddressesThatAreNoWebAddresses)
{
    KRTestServer server(hopOrArrive);
    for (const char* address : { "file:///etc/passwd", "ftp://127.0.0.1/", "//" }) {
        KRTestRequest request(hop(server, 302, address));
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorBadRedirect) << address;
        EXPECT_TRUE(request->data().isEmpty());
    }
    for (const QString& address : { u"file:///etc/passwd"_s, u""_s, u"nonsense"_s, u"http://"_s }) {
        KRTestRequest request { QUrl(address) };
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), KRHTTPConnectionErrorBadURL) << address.toStdString();
    }
}
