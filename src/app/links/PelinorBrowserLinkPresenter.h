#pragma once

#include "app/links/PelinorLinks.h"

/// Shows in the browser what the program has no window for: pictures and movies by their links, short links
/// where they lead, users on the service's web site. Searches have no page; they beep. Main thread.
class PelinorBrowserLinkPresenter final : public PelinorLinkPresenter {
public:
    /// Both outlive the presenter.
    PelinorBrowserLinkPresenter(const TwitterServiceHosts& hosts, KRWorkspace& workspace)
        : m_hosts(hosts)
        , m_workspace(workspace)
    {
    }

    void openImageViewer(const QUrl& fullSizeImageURL, const QString& sourceURLString) override;
    void openMovieViewer(const QUrl& movieURL) override;
    void openShortLinkChecker(const QString& urlString) override;
    void pushSearchView(const QString& query) override;
    void pushUserDetailsView(const QString& screenName) override;

private:
    void _open(const QUrl& url);

    const TwitterServiceHosts& m_hosts;
    KRWorkspace& m_workspace;
};
