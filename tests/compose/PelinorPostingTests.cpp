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

const QByteArray posted
    = "<status><id>7</id><text>x</text><user><id>1</id><screen_name>alice</screen_name></user></status>";
const QByteArray sent
    = "<direct_message><id>7</id><text>x</text><sender><id>1</id><screen_name>alice</screen_name>"
      "</sender><recipient><id>2</id><screen_name>bob</screen_name></recipient></direct_message>";

QByteArray linkAnswer(const QByteArray& link)
{
    return "<rsp><mediaurl>" + link + "</mediaurl></rsp>";
}

class PelinorPostingTest : public ComposeFixture, public PelinorPostingDelegate {
protected:
    PelinorPostingTest()
    {
        answer(update, KRTestServer::always(200, posted));
        answer(newMessage, KRTestServer::always(200, sent));
        draft.text = u"hello"_s;
    }

    void attach(const QStringList& files)
    {
        for (const QString& file : files) {
            draft.text += PelinorAttachmentCharacter;
            draft.attachments.append({ draft.text.size() - 1, file });
        }
    }
    /// Posts, and answers what came of it.
    QString run(bool withTwitlonger = false)
    {
        const qsizetype before = events.size();
        if (withTwitlonger)
            posting->postWithTwitlonger();
        else
            posting->post(draft, account);
        EXPECT_TRUE(KRWaitUntil([&] {
            return events.size() > before && events.last() != u"begin" && events.last() != u"send"
                && !posting->isPosting();
        }));
        return events.last();
    }
    QString statusOf(const KRTestServer::Request& request, const QString& key = u"status"_s) const
    {
        return QUrlQuery(QString::fromUtf8(request.body).replace(u'+', u' '))
            .queryItemValue(key, QUrl::FullyDecoded);
    }

    void postingDidBegin() override { events.append(u"begin"_s); }
    void postingDidEnd() override { events.append(u"end"_s); }
    void postingDidProgress(int number, int count, const KRUploadProgress& progress) override
    {
        if (progress.sent == 0)
            events.append(u"file %1 of %2"_s.arg(number).arg(count));
        lastProgress = progress;
    }
    void postingWillSend() override { events.append(u"send"_s); }
    void postingShowSheet(const PelinorSheet& shown) override
    {
        sheet = shown;
        events.append(u"%1|%2"_s.arg(shown.message, shown.informativeText));
    }
    void postingDidFinish() override { events.append(u"finish"_s); }

    PelinorDraft draft;
    QStringList events;
    PelinorSheet sheet;
    KRUploadProgress lastProgress;
    std::shared_ptr<PelinorPosting> posting = std::make_shared<PelinorPosting>(*twitter, &defaults, this);
};

} // namespace

TEST_F(PelinorPostingTest, AReplyGoesOutWithTheLinksOfItsFiles)
{
    const QString first = fileWith(u"1.png"_s, "one");
    const QString second = fileWith(u"2.mov"_s, "two");
    attach({ first, second });
    draft.text += u"!"_s;
    draft.setInReplyTo(KRTestStatus(u"42"_s, KRTestUser(u"2"_s, u"bob"_s)).get());
    answer("/TwitPicAPIHost/api/upload", KRTestServer::always(200, linkAnswer("http://p.example/1")));
    answer(upload, KRTestServer::always(200, linkAnswer("http://p.example/2z")));
    defaults.setInteger("ImageServicePreferredServiceDefaultsKey", 1);
    EXPECT_EQ(run(), u"finish"_s);
    EXPECT_EQ(events,
        (QStringList { u"begin"_s, u"file 1 of 2"_s, u"file 2 of 2"_s, u"send"_s, u"end"_s, u"finish"_s }));
    const auto posts = requestsTo(update);
    ASSERT_EQ(posts.size(), 1);
    EXPECT_EQ(statusOf(posts[0]), u"hello http://p.example/1  http://p.example/2z !"_s);
    EXPECT_EQ(statusOf(posts[0], u"in_reply_to_status_id"_s), u"42"_s);
    EXPECT_GT(lastProgress.sent, 0);
    EXPECT_EQ(lastProgress.sent, lastProgress.total);
    QByteArrayList uploads;
    for (const KRTestServer::Request& request : server.requests()) {
        if (request.target.endsWith("/api/upload"))
            uploads.append(request.target);
    }
    EXPECT_EQ(uploads.value(0), upload) << "the last file goes first";
    posting->post({}, account);
    EXPECT_EQ(events.last(), u"finish"_s) << "there is nothing to post";
}

