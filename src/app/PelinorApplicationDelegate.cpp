#include "app/PelinorApplicationDelegate.h"

#include "app/look/PelinorProfileImage.h"
#include "app/window/PelinorErrorStrip.h"
#include "core/KRKeychain.h"
#include "foundation/KRUserDefaults.h"
#include "toolkit/transitions/KRMotion.h"
#include "transport/KRHTTPRequest.h"

#include <QPixmap>

namespace {

constexpr auto screenshotStep = std::chrono::milliseconds(200);
constexpr int screenshotTries = 150;
// Avatars are asked for when their rows are first drawn, so one quiet moment may come before them.
constexpr int quietTriesNeeded = 3;

} // namespace

PelinorApplicationDelegate::PelinorApplicationDelegate(Twitter& twitter,
    KRUserDefaults& defaults,
    TwitterServiceHosts hosts)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_displayPreferences(PelinorDisplayPreferences::fromDefaults(defaults))
    , m_hosts(std::move(hosts))
    , m_linkPresenter(m_hosts, m_workspace)
    , m_links { m_hosts, defaults, m_workspace, m_linkPresenter }
{
    TwitterUser::setProfileImageMaker(&CreateRoundedProfileImage);
}

PelinorApplicationDelegate::~PelinorApplicationDelegate() = default;

void PelinorApplicationDelegate::openMainWindow(const TwitterAccountPtr& account)
{
    m_account = std::make_unique<PelinorTwitterAccount>(account);
    m_window = std::make_unique<PelinorMainWindow>(PelinorListEnvironment { m_defaults,
                                                       KRNotificationCenter::defaultCenter(),
                                                       m_displayPreferences,
                                                       m_heights,
                                                       &m_links },
        *m_account);
    m_keychainObservation = KRNotificationCenter::defaultCenter().observe<KRKeychainUnavailableNotification>(
        [this](const auto&) {
            m_window->errorStrip().setText(PelinorMainWindow::tr(
                "No keyring answers. Your password is kept in memory and asked for again next time."));
        });
    m_window->show();
    m_motionSetting = std::make_unique<KRDesktopMotionSetting>(&KRMotion::setReducedByDesktop);
}

void PelinorApplicationDelegate::takeScreenshot(const QString& file,
    std::function<void(bool isFilled)> finished)
{
    KRNotificationCenter& center = KRNotificationCenter::defaultCenter();
    m_networkObservations.push_back(center.observe<KRBeginNetworkActivityNotification>(
        [this](const auto&) { m_isNetworkActive = true; }));
    m_networkObservations.push_back(
        center.observe<KREndNetworkActivityNotification>([this](const auto&) { m_isNetworkActive = false; }));
    m_screenshotFile = file;
    m_screenshotFinished = std::move(finished);
    m_screenshotTimer = KRRunLoop::main().scheduleTimer(screenshotStep, KRRunLoop::Repeats::Yes, [this] {
        _tryScreenshot();
    });
}

void PelinorApplicationDelegate::_tryScreenshot()
{
    // The rows are a header, the posts and what stands for the rest.
    const bool hasPosts = m_window->list().statuses().size() > 2;
    m_quietTries = hasPosts && !m_isNetworkActive ? m_quietTries + 1 : 0;
    if (m_quietTries < quietTriesNeeded && ++m_screenshotTries < screenshotTries)
        return;
    const bool isWritten = m_window->grab().save(m_screenshotFile, "PNG");
    m_networkObservations.clear();
    const std::function<void(bool)> finished = std::move(m_screenshotFinished);
    m_screenshotTimer.invalidate();
    if (finished)
        finished(hasPosts && isWritten);
}

void PelinorApplicationDelegate::applicationWillTerminate()
{
    m_window.reset();
    m_twitter.shutdown();
}
