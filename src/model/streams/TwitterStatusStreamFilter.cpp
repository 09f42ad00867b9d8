#include "model/streams/TwitterStatusStreamFilter.h"

#include "foundation/KRUserDefaults.h"
#include "text/KRStringAdditions.h"

#include <algorithm>
#include <optional>

namespace {

std::optional<QStringList> s_filterTerms;

} // namespace

void ReadFilterTerms(const KRUserDefaults& defaults)
{
    s_filterTerms = defaults.stringListForKey("filterTerms");
}

TwitterStatusPtr FilterWithUserDefaults(const TwitterStatusPtr& status)
{
    if (!s_filterTerms)
        ReadFilterTerms(KRUserDefaults::standardUserDefaults());
    const QStringList& terms = *s_filterTerms;
    const bool isFiltered = std::any_of(terms.begin(), terms.end(), [&status](const QString& term) {
        return !term.isEmpty() && KRAdditions::containsSubstringIgnoringCase(status->text(), term);
    });
    return isFiltered ? nullptr : status;
}

const std::shared_ptr<TwitterStatusStreamFilter>& TwitterStatusStreamFilter::defaultStatusStreamFilter()
{
    static const auto filter = std::make_shared<TwitterStatusStreamFilter>();
    return filter;
}

bool TwitterStatusStreamFilter::validStatus(const TwitterStatus&) const
{
    return true;
}

bool TwitterStatusStreamFilterUserListFilter::validStatus(const TwitterStatus& status) const
{
    if (!status.isNotADummyStatus())
        return true;
    const TwitterUserPtr& author = status.fromUser();
    return author && std::any_of(m_users.begin(), m_users.end(), [&author](const TwitterUserPtr& user) {
        return user->isEqual(*author);
    });
}

bool TwitterStatusStreamFilterSimpleSearchFilter::validStatus(const TwitterStatus& status) const
{
    return !status.isNotADummyStatus() || KRAdditions::containsSubstringIgnoringCase(status.text(), m_query);
}
