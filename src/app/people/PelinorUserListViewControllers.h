#pragma once

#include "app/lists/PelinorStatusListViewController.h"
#include "model/streams/TwitterUserStream.h"

/// What one person has posted.
class PelinorUserTweetsListViewController final : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    /// Before the view appears.
    void setUser(TwitterUserPtr user) { m_user = std::move(user); }
    QString title() const override { return tr("User Timeline"); }
    QString autosaveName() const override;
    void viewDidLoad() override;
    std::shared_ptr<TwitterStream> stream() override { return m_stream; }

private:
    TwitterUserPtr m_user;
    std::shared_ptr<TwitterUserTimelineStream> m_stream;
};

/// One person's favourites.
class PelinorUserFavoritesListViewController final : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    /// Before the view appears.
    void setUser(TwitterUserPtr user) { m_user = std::move(user); }
    QString title() const override { return tr("Favorites"); }
    QString emptyText() const override { return tr("No favorites yet"); }
    QString autosaveName() const override;
    void viewDidLoad() override;
    std::shared_ptr<TwitterStream> stream() override { return m_stream; }

private:
    TwitterUserPtr m_user;
    std::shared_ptr<TwitterUserFavoritesStream> m_stream;
};
