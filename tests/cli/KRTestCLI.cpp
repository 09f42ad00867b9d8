#include "KRTestCLI.h"

#include <sys/wait.h>

QList<QJsonObject> KRTestCLI::Outcome::objects() const
{
    QList<QJsonObject> objects;
    for (const QByteArray& line : output.split('\n')) {
        if (!line.isEmpty())
            objects.append(QJsonDocument::fromJson(line).object());
    }
    return objects;
}

QList<QJsonObject> KRTestCLI::objectsOf(const Outcome& outcome)
{
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors.toStdString();
    return outcome.objects();
}

KRTestCLI::Outcome KRTestCLI::runAs(const QByteArray& user,
    const QByteArray& password,
    const QByteArray& arguments,
    const QByteArray& input)
{
    return run(serviceOption() + authorityOption() + "--account " + user + " --password-stdin " + arguments,
        password + '\n' + input);
}

KRTestCLI::Outcome KRTestCLI::run(const QByteArray& arguments, const QByteArray& input)
{
    const QTemporaryDir directory;
    QFile in(directory.filePath(u"input"_s));
    if (!in.open(QIODevice::WriteOnly) || in.write(input) != input.size())
        return {};
    in.close();
    const QByteArray command
        = "cd " + directory.path().toUtf8() + " && " PELINOR_CLI " " + arguments + " <input >output 2>errors";
    const int status = std::system(command.constData());
    const auto contentOf = [&directory](const QString& name) {
        QFile file(directory.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(u"output"_s), contentOf(u"errors"_s) };
}
