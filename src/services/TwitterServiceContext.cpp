#include "services/TwitterServiceContext.h"

#include "foundation/KRUserDefaults.h"

namespace {

const KRUserDefaults& storeOf(const TwitterServiceContext& context)
{
    return context.defaults ? *context.defaults : KRUserDefaults::standardUserDefaults();
}

} // namespace

int TwitterServiceContext::preferenceForKey(const char* key) const
{
    if (preference)
        return *preference;
    return storeOf(*this).integerForKey(key);
}

bool TwitterServiceContext::hasPreferenceForKey(const char* key) const
{
    return preference || storeOf(*this).contains(key);
}
