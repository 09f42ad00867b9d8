#pragma once

#include "support/KRTest.h"
#include "support/KRTestLocalService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// The command-line program, run as people run it, against a local service of the suite's own. Arguments are words
/// of a shell.
class KRTestCLI : public testing::Test {
public:
    struct Outcome {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;

        /// The output's lines, each an object.
        [[nodiscard]] QList<QJsonObject> objects() const;
    };

    static void SetUpTestSuite() { s_service = std::make_unique<KRTestLocalService>(); }
    static void TearDownTestSuite() { s_service.reset(); }

protected:
    void SetUp() override { ASSERT_TRUE(s_service->isRunning()); }

    /// Runs the program with nothing but these arguments.
    static Outcome run(const QByteArray& arguments, const QByteArray& input = {});
    /// Runs it as the user, with the password on standard input and after it `input`.
    static Outcome runAs(const QByteArray& user,
        const QByteArray& password,
        const QByteArray& arguments,
        const QByteArray& input = {});
    static Outcome alice(const QByteArray& arguments, const QByteArray& input = {})
    {
        return runAs("alice", "wonderland", arguments, input);
    }
    static Outcome bob(const QByteArray& arguments) { return runAs("bob", "builder", arguments); }
    /// The options that name the service.
    static QByteArray serviceOption() { return "--services " + quoted(s_service->servicesFile()); }
    static QByteArray authorityOption() { return " --ca-file " + quoted(s_service->authorityFile()) + ' '; }
    /// The objects that a command prints, when it works.
    static QList<QJsonObject> objectsOf(const Outcome& outcome);
    static QList<QJsonObject> objectsOf(const QByteArray& arguments, const QByteArray& input = {})
    {
        return objectsOf(alice("--json " + arguments, input));
    }
    /// A value of the first object that a command of alice's prints.
    static QByteArray valueOf(const QByteArray& arguments, const char16_t* key, const QByteArray& input = {})
    {
        return objectsOf(arguments, input).value(0).value(key).toVariant().toByteArray();
    }
    /// The name of somebody in an object.
    static QString nameIn(const QJsonObject& object, const char16_t* person)
    {
        return object.value(person).toObject().value(u"username").toString();
    }
    static QByteArray quoted(const QString& word)
    {
        return '\'' + word.toUtf8().replace('\'', "'\\''") + '\'';
    }

    static inline std::unique_ptr<KRTestLocalService> s_service;
};
