#include "KRTestRequest.h"
#include "foundation/KRFileManager.h"
#include "foundation/KRKeyedArchiver.h"
#include "support/KRTestServer.h"
#include "transport/KRHTTPMultipartFormData.h"
#include "transport/KRInputStream.h"
#include "transport/KRMutableMultiDictionary.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

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

QStringList bodyFiles()
{
    return QDir(KRFileManager::multipartPOSTDataDirectory()).entryList(QDir::Files);
}

/// A form with one picture at the path, sent by a request to the address.
std::shared_ptr<KRHTTPMultipartFormData> formWith(const QString& path)
{
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addImageFile(path, u"media"_s);
    return form;
}

class KRHTTPMultipartFormDataTest : public testing::Test {
protected:
    ~KRHTTPMultipartFormDataTest() override { EXPECT_EQ(bodyFiles(), QStringList()) << "bodies left behind"; }

    QString fileWith(const QByteArray& content, const QString& name = u"picture"_s)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(KRHTTPMultipartFormDataTest, WritesItsParts)
{
    const QByteArray pixels = QByteArray("\x89PNG\r\n\0", 7).repeated(20'000);
    const QString picture = fileWith(pixels, u"a \"picture\"\r\nX-Header: 1"_s);

    const auto openFiles = [] { return QDir(u"/proc/self/fd"_s).count(); };
    const auto openBefore = openFiles();
    KRHTTPMultipartFormData form;
    form.addTextPart(u"hi"_s, u"status"_s);
    form.addDataPart({}, u"a\"b\r\nX-Header: 1"_s);
    form.addImageFile(picture, u"media"_s);
    form.addVideoFile(u"/no/such/movie"_s, u"movie"_s);
    const QByteArray line = "--com.kEsTrIn.PeLiNoR.oeunht43353r4cg345nt";
    const QByteArray expected = line + "\r\nContent-Disposition: form-data; name=\"status\"\r\n\r\nhi\r\n"
        + line + "\r\nContent-Disposition: form-data; name=\"a%22b%0D%0AX-Header: 1\"\r\n\r\n\r\n" + line
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
    EXPECT_EQ(openFiles(), openBefore + 1) << "the stream that is still there";
}

TEST_F(KRHTTPMultipartFormDataTest, IsSentByARequestAndCleanedUp)
{
    KRTestServer server(KRTestServer::always(200));
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addTextPart(u"na\u00efve"_s, u"message"_s);
    KRTestRequest request(server.url(), u"POST"_s);
    KRTestLog log;
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

TEST_F(KRHTTPMultipartFormDataTest, SurvivesArchivingWithinItsRequest)
{
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addTextPart(u"later"_s, u"message"_s);
    const auto request = KRTestRequest(QUrl(u"https://example.org/upload"_s), u"POST"_s).request();
    request->setMultipartFormData(form);
    request->setMaxRetries(2);
    request->setRetries(1);
    request->setBody("body");
    request->setUsername(u"alice"_s);
    request->setPassword(u"secret"_s);
    request->addValueForHTTPHeaderField(u"a"_s, u"X-Twice"_s);
    request->addValueForHTTPHeaderField(u"b"_s, u"X-Twice"_s);
    KRKeyedArchiver archiver;
    archiver.encodeObject("request"_L1, *request);
    const auto coder = KRKeyedUnarchiver::unarchiverWithData(archiver.archivedData());
    ASSERT_FALSE(coder.isError());
    const auto restored = KRHTTPRequest::requestWithCoder(*coder.value().decodeObject("request"_L1));
    const KRURLRequest sent = restored->urlRequest();
    EXPECT_EQ(sent.url, request->url());
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(sent.body, "body");
    EXPECT_EQ(sent.headers, request->urlRequest().headers);
    EXPECT_EQ(sent.headers.first().first, "Authorization");
    EXPECT_EQ(restored->maxRetries(), 2);
    EXPECT_EQ(restored->retries(), 1);
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

TEST(KRMutableMultiDictionary, KeepsItsKeysInOrder)
{
    KRMutableMultiDictionary dictionary;
    dictionary.removeObjectForKey(u"1"_s, u"none"_s);
    for (const QString& value : { u"1"_s, u"2"_s, u"1"_s })
        dictionary.addObjectForKey(value, u"b"_s);
    dictionary.setObjectForKey(u"3"_s, u"a"_s);
    dictionary.removeObjectForKey(u"1"_s, u"b"_s);
    EXPECT_EQ(*dictionary.objectsForKey(u"b"_s), QStringList { u"2"_s });
    dictionary.removeObjectsForKey(u"b"_s);
    EXPECT_TRUE(dictionary.objectsForKey(u"b"_s)->isEmpty());
    EXPECT_EQ(dictionary.keys(), (QStringList { u"b"_s, u"a"_s }));
}

TEST_F(KRHTTPMultipartFormDataTest, WhatCannotBeReadMakesAnEmptyPart)
{
    const QString pipe = folder.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString empty = fileWith({}, u"empty"_s);
    for (const QString& path : { u"/no/such/file"_s, folder.path(), pipe, u"/dev/zero"_s, empty }) {
        const auto form = formWith(path);
        EXPECT_TRUE(readAll(*form->dataInputStream()).contains("image/jpeg\r\n\r\n\r\n--"))
            << qPrintable(path);
        EXPECT_EQ(form->unreadableFile(), path == empty ? QString() : path);
        EXPECT_FALSE(form->error());
        form->cleanup();
    }
    // A file that tells no size has content all the same.
    const auto form = formWith(u"/proc/self/status"_s);
    EXPECT_TRUE(readAll(*form->dataInputStream()).contains("VmPeak"));
    form->cleanup();
}

TEST_F(KRHTTPMultipartFormDataTest, FourGigabytesOfNothingTakeNeitherMemoryNorDisk)
{
    constexpr qint64 size = 4LL * 1024 * 1024 * 1024 + 5;
    const QString path = fileWith("begin");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(size) && file.seek(size - 3)
        && file.write("end") == 3);
    file.close();
    const auto form = formWith(path);
    const auto stream = form->dataInputStream();
    rusage used {};
    ::getrusage(RUSAGE_SELF, &used);
    EXPECT_LT(used.ru_maxrss, 2 * 1024 * 1024) << "in kilobytes";
    struct stat information { };
    ASSERT_EQ(::stat(QFile::encodeName(form->dataFile()).constData(), &information), 0);
    EXPECT_EQ(information.st_size, form->dataInputLength());
    EXPECT_LT(information.st_blocks * 512, 4 * 1024 * 1024);
    QFile body(form->dataFile());
    ASSERT_TRUE(body.open(QIODevice::ReadOnly));
    EXPECT_TRUE(body.read(200).contains("\r\n\r\nbegin"));
    const QByteArray last = "end\r\n--" + KRHTTPMultipartFormData::boundary() + "--\r\n";
    ASSERT_TRUE(body.seek(body.size() - last.size()));
    EXPECT_EQ(body.readAll(), last);
    form->cleanup();
}

TEST_F(KRHTTPMultipartFormDataTest, AFileThatChangesMeanwhileMakesAWholeBody)
{
    const QString path = fileWith(QByteArray(4'000'000, 'x'));
    std::atomic<bool> ended = false;
    std::thread changing([&] {
        QFile file(path);
        (void)file.open(QIODevice::ReadWrite);
        for (qint64 size = 1; !ended; size = (size * 7 + 1) % 4'000'000)
            file.resize(size);
    });
    for (int i = 0; i < 200; ++i) {
        const auto form = formWith(path);
        (void)form->dataInputStream();
        QFile body(form->dataFile());
        ASSERT_TRUE(body.open(QIODevice::ReadOnly));
        ASSERT_EQ(body.size(), form->dataInputLength());
        ASSERT_TRUE(body.readAll().endsWith("--\r\n"));
        form->cleanup();
    }
    ended = true;
    changing.join();
}

TEST_F(KRHTTPMultipartFormDataTest, AFullDiskIsAnErrorAndNothingIsSent)
{
    KRTestServer server(KRTestServer::always(200));
    const QString path = fileWith(QByteArray(1'000'000, 'x'));
    rlimit before {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t room : { 0U, 300U, 500'000U }) {
        KRTestRequest request(server.url(), u"POST"_s);
        // No file may grow beyond so many bytes, as if the disk were full.
        const rlimit full { room, before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &full);
        request->setMultipartFormData(formWith(path));
        ::setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(bodyFiles(), QStringList()) << "the disk is full enough";
        ASSERT_TRUE(request.run());
        EXPECT_EQ(request.errorCode(), EFBIG);
        EXPECT_EQ(request.callbackCount(), 1);
    }
    // Half of a body would keep the server waiting for the rest.
    KRTestRequest cut(server.url(), u"POST"_s);
    cut->setMultipartFormData(formWith(path));
    ASSERT_TRUE(QFile::resize(cut->multipartFormData()->dataFile(), 1000));
    ASSERT_TRUE(cut.run());
    EXPECT_EQ(cut.errorCode(), KRHTTPConnectionErrorUnreadableBody);
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(KRHTTPMultipartFormDataTest, BodiesOfProgramsThatWereKilledGoAtTheNextStart)
{
    const auto alive = formWith(fileWith("x"));
    (void)alive->dataInputStream();
    EXPECT_EXIT(
        {
            (void)alive->dataInputStream();
            (void)formWith(folder.filePath(u"picture"_s))->dataInputStream();
            ::kill(::getpid(), SIGKILL);
        },
        testing::KilledBySignal(SIGKILL),
        "");
    const auto listed = KRHTTPRequest::request();
    listed->setMultipartFormData(formWith(folder.filePath(u"picture"_s)));
    KRHTTPRequest::addPersistentRequest(listed);
    EXPECT_EQ(bodyFiles().size(), 3);
    KRHTTPRequest::removeAbandonedBodies();
    EXPECT_EQ(bodyFiles().size(), 2) << "what is in use or will be sent stays";
    EXPECT_TRUE(QFile::exists(alive->dataFile()));
    KRHTTPRequest::removePersistentRequest(listed);
    listed->multipartFormData()->cleanup();
    alive->cleanup();
}

TEST_F(KRHTTPMultipartFormDataTest, ARetryBuildsTheSameBodyOrFails)
{
    std::atomic<int> failures = 1;
    KRTestServer server(
        [&failures](const auto&, auto& connection) { connection.respond(failures-- > 0 ? 503 : 200, {}); });
    const QString path = fileWith(QByteArray(200'000, 'x'));
    KRTestRequest request(server.url(), u"POST"_s);
    request->setMaxRetries(5);
    request->setMultipartFormData(formWith(path));
    ASSERT_TRUE(request.run());
    EXPECT_EQ(bodyFiles(), QStringList()) << "gone after a failure";
    KRHTTPRequest::servicePersistentRequests();
    ASSERT_TRUE(KRWaitUntil([] { return KRHTTPRequest::persistentRequests().isEmpty(); }));
    ASSERT_EQ(server.requestCount(), 2);
    EXPECT_EQ(server.requests().at(1).body, server.requests().at(0).body);
    ASSERT_TRUE(KRWaitUntil([] { return bodyFiles().isEmpty(); }));

    failures = 1;
    KRTestRequest lost(server.url(), u"POST"_s);
    KRTestLog log;
    lost->setMaxRetries(1);
    lost->setMultipartFormData(formWith(path));
    ASSERT_TRUE(lost.run());
    ASSERT_TRUE(QFile::remove(path));
    KRHTTPRequest::servicePersistentRequests();
    ASSERT_TRUE(KRWaitUntil([] { return KRHTTPRequest::persistentRequests().isEmpty(); }));
    EXPECT_EQ(server.requestCount(), 3) << "a body without its picture is not sent";
    EXPECT_TRUE(log.contains(u"was attempted too many times"_s));
}
