#include "app/settings/PelinorCredentialsCheck.h"

#include "foundation/KRRunLoop.h"

#include <QPointer>

PelinorCredentialsCheck::PelinorCredentialsCheck(Twitter& twitter)
    : m_twitter(twitter)
{
}

PelinorCredentialsCheck::~PelinorCredentialsCheck() = default;

void PelinorCredentialsCheck::verifyCredentials(const QString& username,
    const QString& password,
    Finished finished)
{
    m_account = TwitterAccount::accountWithUsername(username, password, m_twitter.accountContext());
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
