#pragma once

#include "foundation/KRNotificationCenter.h"
#include "foundation/KRRunLoop.h"

#include <QString>

#include <atomic>
#include <functional>
#include <vector>

class PelinorMainWindowController;

/// Saves a picture of the main window once its posts and their avatars have come, or after a while without
/// them. Main thread.
class PelinorScreenshot {
public:
    /// `finished` is told whether the posts are in the picture. The window outlives the screenshot.
    PelinorScreenshot(PelinorMainWindowController& window,
        QString file,
        std::function<void(bool isFilled)> finished);
    PelinorScreenshot(const PelinorScreenshot&) = delete;
    PelinorScreenshot& operator=(const PelinorScreenshot&) = delete;
    ~PelinorScreenshot() = default;

private:
    void _try();

    PelinorMainWindowController& m_window;
    QString m_file;
    std::function<void(bool)> m_finished;
    KRTimer m_timer;
    int m_tries = 0;
    int m_quietTries = 0;
    // Set on the threads that requests start and end on.
    std::atomic<bool> m_isNetworkActive = false;
    std::vector<KRObservation> m_observations;
};
