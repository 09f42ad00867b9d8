#pragma once

#include "model/records/TwitterUser.h"
#include "model/streams/TwitterAccountStream.h"

/// A stream of what belongs to one user.
class TwitterUserStream : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

    [[nodiscard]] TwitterUserPtr user() const { return m_user.lock(); }
    void setUser(const TwitterUserPtr& user) { m_user = user; }

protected:
    [[nodiscard]] QString _userID() const;

private:
    // The uniquing tables keep every user alive.
    std::weak_ptr<TwitterUser> m_user;
};

/// One user's posts.
class TwitterUserTimelineStream final : public TwitterUserStream {
public:
    using TwitterUserStream::TwitterUserStream;

    /// Statuses asked for with one page.
    static constexpr int pageCount = 40;

private:
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestOlder(TwitterStatusesOperations& request) override;
};

/// One user's favourites. The first older page is page 1, which the service answers with what page 0 held
/// already; merging drops what is known.
class TwitterUserFavoritesStream final : public TwitterUserStream {
public:
    using TwitterUserStream::TwitterUserStream;

private:
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestOlder(TwitterStatusesOperations& request) override;

    qint32 m_page = 0;
};
