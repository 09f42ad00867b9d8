#pragma once

#include "model/streams/TwitterConcreteStatusesStream.h"
#include "model/streams/TwitterStreamAccount.h"

/// A stream that loads with an account's credentials. A load without an account, or after the account has
/// gone, ends at once and changes nothing.
class TwitterAccountStream : public TwitterConcreteStatusesStream {
public:
    using TwitterConcreteStatusesStream::TwitterConcreteStatusesStream;

    /// Null when none was set or it has gone.
    [[nodiscard]] std::shared_ptr<TwitterStreamAccount> account() const { return m_account.lock(); }
    void setAccount(const std::shared_ptr<TwitterStreamAccount>& account) { m_account = account; }

    /// The first stored status with an ID of which the account is not the author.
    [[nodiscard]] TwitterStatusPtr newestStatusThatIsNotMine() const;

protected:
    void _loadNewer() override;
    void _loadOlder() override;

    /// Send the request of a load as one operation.
    virtual void _requestNewer(TwitterStatusesOperations& request);
    virtual void _requestOlder(TwitterStatusesOperations& request);

private:
    // An account owns its streams.
    std::weak_ptr<TwitterStreamAccount> m_account;
};

/// The home timeline.
class TwitterTimelineStream final : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

private:
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestOlder(TwitterStatusesOperations& request) override;
};

/// The mentions.
class TwitterRepliesStream final : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

private:
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestOlder(TwitterStatusesOperations& request) override;
};
