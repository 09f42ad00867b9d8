#include "KRTestRequest.h"
#include "foundation/KRFileManager.h"
#include "support/KRTestServer.h"
#include "text/KRDataAdditions.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRInputStream.h"
#include "transport/KRNetworkCache.h"

#include <QTemporaryFile>

namespace {

const KRTestServer::Handler answerOK = KRTestServer::always(200, "fine");

} // namespace

TEST(KRHTTPRequest, SendsWhatItWasGiven)
{
    KRTestServer server(answerOK);
    KRTestRequest request(server.url(u"/path?a=b%26c"_s), u"POST"_s);
    request->setBody("status=hi");
    request->setUsername(u"b\u00f6b"_s);
    request->setPassword(u"pass:word"_s);
    request->addValueForHTTPHeaderField(u"1"_s, u"X-Replaced"_s);
    request->addValueForHTTPHeaderField(u"2"_s, u"X-Replaced"_s);
    request->setValueForHTTPHeaderField(u"3"_s, u"X-Replaced"_s);
    request->addValueForHTTPHeaderField(u"a"_s, u"X-Twice"_s);
    request->addValueForHTTPHeaderField(u"b"_s, u"X-Twice"_s);
    request->addValueForHTTPHeaderField(u"x\r\nX-Smuggled: y"_s, u"X-Broken"_s);
    request->addValueForHTTPHeaderField(u"own"_s, u"Authorization"_s);
    request->addValueForHTTPHeaderField(u""_s, u"X-Empty"_s);
    KRTestLog log;
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request->data(), QByteArray("fine"));
    EXPECT_EQ(request->statusCode(), 200);
    EXPECT_FALSE(request->error());

    const KRTestServer::Request sent = server.requests().value(0);
    EXPECT_EQ(sent.method, QByteArray("POST"));
    EXPECT_EQ(sent.target, QByteArray("/path?a=b%26c"));
    EXPECT_EQ(sent.body, QByteArray("status=hi"));
    EXPECT_EQ(sent.value("content-length"), QByteArray("9"));
    EXPECT_EQ(sent.value("content-type"), QByteArray("application/x-www-form-urlencoded"));
    EXPECT_EQ(sent.values("x-replaced"), QList<QByteArray> { "3" });
    EXPECT_EQ(sent.values("x-twice"), (QList<QByteArray> { "a", "b" }));
    EXPECT_EQ(sent.values("x-empty"), QList<QByteArray> { "" });
    EXPECT_EQ(sent.value("user-agent"), "Pelinor/1.2.6");
    EXPECT_TRUE(sent.values("x-smuggled").isEmpty());
    EXPECT_TRUE(sent.values("x-broken").isEmpty());
    EXPECT_EQ(sent.values("authorization"),
        (QList<QByteArray> { "Basic " + u"b\u00f6b:pass:word"_s.toUtf8().toBase64(), "own" }));
    EXPECT_TRUE(sent.values("expect").isEmpty());
    EXPECT_FALSE(log.lines().join(u'\n').contains(u"pass:word"));

    for (const QString& method : { u"HEAD"_s, u"DELETE"_s, u"PUT"_s }) {
        KRTestRequest other(server.url(), method);
        other->setBody(method == u"PUT" ? "new" : QByteArray());
        ASSERT_TRUE(other.run());
        EXPECT_EQ(server.requests().last().method, method.toLatin1());
        EXPECT_EQ(server.requests().last().body, method == u"PUT" ? "new" : "");
    }
}

TEST(KRHTTPRequest, SendsNoAuthorizationWithoutAPassword)
{
    KRTestServer server(answerOK);
    KRTestRequest request(server.url());
    request->setUsername(u"bob"_s);
    ASSERT_TRUE(request.run());
    EXPECT_TRUE(server.requests().value(0).values("authorization").isEmpty());

    QUrl withUser = server.url();
    withUser.setUserInfo(u"eve:secret"_s);
    KRTestRequest other(withUser);
    ASSERT_TRUE(other.run());
    EXPECT_TRUE(server.requests().value(1).values("authorization").isEmpty());
}

