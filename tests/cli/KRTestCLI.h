#pragma once

#include "support/KRTest.h"
#include "support/KRTestLocalService.h"

#include <QJsonDocument>
#include <QJsonObject>

/// The command-line program, run as people run it, against a local service of its own.
class KRTestCLI {
public:
    struct Outcome {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;

        /// The output's lines, each an object.
        [[nodiscard]] QList<QJsonObject> objects() const;
    };

    KRTestCLI();

    /// Whether the service started.
    [[nodiscard]] bool isReady() const { return m_service.isRunning(); }
    /// Runs the program as the user, with the password on standard input and after it `input`.
    [[nodiscard]] Outcome runAs(const QByteArray& user,
        const QByteArray& password,
        const QList<QByteArray>& arguments,
        const QByteArray& input = {}) const;
    [[nodiscard]] Outcome alice(const QList<QByteArray>& arguments, const QByteArray& input = {}) const
    {
        return runAs("alice", "wonderland", arguments, input);
    }
    [[nodiscard]] Outcome bob(const QList<QByteArray>& arguments) const
    {
        return runAs("bob", "builder", arguments);
    }
    /// Runs the program against the service, without an account.
    [[nodiscard]] Outcome runAnonymously(const QList<QByteArray>& arguments) const
    {
        return run(
            QList<QByteArray> { "--services", m_servicesFile, "--ca-file", m_authorityFile } + arguments);
    }
    /// The addresses of the service.
    [[nodiscard]] const QByteArray& servicesFile() const { return m_servicesFile; }
    /// Runs the program with nothing but these arguments.
    [[nodiscard]] Outcome run(const QList<QByteArray>& arguments, const QByteArray& input = {}) const;

private:
    QTemporaryDir m_directory;
    KRTestLocalService m_service;
    QByteArray m_servicesFile;
    QByteArray m_authorityFile;
};
