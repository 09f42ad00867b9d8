#include "app/links/PelinorBrowserLinkPresenter.h"

void PelinorBrowserLinkPresenter::openImageViewer(const QUrl& /*fullSizeImageURL*/,
    const QString& sourceURLString)
{
    _open(QUrl(sourceURLString));
}

void PelinorBrowserLinkPresenter::openMovieViewer(const QUrl& movieURL)
{
    _open(movieURL);
}

void PelinorBrowserLinkPresenter::openShortLinkChecker(const QString& urlString)
{
    _open(QUrl(urlString));
}

void PelinorBrowserLinkPresenter::pushSearchView(const QString& /*query*/)
{
    m_workspace.beep();
}

void PelinorBrowserLinkPresenter::pushUserDetailsView(const QString& screenName)
{
    const QUrl page = m_hosts.webURLForUser(screenName);
    if (page.isEmpty())
        m_workspace.beep();
    else
        _open(page);
}

void PelinorBrowserLinkPresenter::_open(const QUrl& url)
{
    m_workspace.openURL(url, KRWorkspace::Launch::Normal);
}
