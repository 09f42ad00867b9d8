#include "services/TwitterServiceContext.h"

#include "foundation/KRUserDefaults.h"

int TwitterServiceContext::preferenceForKey(const char* key) const
{
    if (preference)
        return *preference;
    const KRUserDefaults& store = defaults ? *defaults : KRUserDefaults::standardUserDefaults();
    return store.integerForKey(key);
}
