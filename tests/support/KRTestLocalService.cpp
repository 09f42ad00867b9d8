#include "support/KRTestLocalService.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// What the program writes until it is ready: one line.
QByteArray readLine(int descriptor)
{
    QByteArray line;
    for (char c = 0; ::read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

} // namespace

KRTestLocalService::KRTestLocalService()
{
    int output[2];
    if (::pipe2(output, O_CLOEXEC) != 0)
        return;
    QByteArray folder = QFile::encodeName(m_directory.path());
    QByteArray program = PELINOR_LOCAL_SERVICE;
    char* arguments[] = { program.data(),
        const_cast<char*>("--data"),
        folder.data(),
        const_cast<char*>("--port"),
        const_cast<char*>("0"),
        const_cast<char*>("--tls-port"),
        const_cast<char*>("0"),
        nullptr };
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    if (::posix_spawn(&m_process, program.constData(), &actions, nullptr, arguments, environ) != 0)
        m_process = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    const QJsonObject description = QJsonDocument::fromJson(readLine(output[0])).object();
    ::close(output[0]);
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
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGTERM);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}
