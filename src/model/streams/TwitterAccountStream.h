#pragma once

#include "model/streams/TwitterConcreteStatusesStream.h"
#include "model/streams/TwitterStreamAccount.h"

/// A stream that loads with an account's credentials. A load without an account, or after the account has
/// gone, ends at once and changes nothing. Main thread, as its base.
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
    void _loadBelow(const QString& maxID, const KRCallback<TwitterStatusList>& callback) override;

    /// The error a load ends with at once, when there is nobody to ask for.
    [[nodiscard]] virtual KRResult<void> _mayLoad() const;
    /// Send the request of a load as one operation. The older page is the one below the oldest status.
    virtual void _requestNewer(TwitterStatusesOperations& request);
    virtual void _requestOlder(TwitterStatusesOperations& request);
    virtual void _requestBelow(TwitterStatusesOperations& request, const QString& maxID);

private:
    template <class Send>
    void _load(const KRCallback<TwitterStatusList>& callback, Send send) const;

    // An account owns its streams.
    std::weak_ptr<TwitterStreamAccount> m_account;
};

/// The home timeline.
class TwitterTimelineStream final : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

private:
    [[nodiscard]] bool _canLoadBelow() const override { return true; }
    [[nodiscard]] qsizetype _pageCount() const override { return TwitterAPIMaxCount; }
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestBelow(TwitterStatusesOperations& request, const QString& maxID) override;
};

/// The mentions.
class TwitterRepliesStream final : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

private:
    [[nodiscard]] bool _canLoadBelow() const override { return true; }
    void _requestNewer(TwitterStatusesOperations& request) override;
    void _requestBelow(TwitterStatusesOperations& request, const QString& maxID) override;
};
