// From the start of the program to its first painted window, and the memory it holds with a long timeline,
// beside an empty window of the toolkit. Both run as processes of their own.

#include "support/KRTestServer.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int reportDescriptor = 3;
constexpr int postCount = 500;
constexpr int authorCount = 60;
constexpr char timelinePath[] = "/statuses/home_timeline.xml";

QByteArray portrait(int number)
{
    QImage image(96, 96, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(number * 359 / authorCount, 180, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray timeline(const QString& host)
{
    QByteArray page = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><statuses type=\"array\">";
    const QDateTime newest = QDateTime::currentDateTimeUtc();
    for (int number = postCount; number > 0; --number) {
        const QByteArray id = QByteArray::number(number);
        const QByteArray author = QByteArray::number(number % authorCount);
        const QString date = QLocale::c().toString(newest.addSecs((number - postCount) * 60LL),
            QStringLiteral("ddd MMM dd HH:mm:ss '+0000' yyyy"));
        page += "<status><created_at>" + date.toLatin1() + "</created_at><id>" + id + "</id><text>" + id
            + " the tide is out until four, so we walk around the head #coast @author" + author
            + " http://example.org/tides/" + id + ".html and are back for tea</text><user><id>" + author
            + "</id><name>Author " + author + "</name><screen_name>author" + author
            + "</screen_name><profile_image_url>https://" + host.toLatin1() + "/portraits/" + author
            + ".png</profile_image_url></user></status>";
    }
    return page + "</statuses>";
}

/// A site with one long timeline.
class Site {
public:
    Site()
        : m_server(
            [this](const KRTestServer::Request& request, KRTestServer::Connection& connection) {
                const QByteArray path = request.target.split('?').value(0);
                if (path == timelinePath)
                    connection.respond(200, timeline(m_server.host()));
                else if (path.startsWith("/portraits/"))
                    connection.respond(200, portrait(path.mid(11, path.size() - 15).toInt()));
                else
                    connection.respond(200, "<statuses type=\"array\"/>");
            },
            KRTestCertificate::Good)
    {
    }

    [[nodiscard]] QString host() const { return m_server.host(); }

    /// Until the timeline has been asked for and nothing else has been for a while; whether that happened.
    [[nodiscard]] bool waitUntilQuiet() const
    {
        constexpr int quietNeeded = 20;
        int quiet = 0;
        int seen = 0;
        for (int i = 0; i < 300 && quiet < quietNeeded; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            const QList<KRTestServer::Request> requests = m_server.requests();
            const bool hasTimeline = std::any_of(requests.begin(), requests.end(), [](const auto& request) {
                return request.target.startsWith(timelinePath);
            });
            quiet = hasTimeline && requests.size() == seen ? quiet + 1 : 0;
            seen = static_cast<int>(requests.size());
        }
        return quiet == quietNeeded;
    }

private:
    KRTestServer m_server;
};

/// A program that has been started and is ended with this value.
class Process {
public:
    Process(const QList<QByteArray>& command, const QByteArray& standardInput)
    {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return;
        m_report = ends[0];
        std::vector<char*> arguments;
        for (const QByteArray& argument : command)
            arguments.push_back(const_cast<char*>(argument.constData()));
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, standardInput.constData(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, ends[1], reportDescriptor);
        m_start = Clock::now();
        if (::posix_spawn(&m_process, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
            m_process = -1;
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGTERM);
            ::waitpid(m_process, nullptr, 0);
        }
        ::close(m_report);
    }

    /// Waits for the first painting. Seconds since the start; negative when the program ended before it.
    [[nodiscard]] double secondsToFirstPainting() const
    {
        char byte = 0;
        if (m_process < 0 || ::read(m_report, &byte, 1) != 1)
            return -1;
        return std::chrono::duration<double>(Clock::now() - m_start).count();
    }

    [[nodiscard]] double residentMegabytes() const
    {
        QFile status(QStringLiteral("/proc/%1/status").arg(m_process));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:"))
                return line.simplified().split(' ').value(1).toDouble() / 1024;
        }
        return 0;
    }

private:
    Clock::time_point m_start;
    pid_t m_process = -1;
    int m_report = -1;
};

/// What the program runs with: a home of its own, the site, one account.
class Setting {
public:
    Setting()
    {
        for (const char* name : { "HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME" })
            qputenv(name, m_home.path().toUtf8());
        // No keyring: how long one takes is not the program's doing, and the user's own is not to be touched.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        qputenv("QT_PLUGIN_PATH", PELINOR_PROBE_PLUGINS);
        qputenv("QT_QPA_GENERIC_PLUGINS", "paintprobe");
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        _write("services.ini", "[ServiceHosts]\nRESTHost=" + m_site.host().toLatin1() + '\n');
        _write("password", "secret\n");
    }

    [[nodiscard]] Process program() const
    {
        return { { PELINOR_PROGRAM,
                     "--services",
                     _path("services.ini"),
                     "--ca-file",
                     QFile::encodeName(KRTestAuthorityFile()),
                     "--account",
                     "alice",
                     "--password-stdin" },
            _path("password") };
    }
    [[nodiscard]] Process emptyWindow() const { return { { PELINOR_EMPTY_WINDOW }, _path("password") }; }
    [[nodiscard]] Process textWindow() const
    {
        return { { PELINOR_EMPTY_WINDOW, "Hello" }, _path("password") };
    }
    [[nodiscard]] const Site& site() const { return m_site; }

private:
    [[nodiscard]] QByteArray _path(const char* name) const
    {
        return QFile::encodeName(m_home.filePath(QLatin1String(name)));
    }
    void _write(const char* name, const QByteArray& content) const
    {
        QFile file(QFile::decodeName(_path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            std::abort();
    }

    QTemporaryDir m_home;
    Site m_site;
};

void startToFirstPainting(benchmark::State& state)
{
    const Setting setting;
    // The first start of all reads both programs from disk and makes the account.
    bool works = setting.emptyWindow().secondsToFirstPainting() > 0
        && setting.program().secondsToFirstPainting() > 0;
    double emptyTime = 0;
    double textTime = 0;
    double programTime = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const double empty = setting.emptyWindow().secondsToFirstPainting();
        const double text = setting.textWindow().secondsToFirstPainting();
        const double program = setting.program().secondsToFirstPainting();
        works = works && empty > 0 && text > 0 && program > 0;
        emptyTime += empty;
        textTime += text;
        programTime += program;
        state.SetIterationTime(program);
    }
    state.counters["yardstick"] = benchmark::Counter(emptyTime, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = programTime / emptyTime;
    state.counters["ratio_to_text"] = programTime / textTime;
    if (!works)
        state.SkipWithError("a program did not paint its window");
}
BENCHMARK(startToFirstPainting)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void memoryWith500Posts(benchmark::State& state)
{
    double empty = 0;
    double full = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const Setting setting;
        const Process window = setting.emptyWindow();
        const Process program = setting.program();
        state.SetIterationTime(program.secondsToFirstPainting());
        if (window.secondsToFirstPainting() < 0 || !setting.site().waitUntilQuiet()) {
            state.SkipWithError("the program did not load its timeline");
            break;
        }
        empty = window.residentMegabytes();
        full = program.residentMegabytes();
    }
    state.counters["empty_mb"] = empty;
    state.counters["growth_mb"] = full - empty;
}
BENCHMARK(memoryWith500Posts)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
