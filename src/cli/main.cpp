#include "cli/CommandDocuments.h"
#include "cli/CommandRunner.h"
#include "core/KRSecretService.h"
#include "foundation/KRBlockingRunLoopDriver.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPConnection.h"
#include "transport/KRHTTPRequest.h"

#include <QFile>

#include <cstdio>

namespace {

/// The first line of standard input; what follows is left to a text "-".
QString readPassword(QTextStream& input)
{
    QString line = input.readLine();
    return line.isNull() ? QStringLiteral("") : line;
}

/// Scripts want silence when all is well: of the log only what went wrong is shown, for whoever looks.
void showErrorsAlone(const QString& line)
{
    if (line.startsWith(u"Error") || line.startsWith(u"Critical Error"))
        std::fprintf(stderr, "%s\n", RecordOutput::safeForTerminal(line).toUtf8().constData());
}

int run(CommandLine line, QTextStream& input, QTextStream& output, QTextStream& errors)
{
    const KRResult<TwitterServiceHosts> hosts
        = TwitterServiceHosts::hostsWithDefaults(KRUserDefaults::standardUserDefaults(), line.servicesFile);
    if (hosts.isError()) {
        errors << hosts.error().description << Qt::endl;
        return 2;
    }
    if (!line.caFile.isEmpty() && !QFile(line.caFile).open(QIODevice::ReadOnly)) {
        errors << QStringLiteral("The file %1 cannot be read").arg(line.caFile) << Qt::endl;
        return 2;
    }
    KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
    settings.extraCAFile = line.caFile.isEmpty()
        ? KRUserDefaults::standardUserDefaults().stringForKey("ExtraCAFile")
        : line.caFile;
    KRHTTPTransportSettings::setCurrent(settings);
    const QString password = line.passwordFromStandardInput ? readPassword(input) : QString();
    if (line.takesText && line.arguments.last() == u"-")
        line.arguments.last() = input.readAll().trimmed();

    KRHTTPRequest::removeAbandonedBodies();
    TwitterEnvironment environment;
    environment.hosts = hosts.value();
    environment.runsHeartbeat = false;
    environment.hostsAreForAll = !line.servicesFile.isEmpty();
    const auto runner
        = std::make_shared<CommandRunner>(line, std::make_shared<Twitter>(environment), output, errors);
    KRBlockingRunLoopDriver driver;
    runner->start(password);
    driver.runUntil([&runner] { return runner->isFinished(); });
    KRSecretService::stop();
    KRBackgroundThread::stopShared();
    return runner->exitCode();
}

} // namespace

int main(int argc, char** argv)
{
    QTextStream input(stdin);
    QTextStream output(stdout);
    QTextStream errors(stderr);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    if (arguments.size() == 2 && arguments.first() == u"--generate") {
        const QString document = CommandDocuments::documentNamed(arguments.last());
        output << document;
        return document.isEmpty() ? 2 : 0;
    }
    const KRResult<CommandLine> line = CommandLine::parse(arguments);
    if (line.isError()) {
        errors << line.error().description << "\nTry pelinor-cli --help" << Qt::endl;
        return 2;
    }
    if (!line.value().isVerbose)
        KRSetLogSink(showErrorsAlone);
    if (line.value().showsVersion)
        output << "pelinor-cli " << PELINOR_VERSION << Qt::endl;
    else if (!line.value().showsHelp)
        return run(line.value(), input, output, errors);
    else if (line.value().name.isNull())
        output << CommandDocuments::usage();
    else
        output << CommandDocuments::usageOf(line.value().name);
    return 0;
}
