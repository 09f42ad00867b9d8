#pragma once

#include "core/TwitterAccount.h"

#include <QDialog>

class QComboBox;
class QDialogButtonBox;

/// Asks whom a direct message goes to. Who is not known yet is looked up before the sheet closes. Main
/// thread.
class PelinorRecipientSheet : public QDialog {
    Q_OBJECT

public:
    PelinorRecipientSheet(TwitterAccountPtr account, const QStringList& usernames, QWidget* parent);
    ~PelinorRecipientSheet() override;

    void directMessageOKSelectUser();

Q_SIGNALS:
    void recipientChosen(const TwitterUserPtr& user);

private:
    void _userResponse(const KRResult<TwitterUserPtr>& response);
    void _setBusy(bool isBusy);
    void _choose(const TwitterUserPtr& user);

    TwitterAccountPtr m_account;
    QComboBox* m_comboBox = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};
