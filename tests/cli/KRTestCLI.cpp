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
    (void)KRTestFile(directory, input, u"input"_s);
    const QByteArray command
        = "cd " + directory.path().toUtf8() + " && " PELINOR_CLI " " + arguments + " <input >output 2>errors";
    const int status = std::system(command.constData());
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1,
        KRTestContent(directory.filePath(u"output"_s)),
        KRTestContent(directory.filePath(u"errors"_s)) };
}
