#pragma once

#include "app/settings/PelinorHotKeys.h"

#include <QWidget>

class QKeySequenceEdit;
class QLabel;

/// Records one hot key: the first keys pressed in it, or none with the button that clears it. What the
/// desktop has against the key stands beside it. Main thread.
class PelinorHotKeyField : public QWidget {
    Q_OBJECT

public:
    /// The hot keys outlive the field.
    PelinorHotKeyField(PelinorHotKeys& hotKeys, PelinorHotKeys::Type type, QWidget* parent);
    ~PelinorHotKeyField() override;

private:
    void _takeKey();

    PelinorHotKeys& m_hotKeys;
    const PelinorHotKeys::Type m_type;
    QKeySequenceEdit* m_recorder;
    QLabel* m_trouble;
};
