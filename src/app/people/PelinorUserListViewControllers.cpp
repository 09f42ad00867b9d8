#include "app/people/PelinorUserListViewControllers.h"

#include "foundation/KRMainThreadObject.h"

namespace {

/// People without an ID have no place of their own in the user defaults.
QString autosaveNameFor(const TwitterUser& user, const QString& name)
{
    return user.userID().isNull() ? QString() : QStringLiteral("userID_%1__%2").arg(user.userID(), name);
}

template <class Stream>
std::shared_ptr<Stream> streamOf(const TwitterAccountPtr& account, const TwitterUserPtr& user)
{
    auto stream = KRMakeMainThreadObject<Stream>(account->context().tables);
    stream->setAccount(account);
    stream->setUser(user);
    return stream;
}

} // namespace

QString PelinorUserTweetsListViewController::autosaveName() const
{
    return autosaveNameFor(*m_user, QStringLiteral("timeline"));
}

void PelinorUserTweetsListViewController::viewDidLoad()
{
    PelinorStatusListViewController::viewDidLoad();
    m_stream = streamOf<TwitterUserTimelineStream>(account(), m_user);
}

QString PelinorUserFavoritesListViewController::autosaveName() const
{
    return autosaveNameFor(*m_user, QStringLiteral("favorites"));
}

void PelinorUserFavoritesListViewController::viewDidLoad()
{
    PelinorStatusListViewController::viewDidLoad();
    m_stream = streamOf<TwitterUserFavoritesStream>(account(), m_user);
}
