#include "core/Twitter.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"

#include <QFile>

#include <unistd.h>

// Saves lists of one to nine accounts to the preferences file it is given, until it is killed. Every list is
// whole: its account number i is named "accounti". A byte to standard output says that one was saved.
int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    KRSetLogSink([](const QString&) {});
    KRUserDefaults defaults(QFile::decodeName(argv[1]));
    Twitter twitter({ &defaults, TwitterServiceHosts(), false });
    // Says that one more list is saved; nobody listens any longer when that fails.
    const auto tell = [] { return ::write(STDOUT_FILENO, "s", 1) == 1; };
    for (;;) {
        while (!twitter.accounts().isEmpty()) {
            twitter.removeAccount(twitter.accounts().last());
            if (!tell())
                return 1;
        }
        for (int i = 0; i < 9; ++i) {
            twitter.addAccount(TwitterAccount::accountWithUsername(QStringLiteral("account%1").arg(i),
                QString(),
                twitter.accountContext()));
            if (!tell())
                return 1;
        }
    }
}
