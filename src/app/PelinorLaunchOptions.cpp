#include "app/PelinorLaunchOptions.h"

#include "foundation/KRUserDefaults.h"
#include "transport/KRHTTPConnection.h"

#include <QCommandLineParser>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

PelinorLaunchOptions PelinorLaunchOptions::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"A desktop client for micro-blogging sites with the classic REST interface."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption services(u"services"_s,
        u"The addresses of the service, in place of those of the preferences."_s,
        u"file"_s);
    const QCommandLineOption caFile(u"ca-file"_s,
        u"Certificate authorities to trust beside the system's, as PEM."_s,
        u"file"_s);
    const QCommandLineOption account(u"account"_s,
        u"An account to sign in to; may be given several times."_s,
        u"name"_s);
    const QCommandLineOption password(u"password-stdin"_s,
        u"Their passwords are the lines of standard input."_s);
    const QCommandLineOption screenshot(u"screenshot"_s,
        u"Save a picture of the window once its posts have come."_s,
        u"file"_s);
    const QCommandLineOption quit(u"quit-after-screenshot"_s, u"Quit when the picture is saved."_s);
    parser.addOptions({ services, caFile, account, password, screenshot, quit });
    parser.process(arguments);
    return { parser.value(services),
        parser.value(caFile),
        parser.values(account),
        parser.isSet(password),
        parser.value(screenshot),
        parser.isSet(quit) };
}

KRResult<TwitterServiceHosts> PelinorLaunchOptions::prepareServices() const
{
    const KRUserDefaults& defaults = KRUserDefaults::standardUserDefaults();
    KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
    settings.extraCAFile = caFile.isEmpty() ? defaults.stringForKey("ExtraCAFile") : caFile;
    KRHTTPTransportSettings::setCurrent(settings);
    return TwitterServiceHosts::hostsWithDefaults(defaults, servicesFile);
}

void PelinorLaunchOptions::signIn(Twitter& twitter) const
{
    QTextStream passwords(stdin);
    for (const QString& name : accounts) {
        const QString password = passwordsFromStandardInput ? passwords.readLine() : QString();
        if (password.isNull())
            continue;
        const auto& known = twitter.accounts();
        const auto found = std::find_if(known.begin(), known.end(), [&name](const TwitterAccountPtr& one) {
            return one->isNamed(name);
        });
        if (found != known.end())
            (*found)->setPassword(password);
        else
            twitter.addAccount(TwitterAccount::accountWithUsername(name, password, twitter.accountContext()));
    }
}
