#include "KRTestRequest.h"
#include "foundation/KRKeyedArchiver.h"
#include "support/KRTestLog.h"
#include "support/KRTestServer.h"
#include "transport/KRHTTPMultipartFormData.h"
#include "transport/KRInputStream.h"

#include <QFile>
#include <QTemporaryFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray readAll(KRInputStream& stream)
{
    QByteArray all;
    char buffer[1000];
    qint64 count = 0;
    while ((count = stream.read(buffer, sizeof buffer)) > 0)
        all.append(buffer, count);
    return all;
}

} // namespace

TEST(KRHTTPMultipartFormData, WritesItsParts)
{
    QTemporaryFile picture;
    ASSERT_TRUE(picture.open());
    const QByteArray pixels = QByteArray("\x89PNG\r\n\0", 7).repeated(20'000);
    picture.write(pixels);
    picture.close();

    KRHTTPMultipartFormData form;
    form.addTextPart(u"hi"_s, u"status"_s);
    form.addDataPart({}, u"empty"_s);
    form.addImageFile(picture.fileName(), u"media"_s);
    form.addVideoFile(u"/no/such/movie"_s, u"movie"_s);
    const QByteArray line = "--com.kEsTrIn.PeLiNoR.oeunht43353r4cg345nt";
    const QByteArray expected = line + "\r\nContent-Disposition: form-data; name=\"status\"\r\n\r\nhi\r\n"
        + line + "\r\nContent-Disposition: form-data; name=\"empty\"\r\n\r\n\r\n" + line
        + "\r\nContent-Disposition: form-data; name=\"media\"; filename=\"image.jpg\"\r\nContent-Type: "
          "image/jpeg\r\n\r\n"
        + pixels + "\r\n" + line
        + "\r\nContent-Disposition: form-data; name=\"movie\"; filename=\"movie.mov\"\r\n"
          "Content-Type: video/quicktime\r\n\r\n\r\n"
        + line + "--\r\n";
    const auto stream = form.dataInputStream();
    EXPECT_EQ(readAll(*stream), expected);
    EXPECT_EQ(form.dataInputLength(), expected.size());
    EXPECT_EQ(QFile(form.dataFile()).size(), expected.size());
    EXPECT_FALSE(QFile::permissions(form.dataFile()) & (QFile::ReadGroup | QFile::ReadOther));

    EXPECT_EQ(readAll(*form.dataInputStream()), expected);
    EXPECT_EQ(form.dataInputLength(), expected.size());
    const QString path = form.dataFile();
    form.cleanup();
    form.cleanup();
    EXPECT_FALSE(QFile::exists(path));

    KRHTTPMultipartFormData nothing;
    EXPECT_EQ(readAll(*nothing.dataInputStream()), line + "--\r\n");
    nothing.cleanup();
}

TEST(KRHTTPMultipartFormData, IsSentByARequestAndCleanedUp)
{
    KRTestServer server([](const auto&, auto& connection) { connection.respond(200, "<rsp/>"); });
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addTextPart(u"na\u00efve"_s, u"message"_s);
    KRTestRequest request(server.url());
    KRTestLog log;
    request->setMethod(u"POST"_s);
    request->setMultipartFormData(nullptr);
    request->setMultipartFormData(form);
    const QString path = form->dataFile();
    ASSERT_TRUE(request.run());
    const KRTestServer::Request sent = server.requests().value(0);
    EXPECT_EQ(sent.values("content-type"),
        QList<QByteArray> { "multipart/form-data; boundary=com.kEsTrIn.PeLiNoR.oeunht43353r4cg345nt" });
    EXPECT_EQ(sent.values("content-length"), QList<QByteArray> { QByteArray::number(sent.body.size()) });
    EXPECT_TRUE(sent.body.contains(u"na\u00efve"_s.toUtf8()));
    EXPECT_FALSE(QFile::exists(path));

    request->setMultipartFormData(std::make_shared<KRHTTPMultipartFormData>());
    EXPECT_TRUE(log.contains(u"Error: can only set multipartFormData once"_s));
    request->multipartFormData()->cleanup();
}

TEST(KRHTTPMultipartFormData, SurvivesArchivingWithinItsRequest)
{
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addTextPart(u"later"_s, u"message"_s);
    const auto request = KRHTTPRequest::request();
    request->setUrl(QUrl(u"https://example.org/upload"_s));
    request->setMethod(u"POST"_s);
    request->setMultipartFormData(form);
    request->setMaxRetries(2);
    KRKeyedArchiver archiver;
    archiver.encodeObject("request"_L1, *request);
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
    ASSERT_FALSE(coder.isError());
    const auto restored = KRHTTPRequest::requestWithCoder(*coder.value().decodeObject("request"_L1));
    EXPECT_EQ(restored->url(), request->url());
    EXPECT_EQ(restored->method(), u"POST"_s);
    EXPECT_EQ(restored->maxRetries(), 2);
    const auto length = [](const KRHTTPRequest& one) {
        return one.headers().objectsForKey(u"Content-Length"_s)->value(0).toLongLong();
    };
    ASSERT_TRUE(restored->bodyStream());
    const QByteArray body = readAll(*restored->bodyStream());
    EXPECT_TRUE(body.contains("later"));
    EXPECT_EQ(length(*restored), body.size());

    // An attempt that failed in the run before has deleted the file.
    form->cleanup();
    const auto rebuilt = KRHTTPRequest::requestWithCoder(*coder.value().decodeObject("request"_L1));
    EXPECT_EQ(readAll(*rebuilt->bodyStream()), body);
    EXPECT_EQ(length(*rebuilt), body.size());
    rebuilt->multipartFormData()->cleanup();
}
