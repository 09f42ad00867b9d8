#pragma once

#include "app/links/PelinorLinks.h"
#include "app/links/PelinorScreens.h"

/// Follows the links of a text in a screen: people and searches are pushed on the screen's navigation stack,
/// pictures, movies and short links open in the browser. Main thread.
class PelinorScreenLinkPresenter final : public PelinorLinkPresenter {
public:
    /// Without a navigation stack around the screen there is nowhere to push, and that beeps.
    PelinorScreenLinkPresenter(const PelinorScreenEnvironment& environment,
        TwitterAccountPtr account,
        KRNavigationController* navigationController)
        : m_environment(environment)
        , m_account(std::move(account))
        , m_navigationController(navigationController)
    {
    }

    /// Does what a click on an active span means, see KRHandleLink().
    void handleLink(const QString& text, int type, QWidget* view);
    /// Opens a web link, see KROpenURLString().
    void openURLString(const QString& urlString, QWidget* view);

    void openImageViewer(const QUrl& fullSizeImageURL, const QString& sourceURLString) override;
    void openMovieViewer(const QUrl& movieURL) override;
    void openShortLinkChecker(const QString& urlString) override;
    void pushSearchView(const QString& query) override;
    void pushUserDetailsView(const QString& screenName) override;
    void pushStatusDetailsView(const QString& statusID, const QUrl& page) override;

private:
    PelinorLinkEnvironment _links();
    void _open(const QUrl& url);
    void _push(const KRViewControllerPtr& screen);

    PelinorScreenEnvironment m_environment;
    TwitterAccountPtr m_account;
    KRNavigationController* m_navigationController;
};
