#include "ComposeFixture.h"
#include "foundation/KRFileManager.h"
#include "model/records/KRTestRecords.h"

#include <QDir>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr char update[] = "/statuses/update.xml";
constexpr char newMessage[] = "/direct_messages/new.xml";
constexpr char upload[] = "/YFrogAPIHost/api/upload";
constexpr char longPost[] = "/TwitlongerAPIHost/api_post";
const QString finished = u"finish"_s;
const TwitterUserPtr bob = KRTestUser(u"2"_s, u"bob"_s);

QByteArray linkAnswer(const QByteArray& link)
{
    return "<rsp><mediaurl>" + link + "</mediaurl></rsp>";
}

class PelinorPostingTest : public ComposeFixture, public PelinorPostingDelegate {
protected:
    PelinorPostingTest()
    {
        const QByteArray people = "<sender><id>1</id></sender><recipient><id>2</id></recipient>";
        answer(update, 200, "<status><id>7</id><user><id>1</id></user></status>");
        answer(newMessage, 200, "<direct_message><id>7</id>" + people + "</direct_message>");
        answer(upload, 200, linkAnswer("http://p.example/1"));
        begin(u"hello"_s);
    }

    void begin(const QString& text, const QStringList& files = {})
    {
        draft = {};
        draft.text = text;
        for (const QString& file : files) {
            draft.text += PelinorAttachmentCharacter;
            draft.attachments.append({ draft.text.size() - 1, file });
        }
    }
    /// Posts, and answers what came of it.
    QString run(bool withTwitlonger = false)
    {
        events.clear();
        withTwitlonger ? posting->postWithTwitlonger() : posting->post(draft, account);
        EXPECT_TRUE(KRWaitUntil([&] { return events.size() > 1 && !posting->isPosting(); }));
        return events.last();
    }
    QString sent(const QByteArray& path, const QString& key = u"status"_s) const
    {
        const auto requests = requestsTo(path);
        const QByteArray body = requests.isEmpty() ? QByteArray() : requests.last().body;
        return QUrlQuery(QString::fromUtf8(body).replace(u'+', u' ')).queryItemValue(key, QUrl::FullyDecoded);
    }

    void postingDidBegin() override { events.append(u"begin"_s); }
    void postingDidEnd() override { events.append(u"end"_s); }
    void postingDidProgress(int number, int count, const KRUploadProgress& progress) override
    {
        if (progress.sent == 0)
            events.append(u"file %1 of %2"_s.arg(number).arg(count));
        last = progress;
    }
    void postingWillSend() override { events.append(u"send"_s); }
    void postingShowSheet(const PelinorSheet& shown) override
    {
        sheet = shown;
        events.append(u"%1|%2"_s.arg(shown.message, shown.informativeText));
    }
    void postingDidFinish() override { events.append(finished); }

    PelinorDraft draft;
    QStringList events;
    PelinorSheet sheet;
    KRUploadProgress last;
    std::shared_ptr<PelinorPosting> posting = std::make_shared<PelinorPosting>(*twitter, &defaults, this);
};

} // namespace

TEST_F(PelinorPostingTest, AReplyGoesOutWithTheLinksOfItsFiles)
{
    begin(u"hello"_s, { fileWith(u"1.png"_s, "one"), fileWith(u"2.mov"_s, "two") });
    draft.text += u"!"_s;
    draft.setInReplyTo(KRTestStatus(u"42"_s, bob).get());
    answer("/TwitPicAPIHost/api/upload", 200, linkAnswer("http://p.example/1"));
    answer(upload, 200, linkAnswer("http://p.example/2z"));
    defaults.setInteger("ImageServicePreferredServiceDefaultsKey", 1);
    EXPECT_EQ(run(), finished);
    EXPECT_EQ(events.join(u' '), u"begin file 1 of 2 file 2 of 2 send end finish");
    EXPECT_EQ(sent(update), u"hello http://p.example/1  http://p.example/2z !"_s);
    EXPECT_EQ(sent(update, u"in_reply_to_status_id"_s), u"42"_s);
    EXPECT_TRUE(last.sent > 0 && last.sent == last.total);
    posting->post({}, account);
    EXPECT_EQ(events.last(), finished) << "there is nothing to post";
    defaults.removeObjectForKey("ImageServicePreferredServiceDefaultsKey");
    answer("/statusnet/media/upload", 200, linkAnswer("https://p.example/3"));
    useSite({ .hosts = account->context().hosts, .takesUploads = true });
    begin(u"mine"_s, { fileWith(u"3.png"_s, "three") });
    EXPECT_EQ(run(), finished);
    EXPECT_EQ(sent(update), u"mine https://p.example/3 "_s);
}