TEST(KRHTTPRequest, DeliversAnErrorStatusWithItsBody)
{
    const QString known
        = u"300 301 302 303 304 307 308 400 401 402 403 404 405 406 407 408 409 410 411 413 414 "
          "415 422 429 500 501 502 503 504"_s;
    for (const QString& status : known.split(u' '))
        EXPECT_FALSE(KRHTTPStatusText(status.toInt()).contains(u'(')) << qPrintable(status);
    EXPECT_EQ(KRHTTPStatusText(305), u"Redirected (305)"_s);
    EXPECT_EQ(KRHTTPStatusText(499), u"Client error (499)"_s);
    EXPECT_EQ(KRHTTPStatusText(599), u"Server error (599)"_s);
    KRTestServer server([](const KRTestServer::Request& request, auto& connection) {
        connection.respond(request.target.mid(1).toInt(), "<hash>nothing here</hash>");
    });
    for (const int status : { 200, 299, 300 }) {
        KRTestRequest request(server.url(u"/%1"_s.arg(status)));
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), status == 300 ? 300 : 0);
    }
    KRTestRequest request(server.url(u"/404"_s));
    ASSERT_TRUE(request.run());
    ASSERT_TRUE(request->error());
    EXPECT_EQ(*request->error(), errorWithDomain(u"com.kestrin.httprequest"_s, 404, u"Not found"_s));
    EXPECT_EQ(request->statusCode(), 404);
    EXPECT_EQ(request->data(), QByteArray("<hash>nothing here</hash>"));
}

TEST(KRHTTPRequest, ReadsHeadersWithoutWhatComesBeforeAndBehind)
{
    KRTestServer server([](const auto&, auto& connection) {
        connection.write("HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n"
                         "HTTP/1.1 200 OK\r\nX-Name: \t Value \r\n"
                         "Transfer-Encoding: chunked\r\n\r\n4\r\nfine\r\n0\r\nX-Trailer: t\r\n\r\n");
    });
    KRTestRequest request(server.url());
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request->data(), "fine");
    EXPECT_EQ(request->responseHeader("x-name"), "Value");
    for (const char* name : { "x-early", "x-trailer" })
        EXPECT_TRUE(request->responseHeader(name).isNull()) << name;
    EXPECT_EQ(request->downloadProgress(), 0.0) << "nobody told the length";
}

TEST(KRHTTPRequest, RunsOnceHoweverOftenItIsStarted)
{
    KRTestServer server([failed = std::make_shared<std::atomic<bool>>()](const auto&, auto& connection) {
        connection.respond(failed->exchange(true) ? 200 : 500, "fine");
    });
    // What it keeps of an earlier start is gone with the next.
    KRTestRequest first(server.url(u"/path?query"_s), u"POST"_s);
    first->setBody("body");
    ASSERT_TRUE(first.run());
    EXPECT_EQ(first.errorCode(), 500);
    EXPECT_EQ(first->uploadProgress() + first->downloadProgress(), 2.0);
    EXPECT_TRUE(first->description().endsWith(u" POST %1]"_s.arg(server.url(u"/path"_s).toString())));
    const KRTestCounter<KRBeginNetworkActivityNotification> began;
    const KRTestCounter<KREndNetworkActivityNotification> ended;
    // Both are under way before either can end: the background thread is held until both have started.
    std::mutex hold;
    std::unique_lock holding(hold);
    performOnSharedBackgroundThread([&] { std::scoped_lock waiting(hold); });
    KRTestRequest second(server.url());
    first.start();
    EXPECT_EQ(began.count, 1);
    first->startRequest();
    EXPECT_FALSE(first->error());
    EXPECT_EQ(first->uploadProgress() + first->downloadProgress(), 0.0);
    second.start();
    EXPECT_EQ(first->uploadedBytes() + first->downloadedBytes(), 0);
    holding.unlock();
    ASSERT_TRUE(KRWaitUntil([&] { return first.callbackCount() == 2; }) && second.wait());
    ASSERT_TRUE(KRWaitUntil([&] { return ended.count == 1; }));
    EXPECT_EQ(server.requestCount(), 3);
    EXPECT_EQ(first->data(), "fine");
    EXPECT_EQ(began.count, 1);
    EXPECT_EQ(ended.count, 1);
}

