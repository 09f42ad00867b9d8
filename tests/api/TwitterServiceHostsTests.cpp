#include "api/TwitterServiceHosts.h"
#include "foundation/KRUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ServiceHosts : public testing::Test {
protected:
    QString fileWith(const QByteArray& content)
    {
        const QString path = m_folder.filePath(u"services.ini"_s);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

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

TEST_F(ServiceHosts, AddressesAreAlwaysHTTPS)
{
    const struct {
        QString host;
        QByteArray url;
    } cases[] = {
        { u"example.org"_s, "https://example.org/a/b.xml?c=%26+d" },
        { u"example.org:8443/api/"_s, "https://example.org:8443/api/a/b.xml?c=%26+d" },
        { u"https://example.org/api"_s, "https://example.org/api/a/b.xml?c=%26+d" },
        { u"[::1]:8443"_s, "https://[::1]:8443/a/b.xml?c=%26+d" },
        { u""_s, {} },
        { u"http://example.org"_s, {} },
        { u"ftp://example.org"_s, {} },
        { u"user@example.org"_s, {} },
        { u"example.org?x"_s, {} },
        { u"example org"_s, {} },
        { u"/api"_s, {} },
    };
    for (const auto& test : cases) {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(test.host, u"RESTHost"_s);
        const auto url = hosts.RESTURLForPath(u"a/b.xml?c=%26+d"_s);
        ASSERT_EQ(url.isError(), test.url.isNull()) << qPrintable(test.host);
        if (!url.isError()) {
            EXPECT_EQ(url.value().toEncoded(), test.url);
        }
    }
}

TEST_F(ServiceHosts, SearchIsPlainUnlessItsHostSaysOtherwise)
{
    const struct {
        QString host;
        QByteArray url;
    } cases[] = {
        { u"search.example.org"_s, "http://search.example.org/search.json?q=%26" },
        { u"127.0.0.1:8480/api/"_s, "http://127.0.0.1:8480/api/search.json?q=%26" },
        { u"http://example.org"_s, "http://example.org/search.json?q=%26" },
        { u"https://example.org/api"_s, "https://example.org/api/search.json?q=%26" },
        { u"HTTPS://example.org"_s, "https://example.org/search.json?q=%26" },
        { u""_s, {} },
        { u"ftp://example.org"_s, {} },
        { u"https://http://example.org"_s, {} },
        { u"user@example.org"_s, {} },
    };
    for (const auto& test : cases) {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(test.host, u"SearchHost"_s);
        const auto url = hosts.searchURLForPath(u"search.json?q=%26"_s);
        ASSERT_EQ(url.isError(), test.url.isNull()) << qPrintable(test.host);
        if (!url.isError()) {
            EXPECT_EQ(url.value().toEncoded(), test.url);
        }
    }
}

TEST_F(ServiceHosts, PasswordsLeaveThisComputerOverHTTPSAlone)
{
    const struct {
        QString value;
        QByteArray secure; // of a service that speaks https
        QByteArray plain; // of one that speaks http
    } cases[] = {
        { u"m.example"_s, "https://m.example/api/upload", "https://m.example/api/upload" },
        { u"m.example:81/f/"_s, "https://m.example:81/f/api/upload", "https://m.example:81/f/api/upload" },
        { u"https://m.example"_s, "https://m.example/api/upload", "https://m.example/api/upload" },
        { u"https://m.example/f/"_s, "https://m.example/f/api/upload", "https://m.example/f/api/upload" },
        { u"https://m.example/up.php?a=b"_s, "https://m.example/up.php?a=b", "https://m.example/up.php?a=b" },
        { u"127.0.0.1:8/f"_s, "https://127.0.0.1:8/f/api/upload", "http://127.0.0.1:8/f/api/upload" },
        { u"localhost:8"_s, "https://localhost:8/api/upload", "http://localhost:8/api/upload" },
        { u"[::1]:8"_s, "https://[::1]:8/api/upload", "http://[::1]:8/api/upload" },
        { u"http://127.0.0.1:8"_s, "http://127.0.0.1:8/api/upload", "http://127.0.0.1:8/api/upload" },
        { u"HTTP://LocalHost/up"_s, "http://localhost/up", "http://localhost/up" },
        { u"127.0.0.1.m.example"_s,
            "https://127.0.0.1.m.example/api/upload",
            "https://127.0.0.1.m.example/api/upload" },
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
             std::pair(u"https://s.example/"_s, u"https://s.example/"_s) }) {
        hosts.setValueForKey(value, u"BitlyLinkHost"_s);
        EXPECT_EQ(hosts.linkPrefixForKey("BitlyLinkHost"), prefix);
    }
}

} // namespace