TEST_F(PelinorPostingTest, WhateverFailsEndsInASheetAndTheDraftIsSentOnce)
{
    const QString post = u"There was an error posting your tweet.|"_s;
    const QString message = u"There was an error sending your direct message.|"_s;
    const QString lostPost = u"Your tweet may have gone out.|"_s;
    const QString lostMessage = u"Your direct message may have gone out.|"_s;
    const QByteArray refusal = "<hash><error>Duplicate &lt;b&gt;</error></hash>";
    const Handler close = [](const auto&, auto& connection) { connection.close(); };
    const Handler reset = [](const auto&, auto& connection) { connection.reset(); };
    const Handler cut = [](const auto&, auto& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n<status><id>7</id>");
        connection.close();
    };
    const auto always
        = [](int status, const QByteArray& body = {}) { return KRTestServer::always(status, body); };
    const struct {
        QByteArray path;
        Handler handler;
        QString event;
    } cases[] = {
        { upload, always(200, "<rsp><err/></rsp>"), u"Error|Could not post image."_s },
        { upload, always(403), u"Error|"_s },
        { upload, close, u"Error|The connection to 127.0.0.1 was lost"_s },
        { update, always(403, refusal), post + u"Forbidden. Duplicate <b>"_s },
        { update, always(500), post },
        { update, always(504), lostPost },
        { update, always(200), lostPost },
        { update, close, lostPost },
        { update, cut, lostPost },
        { newMessage, always(403, refusal), message + u"Forbidden. Duplicate <b>"_s },
        { newMessage, reset, lostMessage },
    };
    const QString picture = fileWith(u"1.png"_s, "one");
    for (const auto& test : cases) {
        const bool isUpload = test.path == upload;
        const QByteArray target = isUpload ? update : test.path;
        begin(u"hello"_s, isUpload ? QStringList(picture) : QStringList());
        if (target == newMessage)
            draft.setRecipient(bob.get());
        const qsizetype before = requestsTo(target).size();
        answer(test.path, test.handler);
        log.clear();
        const QString event = run();
        EXPECT_TRUE(event.startsWith(test.event)) << qPrintable(event);
        EXPECT_EQ(events.value(events.size() - 2), u"end"_s);
        EXPECT_EQ(events.contains(u"send"_s), !isUpload) << "from where it cannot be called back";
        settle();
        EXPECT_EQ(requestsTo(target).size() - before, isUpload ? 0 : 1) << qPrintable(event);
        EXPECT_EQ(sheet.isCritical, !isUpload);
        EXPECT_EQ(sheet.choice == PelinorSheet::Choice::ShowTimeline, event.contains(u"may have"_s));
        EXPECT_EQ(log.contains(u"Posting error: "_s), test.path == update);
    }
}

