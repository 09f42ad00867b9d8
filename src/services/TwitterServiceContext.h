#pragma once

#include "api/TwitterServiceHosts.h"

class KRUserDefaults;

/// What a call to the user's choice of an outside service is made with.
struct TwitterServiceContext {
    TwitterServiceHosts hosts;
    /// Where the choice is read, at every call. Not owned: the defaults live as long as the program. Without
    /// them, the standard ones.
    const KRUserDefaults* defaults = nullptr;

    /// The number under the key; 0 when there is none.
    [[nodiscard]] int preferenceForKey(const char* key) const;
};
