#include "platform/workspace/KRWorkspace.h"

#include <QApplication>
#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

// Desktops bring a program to the front that is started with a token from the one the user is in. Without one
// on Wayland, and under X with the time that stands for "not by the user", it opens behind.
bool openInBackground(const QUrl& url)
{
    const QString opener = QStandardPaths::findExecutable(u"xdg-open"_s);
    if (opener.isEmpty())
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"XDG_ACTIVATION_TOKEN"_s);
    environment.insert(u"DESKTOP_STARTUP_ID"_s, u"pelinor_TIME0"_s);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProgram(opener);
    process.setArguments({ QString::fromLatin1(url.toEncoded()) });
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace

bool KRDesktopWorkspace::openURL(const QUrl& url, Launch launch)
{
    if (launch == Launch::InBackground && openInBackground(url))
        return true;
    return QDesktopServices::openUrl(url);
}

void KRDesktopWorkspace::beep()
{
    QApplication::beep();
}