TEST_F(PelinorPostingTest, WhateverFailsEndsInASheetAndTheDraftIsSentOnce)
{
    const QString picture = fileWith(u"1.png"_s, "one");
    const QString photo = u"Error|Could not post image."_s;
    const QString post = u"There was an error posting your tweet.|"_s;
    const QString message = u"There was an error sending your direct message.|"_s;
    const QString lostPost = u"Your tweet may have gone out.|"_s;
    const QString lostMessage = u"Your direct message may have gone out.|"_s;
    const Handler close = [](const auto&, auto& connection) { connection.close(); };
    const Handler cut = [](const auto&, auto& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n<status><id>7</id>");
        connection.close();
    };
    const Handler reset = [](const auto&, auto& connection) { connection.reset(); };
    const struct {
        const char* path;
        Handler handler;
        QString event;
        int posts;
        bool isCritical;
    } cases[] = {
        { upload, KRTestServer::always(200, "<rsp><err/></rsp>"), photo, 0, false },
        { upload, KRTestServer::always(200, "no document"), photo, 0, false },
        { upload, KRTestServer::always(403), u"Error|"_s, 0, false },
        { upload, close, u"Error|The connection to 127.0.0.1 was lost"_s, 0, false },
        { update,
            KRTestServer::always(403, "<hash><error>Duplicate &lt;b&gt;</error></hash>"),
            post,
            1,
            true },
        { update, KRTestServer::always(500), post, 1, true },
        { update, KRTestServer::always(504), lostPost, 1, true },
        { update, KRTestServer::always(200), lostPost, 1, true },
        { update, close, lostPost, 1, true },
        { update, cut, lostPost, 1, true },
        { update, reset, lostPost, 1, true },
        { newMessage, KRTestServer::always(403, "<hash><error>No</error></hash>"), message, 1, true },
        { newMessage, reset, lostMessage, 1, true },
    };
    for (const auto& test : cases) {
        draft = {};
        draft.text = u"hello"_s;
        const bool isMessage = test.path == QByteArray(newMessage);
        if (test.path == QByteArray(upload))
            attach({ picture });
        if (isMessage)
            draft.setRecipient(KRTestUser(u"2"_s, u"bob"_s).get());
        const QByteArray target = isMessage ? newMessage : update;
        const qsizetype before = requestsTo(target).size();
        answer(test.path, test.handler);
        const QString event = run();
        EXPECT_TRUE(event.startsWith(test.event)) << qPrintable(event);
        EXPECT_EQ(events.value(events.size() - 2), u"end"_s);
        settle();
        EXPECT_EQ(requestsTo(target).size() - before, test.posts) << qPrintable(event);
        EXPECT_EQ(sheet.isCritical, test.isCritical);
        EXPECT_EQ(sheet.cancelButton, u"OK"_s);
        EXPECT_EQ(sheet.choice == PelinorSheet::Choice::ShowTimeline, event.contains(u"may have"_s));
        EXPECT_EQ(log.contains(u"Posting error: "_s), test.path == QByteArray(update));
        log.clear();
        EXPECT_EQ(event.contains(u"Duplicate"_s), event.endsWith(u"Duplicate <b>"_s)) << "as plain text";
    }
}

TEST_F(PelinorPostingTest, NothingIsSentWhereNobodyListens)
{
    const QString gone = directory.filePath(u"gone.png"_s);
    attach({ gone });
    EXPECT_EQ(run(), u"Error|The file %1 cannot be read"_s.arg(gone));
    twitter->removeAccount(account);
    EXPECT_EQ(run(), u"Error|The account alice has been removed. Choose another one to post from."_s);
    EXPECT_TRUE(requestsTo(update).isEmpty());

    TwitterServiceHosts hosts;
    hosts.setValueForKey(u"127.0.0.1:1"_s, QLatin1String(TwitterServiceHosts::RESTHostKey));
    account = TwitterAccount::accountWithUsername(u"alice"_s,
        u"wonderland"_s,
        { account->context().tables, hosts });
    twitter->addAccount(account);
    draft.attachments.clear();
    EXPECT_TRUE(run().startsWith(u"There was an error posting your tweet.|The server"_s))
        << qPrintable(run());
}

