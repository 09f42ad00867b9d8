#include "KRTestRequest.h"
#include "support/KRTestServer.h"
#include "transport/KRHTTPConnection.h"
#include "transport/KRServerCertificate.h"

namespace {

/// Trusts nothing any more when it ends.
class KRServerCertificates : public testing::Test {
protected:
    ~KRServerCertificates() override
    {
        for (const QString& server : std::as_const(m_servers))
            KRTrustedCertificates::stopTrusting(server);
    }

    QString serverOf(const KRTestServer& server)
    {
        m_servers.append(KRServerCertificate::serverOfURL(server.url()));
        return m_servers.last();
    }
    void trust(const KRTestServer& server, const QString& fingerprint)
    {
        KRTrustedCertificates::trust({ serverOf(server), fingerprint });
    }
    void trust(const KRTestServer& server) { trust(server, server.fingerprint()); }

    /// The code of the error of a request with a password; 0 when it worked.
    int askWithPassword(const QUrl& url, const QString& method = u"GET"_s)
    {
        KRTestRequest request(url, method);
        request->setUsername(u"alice"_s);
        request->setPassword(u"secret"_s);
        if (!request.run()) {
            ADD_FAILURE() << "no end";
            return -1;
        }
        m_error = request->error().value_or(KRError());
        return request.errorCode();
    }

    static constexpr int Refused = 60;
    KRError m_error;

private:
    QStringList m_servers;
};

} // namespace

TEST_F(KRServerCertificates, SomebodyMustVouchForOne)
{
    KRTestServer server(KRTestServer::always(200), KRTestCertificate::Good);
    for (const bool isVouchedFor : { true, false }) {
        KRTestTransportSettings settings(
            [=](auto& values) { values.extraCAFile = isVouchedFor ? KRTestAuthorityFile() : QString(); });
        EXPECT_EQ(askWithPassword(server.url()), isVouchedFor ? 0 : Refused);
        EXPECT_EQ(server.requestCount(), 1);
    }
    EXPECT_TRUE(
        m_error.description.startsWith(u"The identity of the server 127.0.0.1 could not be verified"));
    EXPECT_TRUE(KRHTTPConnectionErrorIsAboutTLS(m_error));
    EXPECT_FALSE(KRHTTPConnectionErrorIsAboutTLS(errorWithDomain({}, Refused, {})));
}

TEST_F(KRServerCertificates, TheTrustedOneIsAcceptedWhateverIsWrongWithItAndNoOther)
{
    for (const KRTestCertificate kind :
        { KRTestCertificate::Expired, KRTestCertificate::OtherHost, KRTestCertificate::UnknownAuthority }) {
        SCOPED_TRACE(static_cast<int>(kind));
        KRTestTransportSettings settings([](auto& values) { values.extraCAFile = KRTestAuthorityFile(); });
        KRTestServer server(KRTestServer::always(200), kind);
        EXPECT_EQ(askWithPassword(server.url()), Refused);
        const std::optional<KRServerCertificate> shown = KRServerCertificate::refusedByError(m_error);
        ASSERT_TRUE(shown);
        EXPECT_EQ(*shown, (KRServerCertificate { server.host(), server.fingerprint() }));
        EXPECT_TRUE(m_error.description.contains(server.fingerprint()));

        QString almost = server.fingerprint();
        almost.back() = almost.back() == u'0' ? u'1' : u'0';
        trust(server, almost);
        for (const QString& method : { u"GET"_s, u"POST"_s })
            EXPECT_EQ(askWithPassword(server.url(), method), KRHTTPConnectionErrorCertificateChanged);
        EXPECT_EQ(server.requestCount(), 0);

        trust(server);
        for (const QString& method : { u"GET"_s, u"POST"_s })
            EXPECT_EQ(askWithPassword(server.url(), method), 0) << qPrintable(m_error.description);
        EXPECT_EQ(server.requestCount(), 2);
    }
}

TEST_F(KRServerCertificates, TrustIsForOneServer)
{
    KRTestServer server(KRTestServer::always(200), KRTestCertificate::UnknownAuthority);
    KRTestServer other(KRTestServer::always(200), KRTestCertificate::UnknownAuthority);
    trust(server);
    EXPECT_EQ(askWithPassword(other.url()), Refused);
    // The same certificate under another name.
    QUrl elsewhere = server.url();
    elsewhere.setHost(u"localhost"_s);
    EXPECT_EQ(askWithPassword(elsewhere), Refused);
    // Neither is the other's certificate good here, nor does a redirect take the trust along.
    trust(server, other.fingerprint());
    EXPECT_EQ(askWithPassword(server.url()), KRHTTPConnectionErrorCertificateChanged);
    KRTestServer gate(KRTestServer::always(302, {}, "Location: " + other.url().toEncoded() + "\r\n"),
        KRTestCertificate::UnknownAuthority);
    trust(gate);
    EXPECT_EQ(askWithPassword(gate.url()), Refused);
    EXPECT_EQ(KRServerCertificate::refusedByError(m_error),
        (KRServerCertificate { other.host(), other.fingerprint() }));
    EXPECT_EQ(server.requestCount() + other.requestCount(), 0);
}

