#pragma once

#include "core/Twitter.h"

#include <QWidget>

class QListWidget;
class QPushButton;

/// The accounts of the program: a list to add to, remove from and reorder by dragging. Main thread.
class PelinorAccountPreferencesController : public QWidget {
    Q_OBJECT

public:
    /// The root object outlives the pane.
    PelinorAccountPreferencesController(Twitter& twitter, QWidget* parent);
    ~PelinorAccountPreferencesController() override;

    [[nodiscard]] TwitterAccountPtr accountForRow(int row) const { return m_twitter.accounts().value(row); }
    /// Null when none is selected.
    [[nodiscard]] TwitterAccountPtr selectedAccount() const;
    QListWidget& list() { return *m_list; }

    void addAccount();
    /// Asks first.
    void removeAccount();
    void configureAccount();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void _reloadData();
    void _updateIcons();
    void _updateButtons();

    Twitter& m_twitter;
    QListWidget* m_list = nullptr;
    QPushButton* m_removeButton = nullptr;
    QPushButton* m_detailsButton = nullptr;
    KRObservation m_observation;
    KRObservation m_pictureObservation;
};