TEST_F(PelinorPostingTest, NothingIsSentWhereNobodyListens)
{
    const QString gone = directory.filePath(u"gone.png"_s);
    begin(u"hello"_s, { gone });
    EXPECT_EQ(run(), u"Error|The file %1 cannot be read"_s.arg(gone));
    // The account goes while its picture is on the way.
    begin(u"hello"_s, { fileWith(u"1.png"_s, "one") });
    answer(upload, [this](const auto&, auto& connection) {
        runOnMainThread([this] { twitter->removeAccount(account); });
        connection.respond(200, linkAnswer("http://p.example/1"));
    });
    const QString removed = u"Error|The account alice has been removed. Choose another one to post from."_s;
    EXPECT_EQ(run(), removed);
    EXPECT_EQ(run(), removed);
    EXPECT_EQ(requestsTo(upload).size(), 1);
    EXPECT_TRUE(requestsTo(update).isEmpty());
    useSite({ .hosts = hostsWith(u"127.0.0.1:1"_s) });
    begin(u"hello"_s);
    EXPECT_TRUE(run().startsWith(u"There was an error posting your tweet.|The server"_s)) << "not sent";
    account->setPassword({});
    EXPECT_TRUE(run().startsWith(u"There was an error posting your tweet.|"_s));
}

TEST_F(PelinorPostingTest, WhatIsTooLongForTheSiteIsOfferedToTheServiceForLongPosts)
{
    const QString tooLong
        = u"Message too long|Your post must be under %1 characters.  You may post a longer message through Twitlonger."_s;
    begin(u"\U0001f600"_s.repeated(70));
    EXPECT_EQ(run(), finished);
    begin(u"\U0001f600"_s.repeated(70) + u'x');
    draft.setInReplyTo(KRTestStatus(u"42"_s, bob).get());
    EXPECT_EQ(run(), tooLong.arg(140));
    EXPECT_EQ(sheet.cancelButton + u'|' + sheet.choiceButton, u"Cancel|Post with Twitlonger"_s);
    EXPECT_FALSE(sheet.isChoiceDefault || sheet.isCritical);

    const QByteArray content = "<a><content>%1</content></a>";
    for (const QByteArray& body : { QByteArray("<a><id>1</id></a>"),
             QByteArray("no document"),
             QByteArray(content).replace("%1", QByteArray(141, 'x')) }) {
        answer(longPost, 200, body);
        EXPECT_EQ(run(true), u"Twitlonger Error|There was an error posting your tweet to Twitlonger."_s);
    }
    EXPECT_EQ(sent(longPost, u"message"_s), draft.text);
    EXPECT_EQ(sent(longPost, u"username"_s), u"alice"_s);
    EXPECT_EQ(requestsTo(update).size(), 1);
    const QByteArray whole = QByteArray(140, 'y');
    answer(longPost, 200, QByteArray(content).replace("%1", whole));
    EXPECT_EQ(run(true), finished);
    EXPECT_EQ(sent(update).toUtf8(), whole);
    EXPECT_EQ(sent(update, u"in_reply_to_status_id"_s), u"42"_s);
    draft.setRecipient(bob.get());
    EXPECT_EQ(run(), finished) << "messages may be of any length";

    begin(QString(151, u'x'));
    useSite({ .hosts = account->context().hosts, .textLimit = 150 });
    EXPECT_EQ(run(), tooLong.arg(150));
    useSite({ .hosts = account->context().hosts, .textLimit = 0 });
    EXPECT_EQ(run(), finished) << "no limit";
}

TEST_F(PelinorPostingTest, AnUploadCanBeCancelledAndAnAnswerCannotComeLater)
{
    begin(u"hello"_s, { fileWith(u"large.png"_s, QByteArray(30'000'000, 'x')) });
    server.setBodies(KRTestServer::Bodies::Counted);
    posting->post(draft, account);
    ASSERT_TRUE(KRWaitUntil([&] { return last.sent > 0; }));
    EXPECT_TRUE(posting->isCancellable());
    posting->cancel();
    EXPECT_FALSE(posting->isPosting());
    const QDir copies(KRFileManager::multipartPOSTDataDirectory());
    ASSERT_TRUE(KRWaitUntil([&] { return !copies.exists() || copies.isEmpty(QDir::Files); }));
    EXPECT_LT(server.bodyBytes(), 30'000'000) << "the rest of the file stays here";
    // The window is closed in the middle of the next one.
    posting->post(draft, account);
    posting.reset();
    events.clear();
    settle();
    EXPECT_TRUE(events.isEmpty() && requestsTo(update).isEmpty());
}
