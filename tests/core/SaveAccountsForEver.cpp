#include "core/Twitter.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"

#include <QFile>

#include <cstdlib>
#include <unistd.h>

// Saves lists of one to nine accounts to the preferences file it is given. Every list is whole: its account
// number i is named "accounti". It kills itself so many microseconds after so many savings.
int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    KRSetLogSink([](const QString&) {});
    KRUserDefaults defaults(QFile::decodeName(argv[1]));
    int savings = std::atoi(argv[2]);
    const auto note = [&] {
        if (--savings == 0)
            ::ualarm(static_cast<useconds_t>(std::atoi(argv[3])), 0);
    };
    Twitter twitter({ &defaults, TwitterServiceHosts(), false });
    for (;;) {
        while (!twitter.accounts().isEmpty()) {
            twitter.removeAccount(twitter.accounts().last());
            note();
        }
        for (int i = 0; i < 9; ++i) {
            twitter.addAccount(TwitterAccount::accountWithUsername(QStringLiteral("account%1").arg(i),
                QString(),
                twitter.accountContext()));
            note();
        }
    }
}
