#include "ServicesFixture.h"
#include "services/KRLinkAction.h"
#include "text/KRActiveTextRanges.h"

namespace {

using Kind = KRLinkAction::Kind;
using enum KRShortLinkPreview;

TwitterServiceHosts hosts()
{
    TwitterServiceHosts hosts;
    KRTestSetLinkHosts(hosts);
    hosts.setValueForKey(u"bit.example"_s, QLatin1String(TwitterServiceHostKeys::BitlyLinkHost));
    return hosts;
}

KRLinkAction open(const QString& url)
{
    return { Kind::Open, {}, QUrl(url) };
}

KRLinkAction askToOpen(const QString& url)
{
    return { Kind::OpenWhenUserAgrees, {}, QUrl(url) };
}

KRLinkAction picture(const QString& link, const QString& url)
{
    return { Kind::ShowPicture, link, QUrl(url) };
}

TEST(KRLinkActionTests, AClickOnASpanMeans)
{
    const QString bit = u"http://bit.example/x"_s;
    const QString www = u"http://www.px.example/f/b"_s;
    const struct {
        QString text;
        int type;
        KRShortLinkPreview preview;
        KRLinkAction action;
    } cases[] = {
        { u"hm"_s, 0, On, { Kind::Beep, u"hm"_s, {} } },
        { u"http://example.org/a"_s, 1, On, open(u"http://example.org/a"_s) },
        { u"www.example.org"_s, 1, Off, open(u"http://www.example.org"_s) },
        { u"WWW.example.org"_s, 1, Off, {} },
        { u"ftp://www.example.org"_s, 1, Off, open(u"ftp://www.example.org"_s) },
        { u"HTTPS://example.org/ü"_s, 1, Off, open(u"https://example.org/%C3%BC"_s) },
        { u"ssh://host/x"_s, 1, Off, askToOpen(u"ssh://host/x"_s) },
        { u"file:///etc/passwd"_s, 1, On, askToOpen(u"file:///etc/passwd"_s) },
        { u"http://tp.example/b"_s,
            1,
            On,
            picture(u"http://tp.example/b"_s, u"http://tp.example/show/iphone/b"_s) },
        { u"http://yf.example/b"_s,
            1,
            Off,
            picture(u"http://yf.example/b"_s, u"http://yf.example/b:iphone"_s) },
        // Known only with the scheme that was put in front.
        { u"www.px.example/f/b"_s, 1, Off, picture(www, www + u"/full"_s) },
        { u"http://yf2.example/bz"_s,
            1,
            On,
            { Kind::PlayMovie, {}, QUrl(u"http://yf2.example/bz:iphone"_s) } },
        { u"http://posterous.example/b"_s, 1, On, open(u"http://posterous.example/b"_s) },
        { bit, 1, On, { Kind::PreviewShortLink, bit, {} } },
        { bit, 1, Off, open(bit) },
        { u"#tag"_s, 2, On, { Kind::Search, u"#tag"_s, {} } },
        { u"bob"_s, 3, On, { Kind::ShowUser, u"bob"_s, {} } },
        { u"$SYM"_s, 4, Off, { Kind::Search, u"$SYM"_s, {} } },
        { u"a.b+c@example.org"_s, 5, On, { Kind::Mail, {}, QUrl(u"mailto:a.b+c@example.org"_s) } },
        { u"x"_s, 6, On, {} },
        { u"x"_s, -1, On, {} },
    };
    for (const auto& [text, type, preview, action] : cases)
        EXPECT_EQ(KRActionForActiveString(hosts(), text, type, preview), action) << qPrintable(text);
}

TEST(KRLinkActionTests, PagesOfTheAccountsOwnSiteStayInTheProgram)
{
    TwitterServiceHosts site = hosts();
    site.setValueForKey(u"https://social.example/site"_s, QLatin1String(TwitterServiceHosts::webHostKey));
    const auto shows = [](Kind kind, const QString& text) { return KRLinkAction { kind, text, {} }; };
    const std::pair<QString, KRLinkAction> cases[] = {
        { u"/bob"_s, shows(Kind::ShowUser, u"bob"_s) },
        { u"/bob/"_s, shows(Kind::ShowUser, u"bob"_s) },
        { u"/tag/rain"_s, shows(Kind::Search, u"#rain"_s) },
        { u"/bob/status/17"_s, shows(Kind::ShowStatus, u"17"_s) },
        { u"/bob/statuses/17"_s, shows(Kind::ShowStatus, u"17"_s) },
        { u"/notice/17"_s, shows(Kind::ShowStatus, u"17"_s) },
        { u"/notice/x17"_s, {} },
        { u"/bob/status/x"_s, {} },
        { u"/bob/all"_s, {} },
        { u"/Settings"_s, {} },
        { u"/bob?x=1"_s, {} },
        { u"/böb"_s, {} },
        { u"/"_s, {} },
    };
    for (const QString& root : { u"http://social.example/site"_s, u"https://social.example:443/site"_s }) {
        for (const auto& [path, action] : cases) {
            KRLinkAction expected = action.kind == Kind::Nothing ? open(root + path) : action;
            if (action.kind == Kind::ShowStatus)
                expected.url = QUrl(root + path);
            EXPECT_EQ(KRActionForActiveString(site, root + path, 1, Off), expected) << qPrintable(path);
        }
    }
    for (const QString& elsewhere : { u"https://social.example/bob"_s,
             u"https://other.example/site/bob"_s,
             u"https://social.example:8/site/bob"_s,
             u"ftp://social.example/site/bob"_s })
        EXPECT_EQ(KRActionForActiveString(site, elsewhere, 1, Off), open(elsewhere)) << qPrintable(elsewhere);
}

TEST(KRLinkActionTests, TextsBecomeAddresses)
{
    // What is opened; nothing when empty.
    const std::pair<QString, QByteArray> cases[] = {
        { u"http://example.org/a b"_s, "http://example.org/a%20b" },
        { u"http://example.org/a b%20c"_s, "http://example.org/a%20b%20c" },
        { u"http://example.org/c%zz"_s, "http://example.org/c%25zz" },
        { u"http://example.org/é|è"_s, "http://example.org/%C3%A9%7C%C3%A8" },
        { u"http://example.org/?q=<\"`>#x"_s, "http://example.org/?q=%3C%22%60%3E#x" },
        { u"mailto:a@example.org"_s, "mailto:a@example.org" },
        { u"http://a b/"_s, {} },
        { u"http://example.org:port/"_s, {} },
        { u"/etc/passwd"_s, {} },
        { u"example.org"_s, {} },
        { u""_s, {} },
        { QString(), {} },
    };
    for (const auto& [text, url] : cases) {
        const KRLinkAction action = KRActionForURLString(hosts(), text, On);
        EXPECT_EQ(action.url.toEncoded(), url) << qPrintable(text);
        EXPECT_EQ(action.kind, url.isEmpty() ? Kind::Nothing : Kind::Open) << qPrintable(text);
    }
    EXPECT_EQ(KRActionForOpening(u"http://bit.example/x"_s).kind, Kind::Open) << "even a short link";
}

} // namespace
