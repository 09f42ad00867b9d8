#include "model/streams/TwitterStream.h"

#include "foundation/KRLog.h"

void TwitterStream::loadOlder()
{
    KRLog(QStringLiteral("Warning: subclasses must implement -loadOlder"));
}

void TwitterStream::loadNewer()
{
    KRLog(QStringLiteral("Warning: subclasses must implement -loadNewer"));
}

void TwitterStream::setStatuses(const TwitterStatusList&)
{
    KRLog(QStringLiteral("Warning: subclasses must implement -setStatuses"));
}

TwitterStatusList TwitterStream::statuses() const
{
    KRLog(QStringLiteral("Warning: subclasses must implement -statuses"));
    return {};
}
