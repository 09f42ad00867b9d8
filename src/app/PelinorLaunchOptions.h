#pragma once

#include "core/Twitter.h"
#include "foundation/KRResult.h"

#include <QStringList>

/// What the program was started with.
struct PelinorLaunchOptions {
    QString servicesFile;
    QString caFile;
    QStringList accounts;
    bool passwordsFromStandardInput = false;
    QString screenshotFile;
    bool quitsAfterScreenshot = false;

    /// Reads the command line; --help and --version, and what is wrong with it, end the process with a text.
    static PelinorLaunchOptions parse(const QStringList& arguments);

    /// Sets the transport's trust and answers the hosts to use.
    [[nodiscard]] KRResult<TwitterServiceHosts> prepareServices() const;
    /// Signs in to the accounts named, with the passwords of standard input, one on a line. Who is signed in
    /// already gets the password; without passwords nothing happens.
    void signIn(Twitter& twitter) const;
};
