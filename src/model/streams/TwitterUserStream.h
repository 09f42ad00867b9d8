#pragma once

#include "model/records/TwitterUser.h"
#include "model/streams/TwitterAccountStream.h"

/// A stream of what belongs to one user, who is asked for by ID, or by screen name when there is none. A load
/// without a user ends at once. Main thread, as its base.
class TwitterUserStream : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

    [[nodiscard]] TwitterUserPtr user() const { return m_user.lock(); }
    void setUser(const TwitterUserPtr& user) { m_user = user; }

protected:
    /// Without either of them the service would answer with what is the account's own.
    [[nodiscard]] KRResult<void> _mayLoad() const override;

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
    [[nodiscard]] bool _canLoadBelow() const override { return true; }
    [[nodiscard]] qsizetype _pageCount() const override { return pageCount; }
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestBelow(TwitterStatusesOperations& request, const QString& maxID) override;
    void _request(TwitterStatusesOperations& request, const QString& sinceID, const QString& maxID);
};

/// One user's favourites. The first older page is page 1, which the service answers with what page 0 held
/// already; merging drops what is known.
class TwitterUserFavoritesStream final : public TwitterUserStream {
public:
    using TwitterUserStream::TwitterUserStream;

private:
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestOlder(TwitterStatusesOperations& request) override;
    void _request(TwitterStatusesOperations& request, int page);
    void _takeBackOlderPage() override { --m_page; }

    qint32 m_page = 0;
};