TEST(KRHTTPRequest, CanBeStartedAgainWithNewCallbacksByTheOldOne)
{
    KRTestServer server(answerOK);
    KRTestRequest request(server.url());
    request->setResponseCallback(
        KRCallback<KRHTTPRequest&>::withFunction([&](const auto&) { request.start(); }));
    request->startRequest();
    ASSERT_TRUE(request.wait());
    EXPECT_EQ(server.requestCount(), 2);
}

TEST(KRHTTPRequest, ReusesConnectionsForReadingAndNeverForWritingAndKeepsNoCookies)
{
    KRTestServer server(KRTestServer::always(200, "x", "Set-Cookie: id=1; Path=/\r\n"));
    for (int i = 0; i < 5; ++i) {
        KRTestRequest request(server.url());
        ASSERT_TRUE(request.run());
        EXPECT_TRUE(server.requests().last().values("cookie").isEmpty());
    }
    EXPECT_EQ(server.connectionCount(), 1);
    for (int i = 0; i < 3; ++i) {
        KRTestRequest request(server.url(), u"POST"_s);
        ASSERT_TRUE(request.run());
        EXPECT_EQ(server.requests().last().value("content-length"), QByteArray("0"));
    }
    EXPECT_EQ(server.connectionCount(), 4) << "what is sent on a connection of its own is never sent twice";
}

TEST(KRHTTPRequest, AcceptsCompressedAnswers)
{
    const QByteArray text = QByteArray("all work and no play ").repeated(1000);
    KRTestServer server(
        KRTestServer::always(200, KRAdditions::gzipDeflate(text), "Content-Encoding: gzip\r\n"));
    KRTestRequest request(server.url());
    ASSERT_TRUE(request.run());
    EXPECT_EQ(request->data(), text);
    EXPECT_EQ(request->downloadProgress(), 1.0);
    for (const char* const form : { "gzip", "br" })
        EXPECT_TRUE(server.requests().value(0).value("accept-encoding").contains(form)) << form;
}

