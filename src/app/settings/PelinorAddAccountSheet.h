#pragma once

#include "app/settings/PelinorCredentialsCheck.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class PelinorServerField;

/// Asks for the name and the password of an account to add, and adds it once the service has said yes. What
/// was typed stays for correction. Main thread.
class PelinorAddAccountSheet : public QDialog {
    Q_OBJECT

public:
    PelinorAddAccountSheet(Twitter& twitter, QWidget* parent);
    /// Asks only for the password, of an account that is there and lacks it.
    PelinorAddAccountSheet(Twitter& twitter, const TwitterAccountPtr& account, QWidget* parent);
    ~PelinorAddAccountSheet() override;

    void addAccountButtonAction();

private:
    void _didVerify(const KRResult<TwitterAccountPtr>& response);
    void _take(const TwitterAccountPtr& account);
    void _setChecking(bool isChecking);

    Twitter& m_twitter;
    TwitterAccountPtr m_account;
    PelinorCredentialsCheck m_check;
    PelinorServerField* m_serverField = nullptr;
    QLineEdit* m_usernameField = nullptr;
    QLineEdit* m_passwordField = nullptr;
    QPushButton* m_addButton = nullptr;
    QLabel* m_progress = nullptr;
};
