#include "app/links/PelinorScreenLinkPresenter.h"

#include "toolkit/navigation/KRNavigationController.h"

PelinorLinkEnvironment PelinorScreenLinkPresenter::_links()
{
    return { m_account->context().hosts, m_environment.defaults, m_environment.workspace, *this };
}

void PelinorScreenLinkPresenter::handleLink(const QString& text, int type, QWidget* view)
{
    KRHandleLink(text, type, _links(), view);
}

void PelinorScreenLinkPresenter::openURLString(const QString& urlString, QWidget* view)
{
    KROpenURLString(urlString, _links(), view);
}

void PelinorScreenLinkPresenter::openImageViewer(const QUrl& /*fullSizeImageURL*/,
    const QString& sourceURLString)
{
    _open(QUrl(sourceURLString));
}

void PelinorScreenLinkPresenter::openMovieViewer(const QUrl& movieURL)
{
    _open(movieURL);
}

void PelinorScreenLinkPresenter::openShortLinkChecker(const QString& urlString)
{
    _open(QUrl(urlString));
}

void PelinorScreenLinkPresenter::pushSearchView(const QString& query)
{
    const auto search
        = std::make_shared<TwitterSearch>(m_account->context().tables, m_account->context().hosts);
    search->setQuery(query);
    // A search that is kept has its results already.
    TwitterSearchPtr shown = search;
    for (const TwitterSearchPtr& saved : m_account->savedSearches()) {
        if (saved->isEqual(*search))
            shown = saved;
    }
    _push(m_environment.screens.makeSearchView(m_account, shown));
}

void PelinorScreenLinkPresenter::pushUserDetailsView(const QString& screenName)
{
    _push(m_environment.screens.makeUserDetailsView(m_account,
        m_account->cachedUserWithUsername(screenName),
        screenName));
}

namespace {

// A post on its way to the screen; what was clicked may be gone when it comes.
struct StatusOpening {
    PelinorScreenEnvironment environment;
    TwitterAccountPtr account;
    QPointer<KRNavigationController> navigation;
    QUrl page;

    void statusResponse(const KRResult<TwitterStatusPtr>& response)
    {
        if (response.isError())
            environment.workspace.openURL(page, KRWorkspace::Launch::Normal);
        else if (navigation)
            navigation->pushViewController(
                environment.screens.makeStatusDetailsView(account, response.value()),
                KRAnimated::Yes);
    }
};

} // namespace

void PelinorScreenLinkPresenter::pushStatusDetailsView(const QString& statusID, const QUrl& page)
{
    if (const TwitterStatusPtr known = m_account->cachedStatusWithID(statusID)) {
        _push(m_environment.screens.makeStatusDetailsView(m_account, known));
        return;
    }
    const auto opening = std::make_shared<StatusOpening>(
        StatusOpening { m_environment, m_account, m_navigationController, page });
    m_account->requestStatusWithID(statusID, Callback(opening, &StatusOpening::statusResponse));
}

void PelinorScreenLinkPresenter::_open(const QUrl& url)
{
    m_environment.workspace.openURL(url, KRWorkspace::Launch::Normal);
}

void PelinorScreenLinkPresenter::_push(const KRViewControllerPtr& screen)
{
    if (m_navigationController && screen)
        m_navigationController->pushViewController(screen, KRAnimated::Yes);
    else
        m_environment.workspace.beep();
}