TEST_F(KRServerCertificates, AChangedCertificateIsRefusedUnlessSomebodyVouchesForIt)
{
    KRTestTransportSettings settings([](auto& values) { values.extraCAFile = KRTestAuthorityFile(); });
    KRTestServer server(KRTestServer::always(200, {}, "Connection: close\r\n"),
        KRTestCertificate::UnknownAuthority);
    trust(server);
    EXPECT_EQ(askWithPassword(server.url()), 0);
    for (const KRTestCertificate kind :
        { KRTestCertificate::UnknownAuthority, KRTestCertificate::Expired, KRTestCertificate::OtherHost }) {
        server.changeCertificate(kind);
        EXPECT_EQ(askWithPassword(server.url()), KRHTTPConnectionErrorCertificateChanged);
        EXPECT_EQ(m_error.details.value(u"certificateFingerprint"_s), server.fingerprint());
        EXPECT_TRUE(m_error.description.contains(u"has changed"));
        EXPECT_TRUE(m_error.description.contains(server.fingerprint()));
        EXPECT_TRUE(KRHTTPConnectionErrorIsAboutTLS(m_error));
    }
    EXPECT_EQ(server.requestCount(), 1);
    server.changeCertificate(KRTestCertificate::Good);
    EXPECT_EQ(askWithPassword(server.url()), 0);
    EXPECT_EQ(askWithPassword(server.url().resolved(QUrl(u"//localhost:%1/"_s.arg(server.port())))), 0);
}

// Neither an open connection nor a session that could be resumed outlives the decision that it came from.
TEST_F(KRServerCertificates, AnOpenConnectionFollowsTheDecision)
{
    for (const QByteArray& afterwards : { QByteArray("keep-alive"), QByteArray("close") }) {
        SCOPED_TRACE(afterwards.constData());
        KRTestServer server(KRTestServer::always(200, {}, "Connection: " + afterwards + "\r\n"),
            KRTestCertificate::UnknownAuthority);
        const QString other = QString(server.fingerprint()).replace(0, 2, u"XX"_s);
        trust(server);
        EXPECT_EQ(askWithPassword(server.url()), 0);
        EXPECT_EQ(askWithPassword(server.url()), 0);
        EXPECT_EQ(server.connectionCount(), afterwards == "close" ? 2 : 1);
        trust(server, other);
        EXPECT_EQ(askWithPassword(server.url()), KRHTTPConnectionErrorCertificateChanged);
        trust(server);
        EXPECT_EQ(askWithPassword(server.url()), 0);
        KRTrustedCertificates::stopTrusting(serverOf(server));
        EXPECT_EQ(askWithPassword(server.url()), Refused);
        EXPECT_EQ(server.requestCount(), 3);
    }
}

TEST_F(KRServerCertificates, FingerprintsAreReadAsPeopleCopyThem)
{
    const QString digits = u"0123456789abcdef"_s.repeated(4);
    const QString fingerprint = KRServerCertificate::fingerprintFromText(digits);
    EXPECT_TRUE(fingerprint.startsWith(u"01:23:45:67:89:AB:CD:EF:01:")) << qPrintable(fingerprint);
    EXPECT_EQ(fingerprint.size(), 95);
    for (const QString& written :
        { fingerprint, u"sha256 Fingerprint="_s + fingerprint, u' ' + digits + u'\n' })
        EXPECT_EQ(KRServerCertificate::fingerprintFromText(written), fingerprint);
    EXPECT_EQ(KRServerCertificate::fingerprintFromText(
                  (KRServerCertificate { {}, fingerprint }).groupedFingerprint()),
        fingerprint);
    for (const QString& none : { QString(), digits.chopped(2), digits + u"00"_s, digits.chopped(1) + u'g' })
        EXPECT_TRUE(KRServerCertificate::fingerprintFromText(none).isEmpty()) << qPrintable(none);
    EXPECT_EQ(KRServerCertificate::serverOfURL(QUrl(u"https://Example.org/a"_s)), u"example.org:443"_s);
    EXPECT_TRUE(KRServerCertificate::serverOfURL(QUrl(u"http://example.org/"_s)).isEmpty());
    EXPECT_EQ((KRServerCertificate { u"example.org:443"_s, {} }).serverName(), u"example.org"_s);
    EXPECT_EQ((KRServerCertificate { u"example.org:8443"_s, {} }).serverName(), u"example.org:8443"_s);
}
