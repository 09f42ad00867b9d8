#include "app/lists/PelinorStatusActions.h"

#include "app/links/PelinorScreenLinkPresenter.h"
#include "app/look/PelinorAlert.h"
#include "foundation/KRUserDefaults.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPushButton>
#include <QUrl>

namespace {

constexpr int ClassicRepost = 1;

/// Tells why a post is still there.
struct Deletion {
    Q_DECLARE_TR_FUNCTIONS(PelinorStatusActions)

public:
    QPointer<QWidget> window;

    void statusResponse(const KRResult<TwitterStatusPtr>& response)
    {
        if (response.isError() && window)
            PelinorShowAlert(QMessageBox::Warning,
                tr("The post could not be deleted."),
                response.error().description,
                window);
    }
};

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

void PelinorStatusActions::destroy(const TwitterStatusPtr& status, QWidget* view) const
{
    if (!m_account->isAuthorOfStatus(*status) || status->statusID().isEmpty())
        return;
    QMessageBox* const alert = PelinorMakeAlert(QMessageBox::Question,
        Deletion::tr("Delete this post?"),
        Deletion::tr("It goes from the site for everybody:\n\n%1").arg(status->text()),
        view);
    alert->setObjectName(QStringLiteral("deletePostSheet"));
    QPushButton* const cancel = alert->addButton(Deletion::tr("Cancel"), QMessageBox::RejectRole);
    QPushButton* const agree = alert->addButton(Deletion::tr("Delete"), QMessageBox::DestructiveRole);
    alert->setDefaultButton(cancel);
    alert->setEscapeButton(cancel);
    const auto deletion = std::make_shared<Deletion>(Deletion { view->window() });
    QObject::connect(agree, &QPushButton::clicked, alert, [account = m_account, status, deletion] {
        account->destroyStatus(status, Callback(deletion, &Deletion::statusResponse));
    });
    alert->open();
}

void PelinorStatusActions::openInBrowser(const TwitterStatus& status, QWidget* view) const
{
    const QUrl address = addressOf(status);
    if (!address.isEmpty())
        PelinorScreenLinkPresenter(m_environment, m_account, nullptr)
            .openURLString(address.toString(QUrl::FullyEncoded), view);
}
