#include "api/TwitterSiteFinder.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "transport/KRTestRequest.h"

#include <future>

TEST(TwitterSiteFinder, TakesWhatPeopleType)
{
    const std::pair<QString, QString> cases[] = {
        { u"social.example.org"_s, u"https://social.example.org/"_s },
        { u"  https://Social.Example.org/ "_s, u"https://social.example.org/"_s },
        { u"http://social.example.org"_s, u"https://social.example.org/"_s },
        { u"example.org/friendica"_s, u"https://example.org/friendica/"_s },
        { u"https://example.org:8443/a/b?x=1#y"_s, u"https://example.org:8443/a/b/"_s },
        { u"alice@social.example.org"_s, u"https://social.example.org/"_s },
        { u"@alice@social.example.org"_s, u"https://social.example.org/"_s },
        { u"https://social.example.org/@alice"_s, u"https://social.example.org/@alice/"_s },
        { u"[::1]:8080"_s, u"https://[::1]:8080/"_s },
        { u"localhost:8080"_s, u"https://localhost:8080/"_s },
        { u"alice"_s, {} },
        { u""_s, {} },
        { u"ftp://example.org"_s, {} },
        { u"two words.org"_s, {} },
    };
    for (const auto& [typed, root] : cases)
        EXPECT_EQ(TwitterSiteFinder::rootForText(typed).toString(), root) << typed.toStdString();
}

TEST(TwitterSiteFinder, ReadsWhatSitesSayOfThemselves)
{
    const auto description = [](const QByteArray& apis) {
        return TwitterSiteFinder::interfaceInDescription(
            "<rsd version=\"1.0\"><service><apis>" + apis + "</apis></service></rsd>")
            .toString();
    };
    EXPECT_EQ(description("<api name=\"Atom\" apiLink=\"https://a.example/atom\"/>"
                          "<api name=\"Twitter\" apiLink=\"http://a.example:80/api\"/>"),
        u"https://a.example/api/"_s)
        << "never over plain http";
    for (const char* const link : { "", "javascript:x", "https://user:x@a.example/", "/api/" })
        EXPECT_EQ(description(QByteArray("<api name=\"Twitter\" apiLink=\"") + link + "\"/>"), QString());
    EXPECT_EQ(description("<api name=\"Atom\" apiLink=\"https://a.example/atom\"/>"), QString());

    const QUrl page(u"https://a.example/some/page"_s);
    const auto linked
        = [&](const QByteArray& html) { return TwitterSiteFinder::descriptionInPage(html, page).toString(); };
    EXPECT_EQ(linked("<p>x<link rel=stylesheet href='/x.css'><LINK title=\"RSD\" rel=\"EditURI\" "
                     "href=\"/main/rsd?a=1&amp;b=2\">"),
        u"https://a.example/main/rsd?a=1&b=2"_s);
    EXPECT_EQ(linked("<link href='rsd.xml' rel='EditURI' />"), u"https://a.example/some/rsd.xml"_s);
    EXPECT_EQ(linked("<link rel='EditURI'>"), QString());
    EXPECT_EQ(linked("<link rel='NoEditURI' href='x'>"), QString());

    TwitterSite site;
    EXPECT_FALSE(TwitterSiteFinder::readConfiguration("<html><site><name>x</name></site></html>", site));
    EXPECT_FALSE(TwitterSiteFinder::readConfiguration("<config><site>", site));
    TwitterSite told;
    ASSERT_TRUE(TwitterSiteFinder::readConfiguration(
        "<config><site><name> Loop\nback </name><textlimit>1000</textlimit></site><license><name>CC</name>"
        "</license><attachments><uploads>true</uploads></attachments></config>",
        told));
    EXPECT_EQ(told.name, u"Loop back"_s);
    EXPECT_EQ(told.textLimit, 1000);
    EXPECT_TRUE(told.takesUploads);
    TwitterSite silent;
    ASSERT_TRUE(TwitterSiteFinder::readConfiguration(
        "<config><site><textlimit>-1</textlimit></site><uploads>false</uploads></config>",
        silent));
    EXPECT_FALSE(silent.textLimit.has_value());
    EXPECT_FALSE(silent.takesUploads);
}

namespace {

class TwitterSiteFinderTest : public testing::Test {
protected:
    TwitterSiteFinderTest()
    {
        KRTestTrustAuthority();
        // What a site does not have.
        const QByteArray paths = " rsd.xml api/statusnet/config.xml api/account/verify_credentials.xml "
                                 "statusnet/config.xml account/verify_credentials.xml";
        for (const QByteArray& folder : { QByteArray("/"), QByteArray("/social/") })
            for (const QByteArray& path : paths.split(' '))
                m_site.answer(folder + path, "<html>no</html>", 404);
    }

    KRResult<TwitterSite> find(const QString& typed)
    {
        std::promise<KRResult<TwitterSite>> found;
        TwitterSiteFinder::findSite(typed,
            KRCallback<TwitterSite>::withFunction(
                [&found](const KRResult<TwitterSite>& response) { found.set_value(response); }));
        return found.get_future().get();
    }
    QString hostsOf(const KRResult<TwitterSite>& found) const
    {
        if (found.isError())
            return found.error().description;
        const TwitterServiceHosts& hosts = found.value().hosts;
        return QStringList({ hosts.RESTHost(), hosts.searchHost(), hosts.webHost(), hosts.server() })
            .join(u' ')
            .replace(m_site.host(), u"SITE"_s);
    }
    QByteArray site() const { return m_site.host().toUtf8(); }