TEST(KRHTTPRequest, StreamsABodyFromAFileAndReportsProgress)
{
    KRTestServer server(answerOK);
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    const QByteArray content = QByteArray("0123456789abcdef").repeated(200'000);
    ASSERT_EQ(file.write(content), content.size());
    file.close();

    KRTestLog log;
    for (const bool lengthIsKnown : { true, false }) {
        KRTestRequest request(server.url(), u"POST"_s);
        EXPECT_EQ(request->uploadProgress(), 0.0);
        request->setBodyStream(std::make_shared<KRFileInputStream>(file.fileName()));
        if (lengthIsKnown)
            request->setValueForHTTPHeaderField(QString::number(content.size()), u"Content-Length"_s);
        request->setProgressCallback(
            KRCallback<KRHTTPRequest&>::withFunction([last = 0.0](const KRHTTPRequest& sending) mutable {
                EXPECT_GE(sending.uploadProgress(), last);
                last = sending.uploadProgress();
            }));
        ASSERT_TRUE(request.run());
        EXPECT_FALSE(request->error()) << request.errorText().toStdString();
        EXPECT_EQ(server.requests().last().body, content);
        EXPECT_EQ(request->uploadedBytes(), content.size());
        EXPECT_EQ(request->uploadProgress(), lengthIsKnown ? 1.0 : 0.0);
        request->startRequest();
        ASSERT_TRUE(KRWaitUntil([&] { return server.requestCount() == (lengthIsKnown ? 2 : 4); }));
        EXPECT_EQ(server.requests().last().body, content) << "all of it again";
    }
    EXPECT_TRUE(log.contains(u"UPLOAD PROGRESS"_s));
    EXPECT_TRUE(log.contains(u"-> 1.000000"_s));
}

TEST(KRHTTPRequest, PrefersTheBodyToTheStreamAndFailsOnAnUnreadableOne)
{
    KRTestServer server(answerOK);
    KRTestLog log;
    KRTestRequest both(server.url(), u"POST"_s);
    both->setBody("body");
    both->setBodyStream(std::make_shared<KRFileInputStream>(u"/no/such/file"_s));
    ASSERT_TRUE(both.run());
    EXPECT_EQ(server.requests().value(0).body, QByteArray("body"));
    EXPECT_TRUE(log.contains(u"ERROR: body & bodyStream both specified!"_s));

    KRTestRequest unreadable(server.url(), u"POST"_s);
    unreadable->setBodyStream(std::make_shared<KRFileInputStream>(u"/no/such/file"_s));
    ASSERT_TRUE(unreadable.run());
    EXPECT_EQ(unreadable.errorCode(), KRHTTPConnectionErrorUnreadableBody);
}

TEST(KRNetworkCache, DownloadsOnceAndAnswersFromTheFileAtOnce)
{
    KRTestServer server([](const KRTestServer::Request& request, auto& connection) {
        if (request.target == "/portal.png")
            connection.respond(200, " <html>Log in", "Content-Type: text/html\r\n");
        else
            connection.respond(request.target == "/missing.png" ? 404 : 200,
                "picture",
                "Content-Type: text/html\r\n");
    });
    const auto receiver = std::make_shared<KRTestReceiver<QByteArray>>();
    const auto request = [&](const QUrl& url) {
        KRNetworkCache::request(url, Callback(receiver, &KRTestReceiver<QByteArray>::took));
    };
    const auto haveCome = [&](int count) { return KRWaitUntil([&] { return receiver->count == count; }); };
    const QUrl url = server.url(u"/a/b_normal.png?x=%20"_s);
    request(url);
    ASSERT_TRUE(haveCome(1));
    request(url);
    EXPECT_EQ(receiver->count, 2) << "a cached picture is delivered before the call returns";
    EXPECT_EQ(receiver->result->value(), QByteArray("picture"));
    EXPECT_EQ(server.requestCount(), 1);

    QString file;
    EXPECT_EQ(KRNetworkCache::cachedDataForURL(url, &file), QByteArray("picture"));
    const QString name
        = u"http___3A___2F___2F127.0.0.1___3A%1___2Fa___2Fb_normal.png___3Fx___3D___2520"_s.arg(
            server.port());
    EXPECT_EQ(file, KRFileManager::pelinorProfileImageCacheDirectory() + u'/' + name);

    request(server.url(u"/missing.png"_s));
    ASSERT_TRUE(haveCome(3));
    EXPECT_EQ(receiver->result->error().code, 404);
    EXPECT_TRUE(KRNetworkCache::cachedDataForURL(server.url(u"/missing.png"_s)).isNull());

    request(server.url(u"/portal.png"_s));
    ASSERT_TRUE(haveCome(4));
    EXPECT_TRUE(KRNetworkCache::cachedDataForURL(server.url(u"/portal.png"_s)).isNull());
    receiver->count = 3;

    // Five who ask at once wait for one download; so does who finds what a power cut left.
    const QUrl wanted = server.url(u"/wanted.png"_s);
    (void)KRNetworkCache::cachedDataForURL(wanted, &file);
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    for (int asker = 0; asker < 5; ++asker)
        request(wanted);
    ASSERT_TRUE(haveCome(8));
    EXPECT_EQ(server.requestCount(), 4);
    EXPECT_EQ(KRNetworkCache::cachedDataForURL(wanted), QByteArray("picture"));
    EXPECT_EQ(QFile::permissions(file),
        QFile::permissions(file) & ~(QFileDevice::ReadGroup | QFileDevice::ReadOther));
    EXPECT_EQ(QDir(QFileInfo(file).path()).entryList({ u"*wanted*"_s }).size(), 1)
        << "nothing half-written stays";
    receiver->count = 3;

    const QUrl longAddress = server.url(u"/"_s + QString(400, u'x'));
    request(longAddress);
    ASSERT_TRUE(haveCome(4));
    EXPECT_EQ(KRNetworkCache::cachedDataForURL(longAddress), QByteArray("picture"));
}
