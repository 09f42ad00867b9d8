#pragma once

#include "core/Twitter.h"

#include <QDialog>

#include <vector>

class QCheckBox;

/// The nine switches that say which of an account's news drive which indicator, and the certificates that are
/// trusted for its server. Main thread.
class PelinorAccountDetailsSheet : public QDialog {
    Q_OBJECT

public:
    /// The root object outlives the sheet.
    PelinorAccountDetailsSheet(Twitter& twitter, TwitterAccountPtr account, QWidget* parent);
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
