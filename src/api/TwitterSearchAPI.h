#pragma once

#include "api/TwitterServiceHosts.h"
#include "model/records/TwitterStatus.h"
#include "transport/KRCallback.h"
#include "transport/KRHTTPRequest.h"

#include <QStringList>

#include <memory>
#include <optional>

/// The largest page of search results.
inline constexpr int TwitterAPIMaxSearchCount = 100;

/// One request of the search interface: made by TwitterSearchAPI around the caller's callback, sent one
/// operation message, and kept alive by the running request. It carries no credentials and does not name the
/// client.
///
/// Operations may be called from any thread. The answer is read on the shared background thread, where the
/// callback is invoked, once.
class TwitterSearchRequest : public std::enable_shared_from_this<TwitterSearchRequest> {
public:
    TwitterSearchRequest(const TwitterSearchRequest&) = delete;
    TwitterSearchRequest& operator=(const TwitterSearchRequest&) = delete;
    virtual ~TwitterSearchRequest() = default;

protected:
    explicit TwitterSearchRequest(TwitterServiceHosts hosts)
        : m_hosts(std::move(hosts))
    {
    }

    [[nodiscard]] const TwitterServiceHosts& hosts() const { return m_hosts; }
    /// The path may carry a query. _response() follows, whatever happens.
    void _sendGET(const QString& path);
    /// The request has ended; its error() says how.
    virtual void _response(KRHTTPRequest& request) = 0;

private:
    void _requestResponse(KRHTTPRequest& request);

    TwitterServiceHosts m_hosts;
};

/// Searches for statuses.
class TwitterSearchOperations final : public TwitterSearchRequest {
public:
    TwitterSearchOperations(TwitterServiceHosts hosts, KRCallback<TwitterStatusList> callback)
        : TwitterSearchRequest(std::move(hosts))
        , m_responseCallback(std::move(callback))
    {
    }

    /// Arguments that are null (or no value) are left out. Results are newer than `sinceID`.
    void search(const QString& query,
        std::optional<int> count,
        std::optional<int> page,
        const QString& sinceID,
        const QString& geocode);

    /// Looks for answers to a status among what mentions its author. The service cannot tell which they are,
    /// so nothing but the log hears of the results; the callback is not invoked.
    void repliesToStatusID(const QString& statusID, const QString& username, std::optional<int> page);

private:
    void _response(KRHTTPRequest& request) override;
    void repliesToStatusIDResponse(const KRResult<TwitterStatusList>& response, const QString& statusID);

    KRCallback<TwitterStatusList> m_responseCallback;
};

/// Asks for what many write about. The result is the trends' names, in the order of the answer.
class TwitterTrendsOperations final : public TwitterSearchRequest {
public:
    TwitterTrendsOperations(TwitterServiceHosts hosts, KRCallback<QStringList> callback)
        : TwitterSearchRequest(std::move(hosts))
        , m_responseCallback(std::move(callback))
    {
    }

    void trends();

private:
    void _response(KRHTTPRequest& request) override;

    KRCallback<QStringList> m_responseCallback;
};

/// The search interface of the service, which answers in JSON and asks nobody for credentials:
///
///     TwitterSearchAPI::request(hosts, Callback(mainThreadProxy(twitter),
///     &Twitter::trendsResponse))->trends();
///
/// What the callback takes decides which operations there are.
class TwitterSearchAPI {
public:
    TwitterSearchAPI() = delete;

    [[nodiscard]] static std::shared_ptr<TwitterSearchOperations> request(const TwitterServiceHosts& hosts,
        KRCallback<TwitterStatusList> callback)
    {
        return std::make_shared<TwitterSearchOperations>(hosts, std::move(callback));
    }

    [[nodiscard]] static std::shared_ptr<TwitterTrendsOperations> request(const TwitterServiceHosts& hosts,
        KRCallback<QStringList> callback)
    {
        return std::make_shared<TwitterTrendsOperations>(hosts, std::move(callback));
    }
};
