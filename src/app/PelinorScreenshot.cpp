#include "app/PelinorScreenshot.h"

#include "app/lists/PelinorStatusListViewController.h"
#include "app/window/PelinorMainWindowController.h"
#include "transport/KRHTTPRequest.h"

#include <QPixmap>

namespace {

constexpr auto StepDuration = std::chrono::milliseconds(200);
constexpr int LongestWait = 150;
// Avatars are asked for when their rows are first drawn, so one quiet moment may come before them.
constexpr int QuietTriesNeeded = 3;

} // namespace

PelinorScreenshot::PelinorScreenshot(PelinorMainWindowController& window,
    QString file,
    std::function<void(bool isFilled)> finished)
    : m_window(window)
    , m_file(std::move(file))
    , m_finished(std::move(finished))
{
    KRNotificationCenter& center = KRNotificationCenter::defaultCenter();
    m_observations.push_back(center.observe<KRBeginNetworkActivityNotification>(
        [this](const auto&) { m_isNetworkActive = true; }));
    m_observations.push_back(
        center.observe<KREndNetworkActivityNotification>([this](const auto&) { m_isNetworkActive = false; }));
    m_timer = KRRunLoop::main().scheduleTimer(StepDuration, KRRunLoop::Repeats::Yes, [this] { _try(); });
}

void PelinorScreenshot::_try()
{
    // The rows are a header, the posts and what stands for the rest.
    const auto* const list = m_window.topList();
    const bool hasPosts = list && list->statuses().size() > 2;
    m_quietTries = hasPosts && !m_isNetworkActive ? m_quietTries + 1 : 0;
    if (m_quietTries < QuietTriesNeeded && ++m_tries < LongestWait)
        return;
    const bool isWritten = m_window.window().grab().save(m_file, "PNG");
    m_observations.clear();
    m_timer.invalidate();
    // Whoever hears of it may let go of the screenshot.
    const std::function<void(bool)> finished = std::move(m_finished);
    if (finished)
        finished(hasPosts && isWritten);
}
