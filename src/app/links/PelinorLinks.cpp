#include "app/links/PelinorLinks.h"

#include "app/links/PelinorOpenAddressSheet.h"
#include "foundation/KRLog.h"
#include "foundation/KRUserDefaults.h"
#include "services/KRLinkAction.h"
#include "text/KRActiveTextRanges.h"

#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

KRShortLinkPreview preview(const PelinorLinkEnvironment& environment)
{
    return environment.defaults.boolForKey(PreviewShortURLsDefaultsKey) ? KRShortLinkPreview::On
                                                                        : KRShortLinkPreview::Off;
}

void open(const QUrl& url, const KRUserDefaults& defaults, KRWorkspace& workspace)
{
    workspace.openURL(url,
        defaults.boolForKey(OpenLinksInBackgroundDefaultsKey) ? KRWorkspace::Launch::InBackground
                                                              : KRWorkspace::Launch::Normal);
}

void perform(const KRLinkAction& action, const PelinorLinkEnvironment& environment, QWidget* view)
{
    using Kind = KRLinkAction::Kind;
    switch (action.kind) {
    case Kind::Nothing:
        break;
    case Kind::Beep:
        environment.workspace.beep();
        KRLog(u"ERROR: unknown link type <%1>"_s.arg(action.text));
        break;
    case Kind::ShowPicture:
        environment.presenter.openImageViewer(action.url, action.text);
        break;
    case Kind::PlayMovie:
        environment.presenter.openMovieViewer(action.url);
        break;
    case Kind::PreviewShortLink:
        environment.presenter.openShortLinkChecker(action.text);
        break;
    case Kind::Open:
        open(action.url, environment.defaults, environment.workspace);
        break;
    case Kind::OpenWhenUserAgrees:
        // The sheet outlives what follows this one click.
        PelinorOpenAddressSheet::ask(view,
            action.url,
            [&defaults = environment.defaults, &workspace = environment.workspace](
                const QUrl& url) { open(url, defaults, workspace); });
        break;
    case Kind::Search:
        environment.presenter.pushSearchView(action.text);
        break;
    case Kind::ShowUser:
        environment.presenter.pushUserDetailsView(action.text);
        break;
    case Kind::ShowStatus:
        environment.presenter.pushStatusDetailsView(action.text, action.url);
        break;
    case Kind::Mail:
        environment.workspace.openURL(action.url, KRWorkspace::Launch::Normal);
        break;
    }
}

} // namespace

bool KRHandleLink(const QString& text, int type, const PelinorLinkEnvironment& environment, QWidget* view)
{
    perform(KRActionForActiveString(environment.hosts, text, type, preview(environment)), environment, view);
    return type >= KRActiveStringTypeLink && type <= KRActiveStringTypeEmailAddress;
}

void KROpenURLString(const QString& urlString, const PelinorLinkEnvironment& environment, QWidget* view)
{
    perform(KRActionForURLString(environment.hosts, urlString, preview(environment)), environment, view);
}

void KRActuallyOpenURLString(const QString& urlString,
    const PelinorLinkEnvironment& environment,
    QWidget* view)
{
    perform(KRActionForOpening(urlString), environment, view);
}
