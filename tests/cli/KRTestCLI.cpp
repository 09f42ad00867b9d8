#include "KRTestCLI.h"

#include <QFile>

#include <cstdlib>
#include <sys/wait.h>

namespace {

QByteArray quoted(const QByteArray& argument)
{
    return '\'' + QByteArray(argument).replace('\'', "'\\''") + '\'';
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QList<QJsonObject> KRTestCLI::Outcome::objects() const
{
    QList<QJsonObject> objects;
    for (const QByteArray& line : output.split('\n')) {
        if (!line.isEmpty())
            objects.append(QJsonDocument::fromJson(line).object());
    }
    return objects;
}

KRTestCLI::KRTestCLI()
{
    m_servicesFile = QFile::encodeName(m_service.servicesFile());
    m_authorityFile = QFile::encodeName(m_service.authorityFile());
}

KRTestCLI::Outcome KRTestCLI::runAs(const QByteArray& user,
    const QByteArray& password,
    const QList<QByteArray>& arguments,
    const QByteArray& input) const
{
    const QList<QByteArray> options { "--services",
        m_servicesFile,
        "--ca-file",
        m_authorityFile,
        "--account",
        user,
        "--password-stdin" };
    return run(options + arguments, password + '\n' + input);
}

KRTestCLI::Outcome KRTestCLI::run(const QList<QByteArray>& arguments, const QByteArray& input) const
{
    const QString inputFile = m_directory.filePath(QStringLiteral("input"));
    const QString outputFile = m_directory.filePath(QStringLiteral("output"));
    const QString errorFile = m_directory.filePath(QStringLiteral("errors"));
    QFile file(inputFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(input) != input.size())
        return {};
    file.close();
    QByteArray command = quoted(PELINOR_CLI);
    for (const QByteArray& argument : arguments)
        command += ' ' + quoted(argument);
    command += " <" + quoted(inputFile.toUtf8()) + " >" + quoted(outputFile.toUtf8()) + " 2>"
        + quoted(errorFile.toUtf8());
    const int status = std::system(command.constData());
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(outputFile), contentOf(errorFile) };
}
