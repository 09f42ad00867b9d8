#pragma once

#include "core/Twitter.h"
#include "foundation/KRResult.h"

#include <QStringList>

/// What the program was started with.
struct PelinorLaunchOptions {
    QString servicesFile;
    QString caFile;
    QString account;
    bool passwordFromStandardInput = false;
    QString screenshotFile;
    bool quitsAfterScreenshot = false;

    /// Reads the command line; --help and --version, and what is wrong with it, end the process with a text.
    static PelinorLaunchOptions parse(const QStringList& arguments);

    /// Sets the transport's trust and answers the hosts to use.
    [[nodiscard]] KRResult<TwitterServiceHosts> prepareServices() const;
    /// The account to show: the one named, signed in and added if it was not there; else the first one. Null
    /// when there is none.
    [[nodiscard]] TwitterAccountPtr chooseAccount(Twitter& twitter) const;
};
