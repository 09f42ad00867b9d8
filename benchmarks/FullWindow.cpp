// The program with five accounts, as the benchmark of its memory starts it: when all streams are full, every
// avatar has come and the window is at rest, it writes one byte to file descriptor 3.

#include "KRBenchmarkProgram.h"
#include "app/PelinorApplication.h"

#include <cstdio>
#include <unistd.h>

namespace {

constexpr int AccountCount = 5;
constexpr int AuthorCount = 300;
constexpr int FullStream = 499;
constexpr int ReportDescriptor = 3;

bool hasAllAvatars(const Twitter& twitter)
{
    int count = 0;
    for (const TwitterUserPtr& user : twitter.cachedUsers())
        count += user->profileImage() ? 1 : 0;
    return count >= AuthorCount;
}

} // namespace

int main(int argc, char** argv)
{
    const KRBenchmarkHome home;
    const PelinorApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    KRBenchmarkProgram program(arguments.value(1), arguments.value(2), AccountCount);
    if (!KRBenchmarkProgram::waitUntil([&] { return program.hasInEveryStream(FullStream); })
        || !KRBenchmarkProgram::waitUntil([&] { return hasAllAvatars(*program.twitter); }))
        return 1;
    // Every timeline and every list of mentions has been looked at.
    for (int i = 0; i < AccountCount; ++i) {
        program.window().selectReplies();
        KRBenchmarkProgram::rest(200);
        program.window().selectTimeline();
        KRBenchmarkProgram::rest(200);
        program.window().selectNextAccount();
    }
    KRBenchmarkProgram::rest(2000);
    if (::write(ReportDescriptor, "f", 1) != 1)
        return 1;
    return QApplication::exec();
}
