#include "ComposeFixture.h"
#include "compose/PelinorLinkShortening.h"

using namespace Qt::StringLiterals;

namespace {

constexpr char shorten[] = "/TinyURLAPIHost/api-create.php";

class PelinorLinkShorteningTest : public ComposeFixture {
protected:
    PelinorLinkShorteningTest() { defaults.setInteger("URLShorteningServicePreferredService", 1); }

    void begin() { shortening->shortenURLs(PelinorPosting::serviceContext(*twitter, *account, &defaults)); }
    void finish()
    {
        ASSERT_TRUE(KRWaitUntil([&] { return busy.size() % 2 == 0; }));
    }

    QString text;
    QList<bool> busy;
    std::shared_ptr<PelinorLinkShortening> shortening
        = std::make_shared<PelinorLinkShortening>(PelinorLinkShortening::Editor { [this] { return text; },
            [this](KRRange range, const QString& link) { text.replace(range.location, range.length, link); },
            [this](bool isBusy) { busy.append(isBusy); } });
};

} // namespace

TEST_F(PelinorLinkShorteningTest, EveryLinkIsReplacedWhereItIsByThen)
{
    answer(shorten, KRTestServer::always(200, "  http://s.example/1\r\n"));
    text = u"see http://long.example/page twice: http://long.example/page, @bob"_s;
    begin();
    EXPECT_EQ(busy, QList<bool> { true });
    text.prepend(u"I wrote on, "_s);
    finish();
    EXPECT_EQ(text, u"I wrote on, see http://s.example/1 twice: http://s.example/1, @bob"_s);
    EXPECT_EQ(requestsTo(shorten).size(), 2);
    EXPECT_EQ(busy, (QList<bool> { true, false }));
}

TEST_F(PelinorLinkShorteningTest, WhatIsNoLinkAndWhatComesTooLateChangesNothing)
{
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
        { "http://s.example/1", 200, written + u"s-of-another-kind"_s, {} },
        { "http://s.example/1", 200, u"thought better of it"_s, {} },
    };
    for (const auto& test : cases) {
        log.clear();
        answer(shorten, KRTestServer::always(test.status, test.body));
        text = written;
        begin();
        text = test.meanwhile;
        finish();
        EXPECT_EQ(text, test.meanwhile) << test.body.constData();
        if (!test.logged.isNull()) {
            EXPECT_TRUE(log.contains(test.logged)) << test.body.constData();
        }
    }
    text = written;
    begin();
    shortening.reset();
    settle();
    EXPECT_EQ(text, written) << "the window has been closed";
}
