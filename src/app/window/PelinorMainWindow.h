#pragma once

#include "app/lists/PelinorTweetsListViewController.h"

#include <QWidget>

class PelinorErrorStrip;
class PelinorWindowStatus;

/// The main window: an account's timeline, and above it what went wrong with loading it. Main thread.
class PelinorMainWindow : public QWidget {
    Q_OBJECT

public:
    /// The account and what the environment refers to outlive the window.
    PelinorMainWindow(PelinorListEnvironment environment, PelinorListAccount& account);
    ~PelinorMainWindow() override;

    PelinorStatusListViewController& list() { return m_list; }
    PelinorErrorStrip& errorStrip() { return *m_errorStrip; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class ActivityLine;

    void _restoreGeometry();
    void _statusDidChange();
    void _showList();
    void _leaveList();

    PelinorListEnvironment m_environment;
    PelinorTweetsListViewController m_list;
    std::shared_ptr<PelinorWindowStatus> m_status;
    PelinorErrorStrip* m_errorStrip = nullptr;
    ActivityLine* m_activityLine = nullptr;
    bool m_listIsShown = false;
};
