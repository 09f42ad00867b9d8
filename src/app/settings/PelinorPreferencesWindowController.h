#pragma once

#include "core/Twitter.h"

#include <QMainWindow>

#include <memory>

class KRUserDefaults;
class PelinorHotKeys;
class QActionGroup;
class QStackedWidget;
struct PelinorDisplayPreferences;

/// The preferences: a window with one pane for each item of its tool bar. Main thread.
class PelinorPreferencesWindowController : public QObject {
    Q_OBJECT

public:
    /// All of it outlives the controller. The display preferences are kept as the defaults have them.
    PelinorPreferencesWindowController(Twitter& twitter,
        KRUserDefaults& defaults,
        PelinorHotKeys& hotKeys,
        PelinorDisplayPreferences& displayPreferences);
    ~PelinorPreferencesWindowController() override;

    void showWindow();
    QMainWindow& window() { return *m_window; }

    void general() { _setPrefsView(0); }
    void accounts() { _setPrefsView(1); }
    void advanced() { _setPrefsView(2); }

    /// Reads the display preferences anew with the next pass of the run loop, and tells of it.
    void changeDisplayPreferences();

private:
    void _loadWindow();
    void _setPrefsView(int index);
    void _updatePrefs();

    Twitter& m_twitter;
    KRUserDefaults& m_defaults;
    PelinorHotKeys& m_hotKeys;
    PelinorDisplayPreferences& m_displayPreferences;
    std::unique_ptr<QMainWindow> m_window;
    QStackedWidget* m_panes = nullptr;
    QActionGroup* m_items = nullptr;
};
