#include "app/people/PelinorPeople.h"

#include "transport/KRProxy.h"

PelinorPeople::PelinorPeople(TwitterAccountPtr account, TwitterUserPtr person, Kind kind)
    : m_account(std::move(account))
    , m_person(std::move(person))
    , m_kind(kind)
{
}

PelinorPeople::~PelinorPeople()
{
    dissociateWeakProxy(this);
}

void PelinorPeople::loadMore()
{
    if (m_isLoading || m_isAtEnd)
        return;
    m_isLoading = true;
    m_error.reset();
    // Protected people show theirs to those they know.
    const auto request = m_account->authenticatedRequest<TwitterUserList>(
        Callback(weakMainThreadProxy(shared_from_this()), &PelinorPeople::pageResponse));
    const bool hasID = !m_person->userID().isNull();
    if (m_kind == Kind::Following && hasID)
        request->friendsForUserID(m_person->userID(), m_page);
    else if (m_kind == Kind::Following)
        request->friendsForUsername(m_person->username(), m_page);
    else if (hasID)
        request->followersForUserID(m_person->userID(), m_page);
    else
        request->followersForUsername(m_person->username(), m_page);
    if (m_didChange)
        m_didChange();
}

bool PelinorPeople::_add(const TwitterUserPtr& user)
{
    const QString key = user->userID().isNull() ? u'@' + user->username().toLower() : user->userID();
    if (m_known.contains(key))
        return false;
    m_known.insert(key);
    m_people.append(user);
    return true;
}

void PelinorPeople::pageResponse(const KRResult<TwitterUserList>& response)
{
    m_isLoading = false;
    if (response.isError()) {
        m_error = response.error();
    } else {
        bool isNew = false;
        for (const TwitterUserPtr& user : m_account->context().tables->definitiveUsers(response.value()))
            isNew = _add(user) || isNew;
        // A site that knows no pages sends the first one for ever.
        m_isAtEnd = !isNew;
        ++m_page;
    }
    if (m_didChange)
        m_didChange();
}
