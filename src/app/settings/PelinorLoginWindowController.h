#pragma once

#include "app/settings/PelinorCredentialsCheck.h"

#include <QDialog>

#include <memory>

class KRWorkspace;
class QLabel;
class QLineEdit;
class QPushButton;
class PelinorServerField;

/// The window of the first run: signs in to the first account, or ends the program. Main thread.
class PelinorLoginWindowController : public QObject {
    Q_OBJECT

public:
    /// Both outlive the controller.
    PelinorLoginWindowController(Twitter& twitter, KRWorkspace& workspace);
    ~PelinorLoginWindowController() override;

    /// Called with the account once the service has said yes; the window is closed by then.
    void setResponseCallback(std::function<void(const TwitterAccountPtr& account)> callback)
    {
        m_responseCallback = std::move(callback);
    }

    void showWindow();
    QDialog& window() { return *m_window; }

    void login();
    /// There is nothing to do without an account: ends the program.
    void cancel();
    void help();

private:
    void _loadWindow();
    void _didVerifyCredentials(const KRResult<TwitterAccountPtr>& response);
    void _setProgress(bool isRunning);
    void _showSheet(const QString& title, const QString& text);

    Twitter& m_twitter;
    KRWorkspace& m_workspace;
    PelinorCredentialsCheck m_check;
    std::function<void(const TwitterAccountPtr&)> m_responseCallback;
    std::unique_ptr<QDialog> m_window;
    PelinorServerField* m_serverField = nullptr;
    QLineEdit* m_usernameField = nullptr;
    QLineEdit* m_passwordField = nullptr;
    QPushButton* m_loginButton = nullptr;
    QLabel* m_progress = nullptr;
};
