#include "app/PelinorAppDelegate.h"
#include "app/PelinorApplication.h"
#include "app/PelinorLaunchOptions.h"
#include "app/PelinorScreenshot.h"
#include "core/KRSecretService.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRHTTPRequest.h"

#include <cstdio>
#include <optional>

namespace {

int complain(const QString& text)
{
    std::fprintf(stderr, "pelinor: %s\n", text.toLocal8Bit().constData());
    return 1;
}

int run(const PelinorLaunchOptions& options)
{
    const KRResult<TwitterServiceHosts> hosts = options.prepareServices();
    if (hosts.isError())
        return complain(hosts.error().description);
    KRQtRunLoopDriver driver;
    KRUserDefaults& defaults = KRUserDefaults::standardUserDefaults();
    Twitter::setSharedEnvironment({ &defaults, hosts.value(), true, !options.servicesFile.isEmpty() });
    KRHTTPRequest::removeAbandonedBodies();
    Twitter& twitter = Twitter::sharedTwitter();
    options.signIn(twitter);
    PelinorAppDelegate delegate(twitter, defaults);
    delegate.applicationDidFinishLaunching();
    std::optional<PelinorScreenshot> screenshot;
    if (!options.screenshotFile.isEmpty() && delegate.mainWindowController()) {
        screenshot.emplace(*delegate.mainWindowController(),
            options.screenshotFile,
            [&options](bool isFilled) {
                if (options.quitsAfterScreenshot)
                    QCoreApplication::exit(isFilled ? 0 : 1);
            });
    }
    const int exitCode = QApplication::exec();
    screenshot.reset();
    delegate.applicationWillTerminate();
    KRSecretService::stop();
    KRBackgroundThread::stopShared();
    KRRunLoop::main().runPending();
    return exitCode;
}

} // namespace

int main(int argc, char** argv)
{
    PelinorApplication application(argc, argv);
    return run(PelinorLaunchOptions::parse(QApplication::arguments()));
}
