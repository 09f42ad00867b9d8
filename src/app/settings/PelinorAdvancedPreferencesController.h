#pragma once

#include <QWidget>

class KRUserDefaults;
class PelinorHotKeys;

/// The hot keys, the status area, the outside services to use, and whom to trust. What is read once at the
/// start says so. Main thread.
class PelinorAdvancedPreferencesController : public QWidget {
    Q_OBJECT

public:
    /// Both outlive the pane.
    PelinorAdvancedPreferencesController(KRUserDefaults& defaults, PelinorHotKeys& hotKeys, QWidget* parent);
    ~PelinorAdvancedPreferencesController() override;

private:
    KRUserDefaults& m_defaults;
};
