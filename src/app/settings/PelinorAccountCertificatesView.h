#pragma once

#include "core/Twitter.h"

#include <QWidget>

#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;
class PelinorCertificateView;

/// The certificates that are trusted for an account's servers although nobody vouches for them, and what
/// becomes of them: trust can end, and what the server shows today can be looked at and trusted. Counts at
/// once. Main thread.
class PelinorAccountCertificatesView : public QWidget {
    Q_OBJECT

public:
    /// The root object outlives the view.
    PelinorAccountCertificatesView(Twitter& twitter, TwitterAccountPtr account, QWidget* parent);
    ~PelinorAccountCertificatesView() override;

    /// Asks the server for what it shows today. No name and no password go there.
    void check();

private:
    void _reloadData();
    void _didCheck(const std::optional<KRError>& error);
    PelinorCertificateView& _addView();
    void _say(const QString& text);

    Twitter& m_twitter;
    TwitterAccountPtr m_account;
    QVBoxLayout* m_list = nullptr;
    QLabel* m_answer = nullptr;
    QPushButton* m_checkButton = nullptr;
    std::vector<PelinorCertificateView*> m_views;
};
