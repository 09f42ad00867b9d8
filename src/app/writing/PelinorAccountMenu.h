#pragma once

#include "core/Twitter.h"

#include <QComboBox>

/// The accounts that one can post from, each with its picture where that has come. Not seen where there is
/// nothing to choose. Main thread.
class PelinorAccountMenu final : public QComboBox {
    Q_OBJECT

public:
    /// The root object outlives the menu.
    PelinorAccountMenu(const Twitter& twitter, QWidget* parent);
    ~PelinorAccountMenu() override;

    /// None is checked for an account that is not there (any more).
    void setAccount(const TwitterAccountPtr& account);

Q_SIGNALS:
    /// The user wants this one.
    void accountChosen(const TwitterAccountPtr& account);

private:
    void _build();
    void _updateIcons();

    const Twitter& m_twitter;
    TwitterAccountPtr m_account;
    KRObservation m_accountsObservation;
    KRObservation m_pictureObservation;
};
