#include "support/KRTestLocalService.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <csignal>
#include <utility>

namespace {

QByteArray lineFrom(std::FILE* stream)
{
    QByteArray line;
    for (int c = std::fgetc(stream); c != EOF && c != '\n'; c = std::fgetc(stream))
        line += char(c);
    return line;
}

} // namespace

KRTestLocalService::KRTestLocalService()
{
    // popen() spawns where QProcess forks with the memory shared, which the thread sanitizer does not survive.
    // A test that crashes takes the service along: ctest waits for everybody who holds its output.
    const QByteArray command = "echo $$; exec setpriv --pdeathsig KILL '" PELINOR_LOCAL_SERVICE "' --data '"
        + m_directory.path().toUtf8() + "' --port 0 --tls-port 0";
    m_output = ::popen(command.constData(), "re");
    if (!m_output)
        return;
    m_process = lineFrom(m_output).toInt();
    // What the program writes once it is ready is one line.
    const QJsonObject description = QJsonDocument::fromJson(lineFrom(m_output)).object();
    m_servicesFile = description[QLatin1String("servicesFile")].toString();
    m_httpsHost = QUrl(description[QLatin1String("https")].toString()).authority();
    m_authorityFile = description[QLatin1String("caFile")].toString();
    if (m_servicesFile.isEmpty())
        stop();
}

KRTestLocalService::~KRTestLocalService()
{
    stop();
}

void KRTestLocalService::stop()
{
    if (!m_output)
        return;
    if (m_process > 0)
        ::kill(m_process, SIGTERM);
    ::pclose(std::exchange(m_output, nullptr));
}
