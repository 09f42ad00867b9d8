#include "foundation/KRLog.h"

#include "foundation/KRClock.h"

#include <QByteArray>
#include <QDateTime>

#include <cstdio>
#include <mutex>

namespace {

std::mutex& logLock()
{
    static std::mutex lock;
    return lock;
}

KRLogSink& logSink()
{
    static KRLogSink sink;
    return sink;
}

} // namespace

void KRLog(const QString& line)
{
    std::scoped_lock guard(logLock());
    if (logSink()) {
        logSink()(line);
        return;
    }
    const QByteArray time = KRClock::system().now().toString(Qt::ISODateWithMs).toUtf8();
    const QByteArray text = line.toUtf8();
    std::fprintf(stderr, "%s %s\n", time.constData(), text.constData());
}

KRLogSink KRSetLogSink(KRLogSink sink)
{
    std::scoped_lock guard(logLock());
    std::swap(logSink(), sink);
    return sink;
}
