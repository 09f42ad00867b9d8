#include "support/KRTestLocalService.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <csignal>
#include <sys/prctl.h>

KRTestLocalService::KRTestLocalService()
{
    const auto option = [](const char* name) { return QString::fromLatin1(name); };
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that crashes takes it along: ctest waits for everybody who holds its output.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(option(PELINOR_LOCAL_SERVICE),
        { option("--data"),
            m_directory.path(),
            option("--port"),
            option("0"),
            option("--tls-port"),
            option("0") });
    // What the program writes once it is ready is one line.
    while (!m_process.canReadLine() && m_process.waitForReadyRead()) { }
    const QJsonObject description = QJsonDocument::fromJson(m_process.readLine()).object();
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
    m_process.terminate();
    m_process.waitForFinished();
}