    KRTestSite m_site;
};

constexpr char configuration[] = "<config><site><name>Loopback</name></site></config>";

} // namespace

TEST_F(TwitterSiteFinderTest, AsksTheDescriptionThenThePageThenGuesses)
{
    const QString usual = u"SITE/api https://SITE/api https://SITE SITE"_s;
    m_site.answer("/api/account/verify_credentials.xml", "no", 401);
    EXPECT_EQ(hostsOf(find(m_site.host())), usual) << "who refuses a nobody is a service";
    for (const KRTestServer::Request& request : m_site.requests())
        EXPECT_TRUE(request.value("authorization").isEmpty());

    m_site.answer("/api/account/verify_credentials.xml", "no", 404);
    m_site.answer("/social/statusnet/config.xml", configuration);
    const KRResult<TwitterSite> folder = find(m_site.host() + u"/social/"_s);
    EXPECT_EQ(hostsOf(folder), u"SITE/social https://SITE/social https://SITE/social SITE/social"_s);
    EXPECT_EQ(folder.value().name, u"Loopback"_s);

    m_site.answer("/", "<link rel=\"EditURI\" href=\"/main/rsd\">");
    m_site.answer("/main/rsd",
        "<rsd><api name=\"Twitter\" apiLink=\"https://" + site() + "/index.php/api/\"/></rsd>");
    m_site.answer("/index.php/api/statusnet/config.xml", configuration);
    EXPECT_EQ(hostsOf(find(m_site.host())),
        u"SITE/index.php/api https://SITE/index.php/api https://SITE/index.php SITE/index.php"_s);

    m_site.answer("/rsd.xml", "<rsd><api name=\"Twitter\" apiLink=\"https://" + site() + "/api/\"/></rsd>");
    m_site.answer("/api/statusnet/config.xml", configuration);
    EXPECT_EQ(hostsOf(find(u"https://%1/"_s.arg(m_site.host()))), usual);
}

TEST_F(TwitterSiteFinderTest, ASiteThatHasMovedIsFoundWhereItIsNow)
{
    const auto sendOn = [to = site()](const auto& request, auto& connection) {
        connection.respond(301, {}, "Location: https://" + to + request.target + "\r\n");
    };
    const KRTestServer moved(sendOn, KRTestCertificate::Good);
    const QString usual = u"SITE/api https://SITE/api https://SITE SITE"_s;
    m_site.answer("/api/account/verify_credentials.xml", "no", 401);
    EXPECT_EQ(hostsOf(find(moved.host())), usual) << "a redirect takes no password along";
    m_site.answer("/api/statusnet/config.xml", configuration);
    EXPECT_EQ(hostsOf(find(moved.host())), usual);
    m_site.answer("/", "<link rel=\"EditURI\" href=\"/main/rsd\">");
    m_site.answer("/main/rsd",
        "<rsd><api name=\"Twitter\" apiLink=\"https://" + site() + "/x/api/\"/></rsd>");
    m_site.answer("/x/api/statusnet/config.xml", configuration);
    EXPECT_EQ(hostsOf(find(moved.host())), u"SITE/x/api https://SITE/x/api https://SITE/x SITE/x"_s);
}

TEST_F(TwitterSiteFinderTest, SaysWhereNothingWasFound)
{
    const QString nothing = hostsOf(find(m_site.host()));
    EXPECT_TRUE(nothing.startsWith(u"No micro-blogging service was found at %1 ("_s.arg(m_site.host())))
        << nothing.toStdString();
    EXPECT_EQ(hostsOf(find(u"no server"_s)), u"\"no server\" is no server's address"_s);
    for (const QByteArray& target : m_site.targets())
        EXPECT_FALSE(target.startsWith("POST"));
}

TEST_F(TwitterSiteFinderTest, ARefusedCertificateIsToldAndATrustedOneIsTheSites)
{
    KRTestSite elsewhere;
    for (KRTestSite* const site : { &m_site, &elsewhere })
        site->changeCertificate();
    const KRServerCertificate own { m_site.host(), m_site.fingerprint() };
    const KRServerCertificate other { elsewhere.host(), elsewhere.fingerprint() };
    const auto refused = [this] {
        const KRResult<TwitterSite> found = find(m_site.host());
        return found.isError() ? KRServerCertificate::refusedByError(found.error()) : std::nullopt;
    };
    EXPECT_EQ(refused(), own);
    EXPECT_TRUE(m_site.targets().isEmpty());

    // Another server may stand for the interface: its certificate is another decision, if it comes to that.
    KRTrustedCertificates::trust(own);
    const QByteArray interface = elsewhere.host().toUtf8();
    m_site.answer("/rsd.xml",
        "<rsd><api name=\"Twitter\" apiLink=\"https://" + interface + "/api/\"/></rsd>");
    EXPECT_EQ(refused(), other);
    m_site.answer("/api/statusnet/config.xml", configuration);
    const KRResult<TwitterSite> here = find(m_site.host());
    ASSERT_FALSE(here.isError()) << here.error().description.toStdString();
    EXPECT_EQ(here.value().certificates, QList { own });
    KRTrustedCertificates::trust(other);
    elsewhere.answer("/api/statusnet/config.xml", configuration);
    const KRResult<TwitterSite> there = find(m_site.host());
    ASSERT_FALSE(there.isError()) << there.error().description.toStdString();
    EXPECT_EQ(there.value().certificates, QList { other });
    for (const KRServerCertificate& certificate : { own, other })
        KRTrustedCertificates::stopTrusting(certificate.server);
}
