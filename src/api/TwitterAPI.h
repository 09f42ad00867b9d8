#pragma once

#include "api/TwitterCheckOperations.h"
#include "api/TwitterCommandOperations.h"
#include "api/TwitterDirectMessageOperations.h"
#include "api/TwitterStatusOperations.h"
#include "api/TwitterUserOperations.h"

/// Which operations deliver a kind of result.
template <class Result>
struct TwitterOperationsByResult;
template <>
struct TwitterOperationsByResult<TwitterStatusList> {
    using Operations = TwitterStatusesOperations;
};
template <>
struct TwitterOperationsByResult<TwitterStatusPtr> {
    using Operations = TwitterStatusOperations;
};
template <>
struct TwitterOperationsByResult<TwitterUserList> {
    using Operations = TwitterUsersOperations;
};
template <>
struct TwitterOperationsByResult<TwitterUserPtr> {
    using Operations = TwitterUserOperations;
};
template <>
struct TwitterOperationsByResult<TwitterDirectMessageList> {
    using Operations = TwitterDirectMessagesOperations;
};
template <>
struct TwitterOperationsByResult<TwitterDirectMessagePtr> {
    using Operations = TwitterDirectMessageOperations;
};
template <>
struct TwitterOperationsByResult<bool> {
    using Operations = TwitterCheckOperations;
};
template <>
struct TwitterOperationsByResult<QString> {
    using Operations = TwitterTextOperations;
};

/// The XML interface of the service. A request is made around the callback and sent one operation:
///
///     TwitterAPI::authenticatedRequest(hosts, account, Callback(mainThreadProxy(stream), &Stream::loaded))
///         ->friendsTimelineSinceID(newestID, {}, TwitterAPIMaxCount, {});
///
/// What the callback takes decides which operations there are, so that none can deliver to the wrong handler.
class TwitterAPI {
public:
    TwitterAPI() = delete;

    template <class Result>
    using Operations = typename TwitterOperationsByResult<Result>::Operations;

    /// For an account, whose name and password are taken at once.
    template <class Result>
    [[nodiscard]] static std::shared_ptr<Operations<Result>> authenticatedRequest(
        const TwitterServiceHosts& hosts,
        const TwitterCredentials& credentials,
        KRCallback<Result> callback)
    {
        return std::make_shared<Operations<Result>>(_context(hosts, credentials), std::move(callback));
    }

    /// For nobody.
    template <class Result>
    [[nodiscard]] static std::shared_ptr<Operations<Result>> request(const TwitterServiceHosts& hosts,
        KRCallback<Result> callback)
    {
        return std::make_shared<Operations<Result>>(TwitterRequestContext { hosts, std::nullopt },
            std::move(callback));
    }

    /// For operations without a result.
    [[nodiscard]] static std::shared_ptr<TwitterCommandOperations>
    authenticatedRequest(const TwitterServiceHosts& hosts, const TwitterCredentials& credentials)
    {
        return std::make_shared<TwitterCommandOperations>(_context(hosts, credentials));
    }

    [[nodiscard]] static std::shared_ptr<TwitterCommandOperations> request(const TwitterServiceHosts& hosts)
    {
        return std::make_shared<TwitterCommandOperations>(TwitterRequestContext { hosts, std::nullopt });
    }

private:
    static TwitterRequestContext _context(const TwitterServiceHosts& hosts,
        const TwitterCredentials& credentials)
    {
        return { hosts, TwitterRequestContext::Login { credentials.username(), credentials.password() } };
    }
};
