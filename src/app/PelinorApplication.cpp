#include "app/PelinorApplication.h"

PelinorApplication::PelinorApplication(int& argc, char** argv)
    : KRApplication(argc, argv)
{
    setApplicationName(QStringLiteral("pelinor"));
    setApplicationDisplayName(QStringLiteral("Pelinor"));
    setApplicationVersion(QStringLiteral("1.2.6"));
    setDesktopFileName(QStringLiteral("com.kestrin.Pelinor"));
}

PelinorApplication::~PelinorApplication() = default;