TEST_F(PelinorPostingTest, LongPostsAreOfferedToTheServiceForThem)
{
    draft.text = QString(140, u'x');
    EXPECT_EQ(run(), u"finish"_s);
    draft.text = u"\U0001f600"_s.repeated(70) + u'x';
    draft.setInReplyTo(KRTestStatus(u"42"_s, KRTestUser(u"2"_s, u"bob"_s)).get());
    EXPECT_EQ(run(),
        u"Message too long|Your post must be under 140 characters.  You may post a longer message through Twitlonger."_s);
    EXPECT_EQ(sheet.cancelButton, u"Cancel"_s);
    EXPECT_EQ(sheet.choiceButton, u"Post with Twitlonger"_s);
    EXPECT_FALSE(sheet.isChoiceDefault);
    EXPECT_EQ(requestsTo(update).size(), 1);

    const QString failed = u"Twitlonger Error|There was an error posting your tweet to Twitlonger."_s;
    for (const QByteArray& body : { QByteArray("<twitlonger><post><id>1</id></post></twitlonger>"),
             QByteArray("no document"),
             "<a><content>" + QByteArray(141, 'x') + "</content></a>" }) {
        answer(longPost, KRTestServer::always(200, body));
        EXPECT_EQ(run(true), failed);
    }
    EXPECT_EQ(statusOf(requestsTo(longPost).first(), u"message"_s), draft.text);
    EXPECT_EQ(statusOf(requestsTo(longPost).first(), u"username"_s), u"alice"_s);
    EXPECT_EQ(requestsTo(update).size(), 1);
    answer(longPost, KRTestServer::always(200, "<a><content>short (cont) http://l.example/1</content></a>"));
    EXPECT_EQ(run(true), u"finish"_s);
    EXPECT_EQ(statusOf(requestsTo(update).last()), u"short (cont) http://l.example/1"_s);
    EXPECT_EQ(statusOf(requestsTo(update).last(), u"in_reply_to_status_id"_s), u"42"_s);

    draft.setRecipient(KRTestUser(u"2"_s, u"bob"_s).get());
    EXPECT_EQ(run(), u"finish"_s) << "messages may be of any length";
}

TEST_F(PelinorPostingTest, TheLongestTextIsTheSites)
{
    TwitterSite site;
    site.hosts = account->context().hosts;
    for (const int limit : { 150, 0 }) {
        twitter->removeAccount(account);
        site.textLimit = limit;
        account = TwitterAccount::accountWithUsername(u"alice"_s,
            u"wonderland"_s,
            twitter->accountContextForSite(site));
        twitter->addAccount(account);
        draft.text = QString(150, u'x');
        EXPECT_EQ(run(), u"finish"_s);
        draft.text += u'x';
        EXPECT_EQ(run(),
            limit == 0
                ? u"finish"_s
                : u"Message too long|Your post must be under 150 characters.  You may post a longer message through Twitlonger."_s);
    }
}

TEST_F(PelinorPostingTest, AnUploadCanBeCancelledAndAnAnswerCannotComeLater)
{
    const QString large = fileWith(u"large.png"_s, QByteArray(30'000'000, 'x'));
    attach({ large });
    server.setBodies(KRTestServer::Bodies::Counted);
    posting->post(draft, account);
    ASSERT_TRUE(KRWaitUntil([&] { return lastProgress.sent > 0; }));
    EXPECT_TRUE(posting->isCancellable());
    posting->cancel();
    EXPECT_EQ(events.last(), u"end"_s);
    EXPECT_FALSE(posting->isPosting());
    ASSERT_TRUE(KRWaitUntil([&] {
        return !QDir(KRFileManager::multipartPOSTDataDirectory()).exists()
            || QDir(KRFileManager::multipartPOSTDataDirectory()).isEmpty(QDir::Files);
    }));
    EXPECT_LT(server.bodyBytes(), 30'000'000) << "the rest of the file stays here";
    settle();
    EXPECT_EQ(events.last(), u"end"_s) << "nothing comes after it";

    // The window is closed in the middle of the next one.
    posting->post(draft, account);
    posting.reset();
    const qsizetype told = events.size();
    settle();
    EXPECT_EQ(events.size(), told);
    EXPECT_TRUE(requestsTo(update).isEmpty());
}

TEST_F(PelinorPostingTest, ThirtyFilesAndTwoWindowsAtOnce)
{
    const QString picture = fileWith(u"1.png"_s, "one");
    attach(QStringList(30, picture));
    answer(upload, KRTestServer::always(200, linkAnswer("http://p.example/1")));
    answer(longPost, KRTestServer::always(200, "<a><content>all of them</content></a>"));
    const auto other = std::make_shared<PelinorPosting>(*twitter, &defaults, nullptr);
    PelinorDraft words;
    words.text = u"only words"_s;
    other->post(words, account);
    EXPECT_TRUE(run().startsWith(u"Message too long|"_s));
    ASSERT_TRUE(KRWaitUntil([&] { return !other->isPosting(); }));
    EXPECT_EQ(requestsTo(upload).size(), 30);
    EXPECT_EQ(run(true), u"finish"_s);
    EXPECT_EQ(statusOf(requestsTo(longPost).first(), u"message"_s),
        u"hello"_s + u" http://p.example/1 "_s.repeated(30));
    EXPECT_EQ(requestsTo(update).size(), 2);
}
