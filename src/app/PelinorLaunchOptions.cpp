#include "app/PelinorLaunchOptions.h"

#include "foundation/KRUserDefaults.h"
#include "transport/KRHTTPConnection.h"

#include <QCommandLineParser>
#include <QTextStream>

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
    const QCommandLineOption account(u"account"_s, u"The account to show."_s, u"name"_s);
    const QCommandLineOption password(u"password-stdin"_s,
        u"Its password is the first line of standard input."_s);
    const QCommandLineOption screenshot(u"screenshot"_s,
        u"Save a picture of the window once its posts have come."_s,
        u"file"_s);
    const QCommandLineOption quit(u"quit-after-screenshot"_s, u"Quit when the picture is saved."_s);
    parser.addOptions({ services, caFile, account, password, screenshot, quit });
    parser.process(arguments);
    return { parser.value(services),
        parser.value(caFile),
        parser.value(account),
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

TwitterAccountPtr PelinorLaunchOptions::chooseAccount(Twitter& twitter) const
{
    if (account.isEmpty())
        return twitter.accounts().value(0);
    QString password;
    if (passwordFromStandardInput)
        password = QTextStream(stdin).readLine();
    for (const TwitterAccountPtr& known : twitter.accounts()) {
        if (known->username().compare(account, Qt::CaseInsensitive) != 0)
            continue;
        if (!password.isNull())
            known->setPassword(password);
        return known;
    }
    if (password.isNull())
        return nullptr;
    const TwitterAccountPtr added
        = TwitterAccount::accountWithUsername(account, password, twitter.accountContext());
    twitter.addAccount(added);
    return added;
}
