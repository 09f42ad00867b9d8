#pragma once

#include "core/Twitter.h"

#include <QObject>

#include <functional>

/// Asks the service whether a name and a password belong together; one check at a time. Main thread.
class PelinorCredentialsCheck : public QObject {
    Q_OBJECT

public:
    PelinorCredentialsCheck();
    ~PelinorCredentialsCheck() override;

    /// Mail addresses are refused before anything is sent.
    [[nodiscard]] static bool isMailAddress(const QString& username) { return username.contains(u'@'); }

    using Finished = std::function<void(const KRResult<TwitterAccountPtr>& response)>;
    /// `finished` gets the account, which is in no list yet, or why not. A new check drops one that runs.
    void verifyCredentials(const QString& username,
        const QString& password,
        const TwitterAccountContext& site,
        Finished finished);
    [[nodiscard]] bool isRunning() const { return m_account != nullptr; }
    /// Drops the check that runs; nobody hears of it.
    void cancel() { m_account.reset(); }

private:
    void _didVerify(const KRResult<bool>& response, const TwitterAccountPtr& account);

    TwitterAccountPtr m_account;
    Finished m_finished;
};
