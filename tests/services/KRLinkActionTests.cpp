#include "api/TwitterServiceHostKeys.h"
#include "api/TwitterServiceHosts.h"
#include "services/KRLinkAction.h"
#include "support/KRTest.h"
#include "text/KRActiveTextRanges.h"

namespace {

using Kind = KRLinkAction::Kind;
using enum KRShortLinkPreview;

TwitterServiceHosts hosts()
{
    using namespace TwitterServiceHostKeys;
    TwitterServiceHosts hosts;
    for (const auto& [key, host] : { std::pair(TwitPicLinkHost, u"tp.example"_s),
             std::pair(YFrogLinkHost, u"yf.example"_s),
             std::pair(YFrogSecondLinkHost, u"yf2.example"_s),
             std::pair(TwitgooLinkHost, u"tg.example"_s),
             std::pair(ImgLyLinkHost, u"il.example"_s),
             std::pair(PixImLinkHost, u"www.px.example/f"_s),
             std::pair(BitlyLinkHost, u"bit.example"_s) })
        hosts.setValueForKey(host, QLatin1String(key));
    return hosts;
}

TEST(KRLinkActionTests, AClickOnASpanMeans)
{
    const QUrl none;
    struct {
        QString text;
        int type;
        KRShortLinkPreview preview;
        KRLinkAction action;
    } const cases[] = {
        { u"hm"_s, 0, On, { Kind::Beep, u"hm"_s, none } },
        { u"http://example.org/a"_s, 1, On, { Kind::Open, {}, QUrl(u"http://example.org/a"_s) } },
        { u"www.example.org"_s, 1, Off, { Kind::Open, {}, QUrl(u"http://www.example.org"_s) } },
        { u"WWW.example.org"_s, 1, Off, {} },
        { u"ftp://www.example.org"_s, 1, Off, { Kind::Open, {}, QUrl(u"ftp://www.example.org"_s) } },
        { u"HTTPS://example.org/ü"_s, 1, Off, { Kind::Open, {}, QUrl(u"https://example.org/%C3%BC"_s) } },
        { u"ssh://host/x"_s, 1, Off, { Kind::OpenWhenUserAgrees, {}, QUrl(u"ssh://host/x"_s) } },
        { u"file:///etc/passwd"_s, 1, On, { Kind::OpenWhenUserAgrees, {}, QUrl(u"file:///etc/passwd"_s) } },
        { u"http://tp.example/b"_s,
            1,
            On,
            { Kind::ShowPicture, u"http://tp.example/b"_s, QUrl(u"http://tp.example/show/iphone/b"_s) } },
        { u"http://yf.example/b"_s,
            1,
            Off,
            { Kind::ShowPicture, u"http://yf.example/b"_s, QUrl(u"http://yf.example/b:iphone"_s) } },
        { u"http://tg.example/b"_s,
            1,
            Off,
            { Kind::ShowPicture, u"http://tg.example/b"_s, QUrl(u"http://tg.example/b/img"_s) } },
        { u"http://il.example/b"_s,
            1,
            Off,
            { Kind::ShowPicture, u"http://il.example/b"_s, QUrl(u"http://il.example/show/large/b"_s) } },
        // Known only with the scheme that was put in front.
        { u"www.px.example/f/b"_s,
            1,
            Off,
            { Kind::ShowPicture,
                u"http://www.px.example/f/b"_s,
                QUrl(u"http://www.px.example/f/b/full"_s) } },
        { u"http://yf2.example/bz"_s,
            1,
            On,
            { Kind::PlayMovie, {}, QUrl(u"http://yf2.example/bz:iphone"_s) } },
        { u"http://posterous.example/b"_s, 1, On, { Kind::Open, {}, QUrl(u"http://posterous.example/b"_s) } },
        { u"http://bit.example/x"_s, 1, On, { Kind::PreviewShortLink, u"http://bit.example/x"_s, none } },
        { u"http://bit.example/x"_s, 1, Off, { Kind::Open, {}, QUrl(u"http://bit.example/x"_s) } },
        { u"#tag"_s, 2, On, { Kind::Search, u"#tag"_s, none } },
        { u"bob"_s, 3, On, { Kind::ShowUser, u"bob"_s, none } },
        { u"$SYM"_s, 4, Off, { Kind::Search, u"$SYM"_s, none } },
        { u"a.b+c@example.org"_s, 5, On, { Kind::Mail, {}, QUrl(u"mailto:a.b+c@example.org"_s) } },
        { u"x"_s, 6, On, {} },
        { u"x"_s, -1, On, {} },
    };
    for (const auto& [text, type, preview, action] : cases)
        EXPECT_EQ(KRActionForActiveString(hosts(), text, type, preview), action) << qPrintable(text);
}

TEST(KRLinkActionTests, TextsBecomeAddresses)
{
    struct {
        QString text;
        QByteArray url; // what is opened; nothing when empty
    } const cases[] = {
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
