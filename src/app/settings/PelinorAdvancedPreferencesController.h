#pragma once

#include <QWidget>

class KRUserDefaults;

/// The outside services to use, and whom to trust. What is read once at the start says so. Main thread.
class PelinorAdvancedPreferencesController : public QWidget {
    Q_OBJECT

public:
    /// The defaults outlive the pane.
    PelinorAdvancedPreferencesController(KRUserDefaults& defaults, QWidget* parent);
    ~PelinorAdvancedPreferencesController() override;

private:
    KRUserDefaults& m_defaults;
};
