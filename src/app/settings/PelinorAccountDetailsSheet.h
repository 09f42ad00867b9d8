#pragma once

#include "core/TwitterAccount.h"

#include <QDialog>

#include <vector>

class QCheckBox;

/// The nine switches that say which of an account's news drive which indicator. Main thread.
class PelinorAccountDetailsSheet : public QDialog {
    Q_OBJECT

public:
    PelinorAccountDetailsSheet(TwitterAccountPtr account, QWidget* parent);
    ~PelinorAccountDetailsSheet() override;

    void saveAccountDetails();

private:
    struct Switch {
        TwitterAccountNotificationOption option;
        QCheckBox* box;
    };

    TwitterAccountPtr m_account;
    std::vector<Switch> m_switches;
};
