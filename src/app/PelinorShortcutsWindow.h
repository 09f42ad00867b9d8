#pragma once

class PelinorMainMenu;
class QWidget;

/// The window that lists what keys do. Main thread.
class PelinorShortcutsWindow {
public:
    PelinorShortcutsWindow() = delete;

    /// Opens the window, which deletes itself when it is closed.
    static void show(const PelinorMainMenu& menu, QWidget* parent);
};
