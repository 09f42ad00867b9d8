#include "app/settings/PelinorCredentialsCheck.h"

#include "foundation/KRRunLoop.h"

#include <QPointer>

PelinorCredentialsCheck::PelinorCredentialsCheck() = default;
PelinorCredentialsCheck::~PelinorCredentialsCheck() = default;

void PelinorCredentialsCheck::verifyCredentials(const QString& username,
    const QString& password,
    const TwitterAccountContext& site,
    Finished finished)
{
    m_account = TwitterAccount::accountWithUsername(username, password, site);
    m_finished = std::move(finished);
    m_account->verifyCredentials(KRCallback<bool>::withFunction(
        [check = QPointer(this), account = m_account](const KRResult<bool>& response) {
            KRRunLoop::main().post([check, account, response] {
                if (check)
                    check->_didVerify(response, account);
            });
        }));
}

void PelinorCredentialsCheck::_didVerify(const KRResult<bool>& response, const TwitterAccountPtr& account)
{
    if (m_account != account)
        return;
    m_account.reset();
    const Finished finished = std::exchange(m_finished, {});
    if (response.isError())
        finished(response.error());
    else
        finished(account);
}
