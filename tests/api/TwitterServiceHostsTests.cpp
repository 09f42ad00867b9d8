#include "api/TwitterServiceHosts.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTest.h"

namespace {

class ServiceHosts : public testing::Test {
protected:
    QString fileWith(const QByteArray& content) { return KRTestFile(m_folder, content, u"services.ini"_s); }

    QTemporaryDir m_folder;
    KRUserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
};

TEST_F(ServiceHosts, LaterTablesStandOverEarlierOnes)
{
    EXPECT_EQ(TwitterServiceHosts::hostsWithDefaults(m_defaults).value().RESTHost(), QString());
    m_defaults.setString("ServiceHosts/RESTHost", u" example.org/api "_s);
    m_defaults.setString("ServiceHosts/WebHost", u"example.org"_s);
    const TwitterServiceHosts fromDefaults = TwitterServiceHosts::hostsWithDefaults(m_defaults).value();
    EXPECT_EQ(fromDefaults.RESTHost(), u"example.org/api"_s);
    EXPECT_EQ(fromDefaults.webHost(), u"example.org"_s);
    EXPECT_EQ(fromDefaults.searchHost(), QString());

    const QString file = fileWith("[Other]\nWebHost=no\n[ServiceHosts]\nRESTHost=127.0.0.1:8443/"
                                  "api\nSearchHost=s\nList=a, b\nWebHost=\n");
    const TwitterServiceHosts fromFile = TwitterServiceHosts::hostsWithDefaults(m_defaults, file).value();
    EXPECT_EQ(fromFile.RESTHost(), u"127.0.0.1:8443/api"_s);
    EXPECT_EQ(fromFile.searchHost(), u"s"_s);
    EXPECT_EQ(fromFile.webHost(), QString());
    EXPECT_EQ(fromFile.valueForKey(u"List"_s), u"a,b"_s);
}

TEST_F(ServiceHosts, PagesAreBelowTheWebHostHoweverItIsWritten)
{
    const std::pair<QString, QByteArray> cases[] = {
        { u"example.org"_s, "https://example.org/" },
        { u"example.org/"_s, "https://example.org/" },
        { u"https://example.org/social//"_s, "https://example.org/social/" },
        { u"HTTP://example.org:81/a%2Fb"_s, "http://example.org:81/a%2Fb/" },
        { u"ftp://example.org"_s, {} },
        { u"user@example.org"_s, {} },
        { QString(), {} },
    };
    for (const auto& [host, root] : cases) {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(host, u"WebHost"_s);
        EXPECT_EQ(hosts.webRoot().toUtf8(), root) << qPrintable(host);
        EXPECT_EQ(hosts.webURLForUser(u"b%2/ö"_s).toEncoded(),
            root.isEmpty() ? QByteArray() : root + "b%252%2F%C3%B6");
        EXPECT_TRUE(hosts.webURLForUser({}).isEmpty());
    }
}

TEST_F(ServiceHosts, AFileThatCannotBeReadIsAnError)
{
    for (const QString& file :
        { m_folder.filePath(u"missing.ini"_s), m_folder.path(), fileWith("RESTHost=x\n") }) {
        const auto hosts = TwitterServiceHosts::hostsWithDefaults(m_defaults, file);
        ASSERT_TRUE(hosts.isError()) << qPrintable(file);
        EXPECT_EQ(hosts.error().domain, u"com.kestrin.pelinor"_s);
        EXPECT_TRUE(hosts.error().description.contains(file));
    }
}

TEST_F(ServiceHosts, TheRESTInterfaceIsAlwaysHTTPSAndSearchWhereItsHostSaysSo)
{
    const struct {
        QString host;
        QByteArray REST, search; // the address of "a.xml?c=%26+d"
    } cases[] = {
        { u"example.org"_s, "https://example.org/", "http://example.org/" },
        { u"example.org:8443/api/"_s, "https://example.org:8443/api/", "http://example.org:8443/api/" },
        { u"[::1]:8443"_s, "https://[::1]:8443/", "http://[::1]:8443/" },
        { u"https://example.org/api"_s, "https://example.org/api/", "https://example.org/api/" },
        { u"HTTPS://example.org"_s, "https://example.org/", "https://example.org/" },
        { u"http://example.org"_s, {}, "http://example.org/" },
        { u""_s, {}, {} },
        { u"ftp://example.org"_s, {}, {} },
        { u"user@example.org"_s, {}, {} },
        { u"example.org?x"_s, {}, {} },
        { u"example org"_s, {}, {} },
        { u"/api"_s, {}, {} },
    };
    for (const auto& test : cases) {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(test.host, u"RESTHost"_s);
        hosts.setValueForKey(test.host, u"SearchHost"_s);
        const QString path = u"a.xml?c=%26+d"_s;
        for (const auto& [url, base] : { std::pair(hosts.RESTURLForPath(path), test.REST),
                 std::pair(hosts.searchURLForPath(path), test.search) }) {
            const QByteArray expected = base.isNull() ? QByteArray() : base + "a.xml?c=%26+d";
            EXPECT_EQ(url.isError() ? QByteArray() : url.value().toEncoded(), expected)
                << qPrintable(test.host);
        }
    }
    TwitterServiceHosts hosts;
    hosts.setValueForKey(u"http://example.org"_s, u"RESTHost"_s);
    EXPECT_TRUE(hosts.RESTURLForPath({}).error().description.contains(u"only https"_s));
}

TEST_F(ServiceHosts, PasswordsLeaveThisComputerOverHTTPSAlone)
{
    const QByteArray path = "api/upload";
    const struct {
        QString value;
        QByteArray secure, plain; // of a service that speaks https, and of one that speaks http
    } cases[] = {
        { u"m.example"_s, "https://m.example/" + path, "https://m.example/" + path },
        { u"m.example:81/f/"_s, "https://m.example:81/f/" + path, "https://m.example:81/f/" + path },
        { u"https://m.example"_s, "https://m.example/" + path, "https://m.example/" + path },
        { u"https://m.example/f/"_s, "https://m.example/f/" + path, "https://m.example/f/" + path },
        { u"https://m.example/up.php?a=b"_s, "https://m.example/up.php?a=b", "https://m.example/up.php?a=b" },
        { u"127.0.0.1:8/f"_s, "https://127.0.0.1:8/f/" + path, "http://127.0.0.1:8/f/" + path },
        { u"localhost:8"_s, "https://localhost:8/" + path, "http://localhost:8/" + path },
        { u"[::1]:8"_s, "https://[::1]:8/" + path, "http://[::1]:8/" + path },
        { u"http://127.0.0.1:8"_s, "http://127.0.0.1:8/" + path, "http://127.0.0.1:8/" + path },
        { u"HTTP://LocalHost/up"_s, "http://localhost/up", "http://localhost/up" },
        { u"127.0.0.1.m.eu"_s, "https://127.0.0.1.m.eu/" + path, "https://127.0.0.1.m.eu/" + path },
        { u"http://m.example"_s, {}, {} },
        { u"http://m.example/up"_s, {}, {} },
        { u"http://127.0.0.1@m.example/up"_s, {}, {} },
        { u"https://user:pw@m.example/up"_s, {}, {} },
        { u"https://m.example/up#x"_s, {}, {} },
        { u"https:///up"_s, {}, {} },
        { u"ftp://127.0.0.1/up"_s, {}, {} },
        { u""_s, {}, {} },
    };
    for (const auto& test : cases) {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(test.value, u"PixImAPIHost"_s);
        const auto url = [&](TwitterServiceHosts::ServiceScheme scheme) {
            const auto result = hosts.uploadURLForPath(u"api/upload"_s, "PixImAPIHost", scheme);
            return result.isError() ? QByteArray() : result.value().toEncoded();
        };
        EXPECT_EQ(url(TwitterServiceHosts::ServiceScheme::HTTPS), test.secure) << qPrintable(test.value);
        EXPECT_EQ(url(TwitterServiceHosts::ServiceScheme::HTTP), test.plain) << qPrintable(test.value);
    }
}

TEST_F(ServiceHosts, LinkPrefixesEndInOneSlash)
{
    TwitterServiceHosts hosts;
    EXPECT_TRUE(hosts.linkPrefixForKey("BitlyLinkHost").isNull());
    for (const auto& [value, prefix] : { std::pair(u"s.example"_s, u"http://s.example/"_s),
             std::pair(u"127.0.0.1:8/f//"_s, u"http://127.0.0.1:8/f/"_s),
             std::pair(u"http://s.example"_s, u"http://s.example/"_s),
             std::pair(u"HTTPS://s.example/"_s, u"https://s.example/"_s) }) {
        hosts.setValueForKey(value, u"BitlyLinkHost"_s);
        EXPECT_EQ(hosts.linkPrefixForKey("BitlyLinkHost"), prefix);
    }
}

} // namespace
