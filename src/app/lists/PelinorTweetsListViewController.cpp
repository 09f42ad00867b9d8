#include "app/lists/PelinorTweetsListViewController.h"

#include <algorithm>

void PelinorTweetsListViewController::viewWillAppear(bool animated)
{
    PelinorStatusListViewController::viewWillAppear(animated);
    const std::shared_ptr<TwitterStream> stream = account().timelineStream();
    m_streamObservation = environment().notifications.observe<TwitterStreamDidUpdateNotification>(
        [this](const TwitterStreamDidUpdateNotification&) { streamDidUpdate(); },
        stream.get());
    const TwitterStatusList statuses = stream->statuses();
    setStatuses(statuses);
    const bool hasPosts = std::any_of(statuses.begin(), statuses.end(), [](const TwitterStatusPtr& status) {
        return status->isNotADummyStatus();
    });
    if (!hasPosts)
        stream->loadNewer();
}

void PelinorTweetsListViewController::viewWillDisappear(bool animated)
{
    m_streamObservation.invalidate();
    PelinorStatusListViewController::viewWillDisappear(animated);
}

QString PelinorTweetsListViewController::autosaveName() const
{
    return QStringLiteral("%1_____timeline").arg(account().username());
}

void PelinorTweetsListViewController::noteFreshness()
{
    account().noteFreshTweets();
}

void PelinorTweetsListViewController::loadOlder()
{
    account().timelineStream()->loadOlder();
}

void PelinorTweetsListViewController::loadMissing(const TwitterDummyMissingStatus& row)
{
    account().timelineStream()->loadMissing(row);
}

void PelinorTweetsListViewController::refresh()
{
    account().timelineStream()->loadNewer();
}

void PelinorTweetsListViewController::streamDidUpdate()
{
    setStatuses(account().timelineStream()->statuses());
}
