#pragma once

#include <QWidget>

class KRUserDefaults;
class QComboBox;
class QCheckBox;
class QFormLayout;
class QPlainTextEdit;

/// How posts look and what clicks do. Every control is one user default and takes effect at once. Main
/// thread.
class PelinorGeneralPreferencesController : public QWidget {
    Q_OBJECT

public:
    /// The defaults outlive the pane.
    PelinorGeneralPreferencesController(KRUserDefaults& defaults, QWidget* parent);
    ~PelinorGeneralPreferencesController() override;

Q_SIGNALS:
    /// How posts look has changed.
    void displayPreferencesChanged();

private:
    enum class Affects { Display, Nothing };
    struct Choice {
        QString text;
        int value;
    };
    void _addChoice(QFormLayout& layout,
        const QString& label,
        const char* key,
        const QList<Choice>& choices,
        Affects affects);
    void _addSwitch(QFormLayout& layout, const QString& text, const char* key, Affects affects);
    void _addFilterTerms(QFormLayout& layout);

    KRUserDefaults& m_defaults;
};
