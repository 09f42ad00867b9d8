#include "app/capture/PelinorCamera.h"

#include "foundation/KRLog.h"

#include <QCoreApplication>
#include <QLibrary>

using namespace Qt::StringLiterals;

std::unique_ptr<PelinorCamera> PelinorMakeDeviceCamera()
{
    // Where it is installed, and where it is built.
    for (const QString& folder : { u"/../lib/pelinor"_s, QString() }) {
        QLibrary library(QCoreApplication::applicationDirPath() + folder + u"/pelinor-camera"_s);
        using Make = PelinorCamera* (*)();
        if (const auto make = reinterpret_cast<Make>(library.resolve("PelinorMakeCamera")))
            return std::unique_ptr<PelinorCamera>(make());
    }
    KRLog(u"Error: the part of the program for cameras is not installed"_s);
    return nullptr;
}
