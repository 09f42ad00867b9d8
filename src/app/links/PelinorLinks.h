#pragma once

#include "api/TwitterServiceHosts.h"
#include "platform/workspace/KRWorkspace.h"

#include <QString>
#include <QUrl>

class KRUserDefaults;
class QWidget;

/// The windows and screens of the program that a link can lead to. An implementation belongs to one account
/// and to the place in a window whose text was clicked. Main thread.
class PelinorLinkPresenter {
public:
    PelinorLinkPresenter() = default;
    PelinorLinkPresenter(const PelinorLinkPresenter&) = delete;
    PelinorLinkPresenter& operator=(const PelinorLinkPresenter&) = delete;
    virtual ~PelinorLinkPresenter() = default;

    /// Opens the image viewer; the source is the link, for the viewer to open in the browser.
    virtual void openImageViewer(const QUrl& fullSizeImageURL, const QString& sourceURLString) = 0;
    virtual void openMovieViewer(const QUrl& movieURL) = 0;
    /// Opens the window that finds out where a short link leads.
    virtual void openShortLinkChecker(const QString& urlString) = 0;
    /// Pushes a search view with the query, animated.
    virtual void pushSearchView(const QString& query) = 0;
    /// Pushes a view that loads and shows the user, animated.
    virtual void pushUserDetailsView(const QString& screenName) = 0;
    /// Pushes a view of the post, animated, once it has been loaded; opens its page in the browser where it
    /// cannot be.
    virtual void pushStatusDetailsView(const QString& statusID, const QUrl& page) = 0;
};

/// What following one link works with. The presenter and the hosts are those of the click; the rest outlives
/// the views with links.
struct PelinorLinkEnvironment {
    const TwitterServiceHosts& hosts;
    const KRUserDefaults& defaults;
    KRWorkspace& workspace;
    PelinorLinkPresenter& presenter;
};

/// The user default that keeps the browser behind the program's windows.
inline constexpr char OpenLinksInBackgroundDefaultsKey[] = "OpenLinksInBackground";

/// Does what a click on an active span means. The type is that of KRAdditions::activeStringType(), a user
/// name comes without its "@"; the view is the one that shows the text. True when the span was handled.
bool KRHandleLink(const QString& text, int type, const PelinorLinkEnvironment& environment, QWidget* view);
/// Opens a web link; a known short one after a preview of where it leads, if the user wants that.
void KROpenURLString(const QString& urlString, const PelinorLinkEnvironment& environment, QWidget* view);
/// Opens a web link as it is. An address that is none of the web's is opened once the user has seen it in a
/// sheet on the view's window and agreed.
void KRActuallyOpenURLString(const QString& urlString,
    const PelinorLinkEnvironment& environment,
    QWidget* view);
