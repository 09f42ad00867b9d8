// From the start of the program to its first painted window, and the memory it holds with a long timeline and
// with many, beside an empty window of the toolkit. All run as processes of their own.

#include "KRBenchmarkSite.h"

#include <QFile>
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
constexpr int FullStream = 500;

/// Until a page has been asked for and nothing else has been for a while; whether that happened.
bool waitUntilQuiet(const KRBenchmarkSite& site)
{
    constexpr int quietNeeded = 20;
    int quiet = 0;
    int seen = 0;
    for (int i = 0; i < 300 && quiet < quietNeeded; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const int asked = site.pageCount() + site.pictureCount();
        quiet = site.pageCount() > 0 && asked == seen ? quiet + 1 : 0;
        seen = asked;
    }
    return quiet == quietNeeded;
}

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
    [[nodiscard]] double secondsToFirstPainting() const { return _secondsToReport(); }
    /// Waits, behind the first painting, until the program says that it is full.
    [[nodiscard]] bool waitUntilFull() const { return _secondsToReport() > 0; }

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
    [[nodiscard]] double _secondsToReport() const
    {
        char byte = 0;
        if (m_process < 0 || ::read(m_report, &byte, 1) != 1)
            return -1;
        return std::chrono::duration<double>(Clock::now() - m_start).count();
    }

    Clock::time_point m_start;
    pid_t m_process = -1;
    int m_report = -1;
};

/// What the program runs with: a home of its own, the site, and so many accounts.
class Setting {
public:
    explicit Setting(int accountCount)
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
        QByteArray passwords;
        for (int number = 1; number <= accountCount; ++number) {
            m_signIn += { "--account", "reader" + QByteArray::number(number) };
            passwords += "secret\n";
        }
        _write("passwords", passwords);
    }

    /// Signs in; the accounts are stored from then on.
    [[nodiscard]] Process firstStart() const
    {
        return { _program() + m_signIn + QList<QByteArray> { "--password-stdin" }, _path("passwords") };
    }
    [[nodiscard]] Process program() const { return { _program(), "/dev/null" }; }
    [[nodiscard]] Process fullProgram() const
    {
        return { { PELINOR_FULL_WINDOW, m_site.host().toLatin1(), QFile::encodeName(KRTestAuthorityFile()) },
            "/dev/null" };
    }
    [[nodiscard]] Process emptyWindow() const { return { { PELINOR_EMPTY_WINDOW }, "/dev/null" }; }
    [[nodiscard]] Process textWindow() const { return { { PELINOR_EMPTY_WINDOW, "Hello" }, "/dev/null" }; }
    [[nodiscard]] const KRBenchmarkSite& site() const { return m_site; }

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

    [[nodiscard]] QList<QByteArray> _program() const
    {
        return { PELINOR_PROGRAM,
            "--services",
            _path("services.ini"),
            "--ca-file",
            QFile::encodeName(KRTestAuthorityFile()) };
    }

    QTemporaryDir m_home;
    KRBenchmarkSite m_site { FullStream };
    QList<QByteArray> m_signIn;
};

void startToFirstPainting(benchmark::State& state)
{
    const Setting setting(3);
    // The first start of all reads both programs from disk and makes the accounts.
    bool works = setting.emptyWindow().secondsToFirstPainting() > 0
        && setting.firstStart().secondsToFirstPainting() > 0;
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

void reportMemory(benchmark::State& state, const Process& window, const Process& program)
{
    const double empty = window.residentMegabytes();
    state.counters["empty_mb"] = empty;
    state.counters["growth_mb"] = program.residentMegabytes() - empty;
}

void memoryWith500Posts(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state) {
        const Setting setting(1);
        const Process window = setting.emptyWindow();
        const Process program = setting.firstStart();
        state.SetIterationTime(program.secondsToFirstPainting());
        if (window.secondsToFirstPainting() < 0 || !waitUntilQuiet(setting.site()))
            state.SkipWithError("the program did not load its timeline");
        reportMemory(state, window, program);
    }
}
BENCHMARK(memoryWith500Posts)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

// Five accounts, five streams of 500 each, 300 avatars.
void memoryWith25Streams(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state) {
        const Setting setting(0);
        const Process window = setting.emptyWindow();
        const Process program = setting.fullProgram();
        state.SetIterationTime(program.secondsToFirstPainting());
        if (window.secondsToFirstPainting() < 0 || !program.waitUntilFull())
            state.SkipWithError("the program did not load its streams");
        reportMemory(state, window, program);
    }
}
BENCHMARK(memoryWith25Streams)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

} // namespace

BENCHMARK_MAIN();
