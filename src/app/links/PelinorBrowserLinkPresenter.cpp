#include "app/links/PelinorBrowserLinkPresenter.h"

using namespace Qt::StringLiterals;

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
    const QString host = m_hosts.webHost();
    if (host.isEmpty())
        m_workspace.beep();
    else
        _open(QUrl((host.contains("://"_L1) ? u"%1/%2"_s : u"https://%1/%2"_s).arg(host, screenName)));
}

void PelinorBrowserLinkPresenter::_open(const QUrl& url)
{
    m_workspace.openURL(url, KRWorkspace::Launch::Normal);
}
