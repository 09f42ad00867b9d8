#include "app/lists/PelinorStatusActions.h"

#include "app/links/PelinorScreenLinkPresenter.h"
#include "foundation/KRUserDefaults.h"

#include <QUrl>

namespace {

constexpr int ClassicRepost = 1;

} // namespace

void PelinorStatusActions::reply(const TwitterStatusPtr& status, const Point& replyPoint) const
{
    m_environment.screens.newTweetFromAccount(m_account, status, {}, replyPoint);
}

QString PelinorStatusActions::repostText(const TwitterStatus& status) const
{
    const QString author = status.fromUser() ? status.fromUser()->username() : QString();
    if (m_environment.defaults.integerForKey("RepostSyntax") == ClassicRepost)
        return QStringLiteral("RT @%1: %2").arg(author, status.text());
    return QStringLiteral("%1 (via @%2)").arg(status.text(), author);
}

void PelinorStatusActions::repost(const TwitterStatus& status, const Point& replyPoint) const
{
    if (status.fromUser())
        m_environment.screens.newTweetFromAccount(m_account, nullptr, repostText(status), replyPoint);
}

QUrl PelinorStatusActions::addressOf(const TwitterStatus& status) const
{
    return status.twitterURL(m_account->context().hosts.webRoot());
}

void PelinorStatusActions::postLink(const TwitterStatus& status, const Point& replyPoint) const
{
    const QUrl address = addressOf(status);
    if (!address.isEmpty())
        m_environment.screens.newTweetFromAccount(m_account,
            nullptr,
            address.toString(QUrl::FullyEncoded),
            replyPoint);
}

void PelinorStatusActions::directMessage(const TwitterUserPtr& user) const
{
    if (user)
        m_environment.screens.newDirectMessageFromAccount(m_account, user);
}

bool PelinorStatusActions::toggleFavorite(const TwitterStatusPtr& status) const
{
    m_account->addStatusToFavorites(status);
    return m_account->isFavoriteStatus(*status);
}

void PelinorStatusActions::openInBrowser(const TwitterStatus& status, QWidget* view) const
{
    const QUrl address = addressOf(status);
    if (!address.isEmpty())
        PelinorScreenLinkPresenter(m_environment, m_account, nullptr)
            .openURLString(address.toString(QUrl::FullyEncoded), view);
}
