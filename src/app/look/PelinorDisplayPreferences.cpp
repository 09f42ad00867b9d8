#include "app/look/PelinorDisplayPreferences.h"

#include "foundation/KRUserDefaults.h"

PelinorDisplayPreferences PelinorDisplayPreferences::fromDefaults(const KRUserDefaults& defaults)
{
    return {
        .statusCellFontSize = defaults.integerForKey("StatusCellFontSize"),
        .displayName = defaults.integerForKey("DisplayName"),
        .dimPreviouslySelectedTweets = defaults.integerForKey("DimPreviouslySelectedTweets") != 0,
    };
}
