#include "ComposeFixture.h"
#include "compose/PelinorLinkShortening.h"
#include "compose/UsernameAutocompletionDelegate.h"
#include "model/records/KRTestRecords.h"

using namespace Qt::StringLiterals;

TEST_F(ComposeFixture, LinksAreReplacedWhereTheyAreByThen)
{
    const char* const shorten = "/TinyURLAPIHost/api-create.php";
    defaults.setInteger("URLShorteningServicePreferredService", 1);
    QString text;
    QList<bool> busy;
    auto shortening = std::make_shared<PelinorLinkShortening>(PelinorLinkShortening::Editor {
        [&] { return text; },
        [&](KRRange range, const QString& link) { text.replace(range.location, range.length, link); },
        [&](bool isBusy) { busy.append(isBusy); },
    });
    const auto shortenWith = [&](const QString& written, const QString& meanwhile) {
        busy.clear();
        text = written;
        shortening->shortenURLs(PelinorPosting::serviceContext(*twitter, *account, &defaults));
        text = meanwhile;
        ASSERT_TRUE(KRWaitUntil([&] { return busy.size() == 2; }));
        EXPECT_EQ(busy, (QList<bool> { true, false }));
    };
    answer(shorten, 200, "  http://s.example/1\r\n");
    const QString twice = u"see http://long.example/page twice: http://long.example/page, @bob"_s;
    shortenWith(twice, u"I wrote on, "_s + twice);
    EXPECT_EQ(text, u"I wrote on, see http://s.example/1 twice: http://s.example/1, @bob"_s);
    EXPECT_EQ(requestsTo(shorten).size(), 2);

    const QString written = u"see http://long.example/page"_s;
    const struct {
        QByteArray body;
        int status;
        QString meanwhile;
        QString logged;
    } cases[] = {
        { "<html>Out of order</html>", 200, written, u"URL shortening error: the service answered"_s },
        { "", 200, written, u"Error: short url response is nil"_s },
        { "", 503, written, u"URL shortening error: "_s },
        { "javascript://x", 200, written, u"URL shortening error: "_s },
        { "http://s.example/1 and http://s.example/2", 200, written, u"URL shortening error: "_s },
        { "ftp://s.example/1", 200, written, u"URL shortening error: "_s },
        { "http://s.example/1", 200, written + u"s-of-another-kind"_s, {} },
        { "http://s.example/1", 200, u"thought better of it"_s, {} },
    };
    for (const auto& test : cases) {
        log.clear();
        answer(shorten, test.status, test.body);
        shortenWith(written, test.meanwhile);
        EXPECT_EQ(text, test.meanwhile) << test.body.constData();
        EXPECT_TRUE(test.logged.isNull() || log.contains(test.logged)) << test.body.constData();
    }
    text = written;
    shortening->shortenURLs(PelinorPosting::serviceContext(*twitter, *account, &defaults));
    shortening.reset();
    settle();
    EXPECT_EQ(text, written) << "the window has been closed";
}

TEST_F(ComposeFixture, KnownNamesAreCompletedInTheirOrder)
{
    UsernameAutocompletionDelegate names(*twitter);
    for (const QString& name : { u"bonnie"_s, u"Bob"_s, u"carol"_s })
        twitter->definitiveUser(KRTestUser(name, name));
    EXPECT_EQ(names.completions(u"BO"_s, 9).join(u' '), u"bob bonnie"_s);
    EXPECT_EQ(names.completions(u"BO"_s, 1).join(u' '), u"bob"_s);
    EXPECT_EQ(names.completedString(u"c"_s) + names.completedString({}), u"carol"_s);
    EXPECT_EQ(names.indexOfName(u"carol"_s), 2);
}
