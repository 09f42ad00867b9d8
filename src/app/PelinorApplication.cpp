#include "app/PelinorApplication.h"

PelinorApplication::PelinorApplication(int& argc, char** argv)
    : KRApplication(argc, argv)
{
    setApplicationName(QStringLiteral("pelinor"));
    setApplicationDisplayName(QStringLiteral("Pelinor"));
    setApplicationVersion(QStringLiteral("1.2.6"));
    setDesktopFileName(QStringLiteral("com.kestrin.Pelinor"));
    // The main window's closing ends the program; while it is hidden the last visible window may be another.
    setQuitOnLastWindowClosed(false);
}

PelinorApplication::~PelinorApplication() = default;
