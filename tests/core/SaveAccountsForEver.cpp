#include "core/Twitter.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"

#include <QFile>

// Saves lists of one to nine accounts to the preferences file it is given, until it is killed. Every list is
// whole: its account number i is named "accounti".
int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    KRSetLogSink([](const QString&) {});
    KRUserDefaults defaults(QFile::decodeName(argv[1]));
    Twitter twitter({ &defaults, TwitterServiceHosts(), false });
    for (;;) {
        while (!twitter.accounts().isEmpty())
            twitter.removeAccount(twitter.accounts().last());
        for (int i = 0; i < 9; ++i) {
            twitter.addAccount(TwitterAccount::accountWithUsername(QStringLiteral("account%1").arg(i),
                QString(),
                twitter.accountContext()));
        }
    }
}
