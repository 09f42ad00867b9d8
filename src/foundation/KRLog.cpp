#include "foundation/KRLog.h"

#include "foundation/KRClock.h"

#include <QByteArray>
#include <QDateTime>

#include <cstdio>
#include <mutex>

namespace {

// Never destroyed, as other threads may still log while static objects are being destroyed.
std::mutex& logLock()
{
    static auto* lock = new std::mutex;
    return *lock;
}

KRLogSink& logSink()
{
    static auto* sink = new KRLogSink;
    return *sink;
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
