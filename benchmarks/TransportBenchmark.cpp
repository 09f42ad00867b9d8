// The HTTP requests of the program beside bare libcurl against the same server: a run of small downloads over
// TLS, and a large upload from a file.

#include "KRRatioBenchmark.h"
#include "foundation/KRLog.h"
#include "support/KRTestServer.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPRequest.h"
#include "transport/KRInputStream.h"

#include <QFile>
#include <QTemporaryDir>

#include <condition_variable>
#include <cstdio>
#include <curl/curl.h>
#include <mutex>

namespace {

constexpr int requestCount = 200;
constexpr int answerSize = 60 * 1024;
constexpr qint64 uploadSize = 512LL * 1024 * 1024;

/// Sends a number of requests, each from the callback of the one before, and waits for the last.
class Chain : public std::enable_shared_from_this<Chain> {
public:
    using Prepare = std::function<void(KRHTTPRequest& request)>;

    explicit Chain(Prepare prepare)
        : m_prepare(std::move(prepare))
    {
    }

    [[nodiscard]] bool run(int count)
    {
        m_left = count;
        _startNext();
        std::unique_lock guard(m_lock);
        m_ended.wait(guard, [this] { return m_left == 0; });
        return !m_failed;
    }

private:
    void _startNext()
    {
        const auto request = KRHTTPRequest::request();
        m_prepare(*request);
        request->setResponseCallback(Callback(shared_from_this(), &Chain::_response));
        request->startRequest();
    }

    void _response(KRHTTPRequest& request)
    {
        std::unique_lock guard(m_lock);
        m_failed = m_failed || request.error();
        if (--m_left > 0) {
            guard.unlock();
            _startNext();
        } else {
            m_ended.notify_one();
        }
    }

    Prepare m_prepare;
    std::mutex m_lock;
    std::condition_variable m_ended;
    int m_left = 0;
    bool m_failed = false;
};

/// A bare easy handle with the least a client must set.
class BareCurl {
public:
    explicit BareCurl(const QUrl& url)
    {
        curl_easy_setopt(m_handle, CURLOPT_URL, url.toEncoded().constData());
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, QFile::encodeName(KRTestAuthorityFile()).constData());
        curl_easy_setopt(m_handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &BareCurl::_write);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, this);
    }
    BareCurl(const BareCurl&) = delete;
    BareCurl& operator=(const BareCurl&) = delete;
    ~BareCurl() { curl_easy_cleanup(m_handle); }

    [[nodiscard]] bool get()
    {
        m_body.truncate(0);
        return curl_easy_perform(m_handle) == CURLE_OK && m_body.size() == answerSize;
    }

    [[nodiscard]] bool post(const QString& path)
    {
        std::FILE* file = std::fopen(QFile::encodeName(path).constData(), "rb");
        curl_slist* headers = curl_slist_append(nullptr, "Expect:");
        curl_easy_setopt(m_handle, CURLOPT_POST, 1L);
        curl_easy_setopt(m_handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(uploadSize));
        curl_easy_setopt(m_handle, CURLOPT_READDATA, file);
        curl_easy_setopt(m_handle, CURLOPT_HTTPHEADER, headers);
        const CURLcode code = curl_easy_perform(m_handle);
        curl_slist_free_all(headers);
        std::fclose(file);
        return code == CURLE_OK;
    }

private:
    static size_t _write(char* bytes, size_t size, size_t count, void* self)
    {
        static_cast<BareCurl*>(self)->m_body.append(bytes, static_cast<qsizetype>(size * count));
        return size * count;
    }

    CURL* m_handle = curl_easy_init();
    QByteArray m_body;
};

/// A line of /proc/self/status, in bytes.
qint64 memory(const char* name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    return 0;
}

/// Makes the peak of resident memory the present value.
bool resetPeakMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write("5") == 1;
}

void sequentialDownloads(benchmark::State& state)
{
    const QByteArray body(answerSize, 'x');
    KRTestServer server(
        [&body](const auto&, KRTestServer::Connection& connection) { connection.respond(200, body); },
        KRTestCertificate::Good);
    const QUrl url = server.url();
    bool works = true;
    BareCurl bare(url);
    const auto chain = std::make_shared<Chain>([&url](KRHTTPRequest& request) { request.setUrl(url); });
    // Connections are made before anything is measured.
    works = bare.get() && chain->run(1);
    KRRunBesideYardstick(
        state,
        [&] { works = chain->run(requestCount) && works; },
        [&] {
            for (int i = 0; i < requestCount; ++i)
                works = bare.get() && works;
        });
    if (!works)
        state.SkipWithError("a request failed");
}
BENCHMARK(sequentialDownloads)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void uploadFromAFile(benchmark::State& state)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("movie"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(uploadSize)) {
        state.SkipWithError("the file cannot be made");
        return;
    }
    KRTestServer server(
        [](const auto&, KRTestServer::Connection& connection) { connection.respond(200, {}); });
    server.setBodies(KRTestServer::Bodies::Counted);
    const QUrl url = server.url();
    const auto chain = std::make_shared<Chain>([&](KRHTTPRequest& request) {
        request.setUrl(url);
        request.setMethod(QString::fromUtf16(KRHTTPMethodPOST));
        request.setBodyStream(std::make_shared<KRFileInputStream>(path));
        request.setValueForHTTPHeaderField(QString::number(uploadSize), QStringLiteral("Content-Length"));
    });
    bool works = true;
    qint64 growth = 0;
    KRRunBesideYardstick(
        state,
        [&] {
            const qint64 before = memory("VmRSS:");
            works = resetPeakMemory() && chain->run(1) && works;
            growth = std::max(growth, memory("VmHWM:") - before);
        },
        [&] {
            BareCurl bare(url);
            works = bare.post(path) && works;
        });
    state.counters["growth_mb"] = static_cast<double>(growth) / (1024 * 1024);
    if (!works || server.bodyBytes() != 2 * uploadSize * state.iterations())
        state.SkipWithError("an upload failed");
}
BENCHMARK(uploadFromAFile)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    KRHTTPTransportSettings settings;
    settings.extraCAFile = KRTestAuthorityFile();
    KRHTTPTransportSettings::setCurrent(settings);
    // The log is written as ever, to where nobody has to read thousands of lines.
    if (!std::freopen("/dev/null", "w", stderr))
        return 1;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    KRBackgroundThread::stopShared();
    return 0;
}
