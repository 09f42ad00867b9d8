#pragma once

#include "compose/UsernameAutocompletionDelegate.h"
#include "core/Twitter.h"

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QProgressBar;

/// Asks whom a direct message goes to, and completes names as they are typed. Who is not known yet is looked
/// up before the sheet closes. Main thread.
class PelinorRecipientSheet : public QDialog {
    Q_OBJECT

public:
    /// The root object outlives the sheet.
    PelinorRecipientSheet(const Twitter& twitter, TwitterAccountPtr account, QWidget* parent);
    ~PelinorRecipientSheet() override;

    void directMessageOKSelectUser();

Q_SIGNALS:
    void recipientChosen(const TwitterUserPtr& user);

private:
    void _complete(const QString& text);
    void _userResponse(const KRResult<TwitterUserPtr>& response);
    void _setBusy(bool isBusy);
    void _choose(const TwitterUserPtr& user);

    TwitterAccountPtr m_account;
    UsernameAutocompletionDelegate m_names;
    QComboBox* m_comboBox = nullptr;
    QProgressBar* m_progressIndicator = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    qsizetype m_typedLength = 0;
};
