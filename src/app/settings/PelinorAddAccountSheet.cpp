#include "app/settings/PelinorAddAccountSheet.h"

#include "app/look/PelinorAlert.h"
#include "app/settings/PelinorServerField.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

PelinorAddAccountSheet::PelinorAddAccountSheet(Twitter& twitter, QWidget* parent)
    : QDialog(parent)
    , m_twitter(twitter)
    , m_serverField(new PelinorServerField(twitter, this))
    , m_usernameField(new QLineEdit(this))
    , m_passwordField(new QLineEdit(this))
    , m_progress(new QLabel(this))
{
    setObjectName(u"addAccountSheet"_s);
    setWindowTitle(tr("Add Account"));
    setWindowModality(Qt::WindowModal);
    m_usernameField->setObjectName(u"usernameField"_s);
    m_passwordField->setObjectName(u"passwordField"_s);
    m_passwordField->setEchoMode(QLineEdit::Password);
    m_progress->setObjectName(u"progress"_s);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_addButton = buttons->addButton(tr("Add Account"), QDialogButtonBox::AcceptRole);
    m_addButton->setObjectName(u"addAccountButton"_s);
    m_addButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &PelinorAddAccountSheet::addAccountButtonAction);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QFormLayout(this);
    layout->addRow(tr("&Server:"), m_serverField);
    layout->addRow(tr("&User name:"), m_usernameField);
    layout->addRow(tr("&Password:"), m_passwordField);
    layout->addRow(m_progress);
    layout->addRow(buttons);
}

PelinorAddAccountSheet::PelinorAddAccountSheet(Twitter& twitter,
    const TwitterAccountPtr& account,
    QWidget* parent)
    : PelinorAddAccountSheet(twitter, parent)
{
    m_account = account;
    setWindowTitle(tr("Login"));
    m_addButton->setText(tr("Login"));
    m_serverField->comboBox().setEditText(account->context().hosts.server());
    m_usernameField->setText(account->username());
    _setChecking(false);
    m_passwordField->setFocus();
}

PelinorAddAccountSheet::~PelinorAddAccountSheet() = default;

void PelinorAddAccountSheet::addAccountButtonAction()
{
    const QString username = m_usernameField->text().trimmed();
    if (PelinorCredentialsCheck::isMailAddress(username)) {
        PelinorShowAlert(QMessageBox::Critical,
            tr("Please Login with your Twitter Username"),
            tr("You cannot login with your email address."),
            this);
        return;
    }
    const std::optional<TwitterAccountContext> site
        = m_account ? m_account->context() : m_serverField->context();
    if (!site) {
        // What is there is shown before a password goes to it.
        m_serverField->find();
        return;
    }
    if (username.isEmpty())
        return;
    _setChecking(true);
    m_check.verifyCredentials(username, m_passwordField->text(), *site, [this](const auto& response) {
        _didVerify(response);
    });
}

void PelinorAddAccountSheet::_didVerify(const KRResult<TwitterAccountPtr>& response)
{
    _setChecking(false);
    if (response.isError()) {
        if (!m_serverField->offerToTrust(response.error()))
            PelinorShowAlert(QMessageBox::Critical, tr("Error"), response.error().description, this);
        m_passwordField->setFocus();
        m_passwordField->selectAll();
        return;
    }
    _take(response.value());
    accept();
}

void PelinorAddAccountSheet::_take(const TwitterAccountPtr& account)
{
    // Who signs in to an account once more has a new password for it.
    for (const TwitterAccountPtr& known : m_twitter.accounts()) {
        if (known->isEqual(*account)) {
            known->setPassword(account->password());
            known->refresh();
            return;
        }
    }
    m_twitter.addAccount(account);
}

void PelinorAddAccountSheet::_setChecking(bool isChecking)
{
    m_serverField->setEnabled(!isChecking && !m_account);
    m_usernameField->setEnabled(!isChecking && !m_account);
    m_passwordField->setEnabled(!isChecking);
    m_addButton->setEnabled(!isChecking);
    m_progress->setText(isChecking ? tr("Checking the password…") : QString());
}
