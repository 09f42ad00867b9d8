#pragma once

#include "api/TwitterServiceHosts.h"

#include <memory>
#include <optional>

class KRUploadMonitor;
class KRUserDefaults;

/// What a call to the user's choice of an outside service is made with. A value; any thread.
struct TwitterServiceContext {
    TwitterServiceHosts hosts;
    /// Where the choice is read, at every call. Not owned: the defaults live as long as the program. Without
    /// them, the standard ones.
    const KRUserDefaults* defaults = nullptr;
    /// A choice for these calls alone, in place of the user's.
    std::optional<int> preference = std::nullopt;
    /// Whether the account's site takes pictures itself. It is asked where no choice was made.
    bool siteTakesUploads = false;
    /// Who watches the upload that is made with this, if anybody does.
    std::shared_ptr<KRUploadMonitor> monitor = nullptr;

    /// The choice for these calls, or else the number under the key; 0 when there is none.
    [[nodiscard]] int preferenceForKey(const char* key) const;
    /// Whether a choice was made at all.
    [[nodiscard]] bool hasPreferenceForKey(const char* key) const;
};
