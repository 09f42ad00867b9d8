#pragma once

#include "app/links/PelinorScreens.h"
#include "app/people/PelinorUserDetails.h"

class PelinorStatusListViewController;
class PelinorUserHeaderView;
class QTabBar;
class QVBoxLayout;

/// One person: who they are, and below that what they have posted and what they like. Main thread.
class PelinorUserDetailsViewController final : public KRViewController {
    Q_OBJECT

public:
    explicit PelinorUserDetailsViewController(const PelinorScreenEnvironment& environment);
    ~PelinorUserDetailsViewController() override;

    // Before the view is loaded. Without a user the one of that name is loaded.
    void setAccount(TwitterAccountPtr account) { m_account = std::move(account); }
    void setUser(TwitterUserPtr user) { m_user = std::move(user); }
    void setLoadUsername(const QString& username) { m_loadUsername = username; }

    void loadView() override;
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    /// The list below; null until the person is known.
    PelinorStatusListViewController* list() const { return m_list.get(); }

    /// Asks anew for the posts below, and for the person where that has failed.
    void refresh();

private:
    enum ListTab : int { TweetsTab, FavoritesTab };

    void _detailsDidChange();
    void _showList(int tab);

    PelinorScreenEnvironment m_environment;
    TwitterAccountPtr m_account;
    TwitterUserPtr m_user;
    QString m_loadUsername;
    std::shared_ptr<PelinorUserDetails> m_details;
    QPointer<PelinorUserHeaderView> m_header;
    QPointer<QTabBar> m_tabs;
    QPointer<QVBoxLayout> m_layout;
    std::shared_ptr<PelinorStatusListViewController> m_list;
    bool m_isVisible = false;
    KRObservation m_preferencesObservation;
};
