// Shows what the toolkit has. With --screenshot it shows nothing, saves a picture of one page and ends.

#include "GalleryLook.h"
#include "GalleryNavigationPage.h"
#include "GalleryTextPage.h"
#include "GalleryTransitionsPage.h"
#include "GalleryWindow.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRManualClock.h"
#include "toolkit/KRApplication.h"

#include <QCommandLineParser>

namespace {

using namespace std::chrono_literals;

struct Options {
    QString page;
    QString screenshotFile;
    int depth = 0;
    int focused = -1;
    int transition = 0;
    std::chrono::milliseconds time { 0 };
};

// Comes before the application object, which reads the scale once.
void setScaleFromArguments(int argc, char** argv)
{
    for (int index = 1; index + 1 < argc; ++index) {
        if (QByteArrayView(argv[index]) == "--scale")
            qputenv("QT_SCALE_FACTOR", argv[index + 1]);
    }
}

Options parseOptions()
{
    QCommandLineParser parser;
    parser.addHelpOption();
    const auto add = [&parser](const char* name, const QString& description, const QString& value = {}) {
        parser.addOption({ QString::fromLatin1(name), description, value });
    };
    add("page",
        QStringLiteral("Shows that page first: %1.").arg(GalleryWindow::pageNames().join(u", ")),
        QStringLiteral("name"));
    add("screenshot", QStringLiteral("Saves a picture of the page and ends."), QStringLiteral("file"));
    add("scale", QStringLiteral("Points to pixels."), QStringLiteral("factor"));
    add("dark", QStringLiteral("In dark colours."));
    add("rtl", QStringLiteral("From right to left."));
    add("depth", QStringLiteral("Pushes that many screens on the navigation page."), QStringLiteral("count"));
    add("focus",
        QStringLiteral("Gives that crumb of the navigation page, or span of the text page, the focus."),
        QStringLiteral("number"));
    add("transition",
        QStringLiteral("Starts the transition of that code on the transitions page."),
        QStringLiteral("code"));
    add("time", QStringLiteral("How long after its start the picture is taken."), QStringLiteral("ms"));
    parser.process(*QCoreApplication::instance());
    QApplication::setPalette(GalleryLook::palette(parser.isSet(QStringLiteral("dark"))));
    if (parser.isSet(QStringLiteral("rtl")))
        QApplication::setLayoutDirection(Qt::RightToLeft);
    return { parser.value(QStringLiteral("page")),
        parser.value(QStringLiteral("screenshot")),
        parser.value(QStringLiteral("depth")).toInt(),
        parser.isSet(QStringLiteral("focus")) ? parser.value(QStringLiteral("focus")).toInt() : -1,
        parser.value(QStringLiteral("transition")).toInt(),
        std::chrono::milliseconds(parser.value(QStringLiteral("time")).toInt()) };
}

void apply(const Options& options, GalleryWindow& window)
{
    const KRViewControllerPtr page = window.currentPage();
    if (const auto navigation = std::dynamic_pointer_cast<GalleryNavigationPage>(page)) {
        navigation->pushScreens(options.depth);
        if (options.focused >= 0)
            navigation->focusCrumb(options.focused);
    }
    if (const auto text = std::dynamic_pointer_cast<GalleryTextPage>(page); text && options.focused >= 0)
        text->focusSpan(options.focused);
    const auto transitions = std::dynamic_pointer_cast<GalleryTransitionsPage>(page);
    if (transitions && options.transition != 0)
        transitions->play(options.transition);
}

int saveScreenshot(const Options& options)
{
    KRManualClock clock;
    GalleryWindow window;
    window.show();
    QCoreApplication::processEvents();
    window.showPage(options.page);
    clock.advance(1s);
    apply(options, window);
    QCoreApplication::processEvents();
    clock.advance(options.time);
    return window.grab().save(options.screenshotFile, "PNG") ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    setScaleFromArguments(argc, argv);
    KRApplication application(argc, argv);
    Options options = parseOptions();
    if (!GalleryWindow::pageNames().contains(options.page)) {
        if (!options.page.isEmpty())
            qFatal("there is no such page");
        options.page = GalleryWindow::pageNames().first();
    }
    if (!options.screenshotFile.isEmpty())
        return saveScreenshot(options);
    const KRQtRunLoopDriver driver;
    GalleryWindow window;
    window.showPage(options.page);
    apply(options, window);
    window.show();
    return QApplication::exec();
}
