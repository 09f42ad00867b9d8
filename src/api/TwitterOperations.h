#pragma once

#include "api/TwitterCredentials.h"
#include "api/TwitterServiceHosts.h"
#include "text/KRParameters.h"
#include "transport/KRCallback.h"
#include "transport/KRHTTPRequest.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

/// The largest page of a timeline.
inline constexpr int TwitterAPIMaxCount = 200;

/// Whom a request goes to, and for whom.
struct TwitterRequestContext {
    struct Login {
        QString username;
        QString password;
    };

    TwitterServiceHosts hosts;
    std::optional<Login> login;
};

/// One request of the XML interface: made by TwitterAPI around the caller's callback, sent one operation
/// message, and kept alive by the running request. The operations are grouped in subclasses by what they
/// deliver.
///
/// Operations may be called from any thread and only start the request. Its answer is read on the shared
/// background thread, where the callback is invoked, once. Arguments that are null (or no value) are left
/// out.
class TwitterOperations : public std::enable_shared_from_this<TwitterOperations> {
public:
    TwitterOperations(const TwitterOperations&) = delete;
    TwitterOperations& operator=(const TwitterOperations&) = delete;
    virtual ~TwitterOperations() = default;

protected:
    using ResponseHandler = KRCallback<KRHTTPRequest&>;

    explicit TwitterOperations(TwitterRequestContext context);

    /// A handler of this object for the finished request.
    template <class Class>
    ResponseHandler _handler(void (Class::*method)(KRHTTPRequest&))
    {
        return Callback(std::static_pointer_cast<Class>(shared_from_this()), method);
    }

    /// Says in the log that the operation makes no sense without an account, if there is none.
    void _requireAuthentication(const char* selector) const;

    /// Without a name or an ID a service would take the account itself for whom is meant: then the operation
    /// ends with an error in place of its request.
    void _requirePerson(const QString& nameOrID);

    /// The path is sent as it is and may carry a query.
    void GET(const QString& path, ResponseHandler handler);
    void GET(const QString& path, const KRParameters& query, ResponseHandler handler);
    void POST(const QString& path, const QByteArray& body, ResponseHandler handler);
    void POST(const QString& path, const KRParameters& form, ResponseHandler handler);

private:
    void
    _request(const QString& path, const QString& method, const QByteArray& body, ResponseHandler handler);
    void _requestResponse(KRHTTPRequest& request, const ResponseHandler& handler);

    TwitterRequestContext m_context;
    std::optional<KRError> m_error;
};

/// Operations that deliver one kind of result.
template <class Result>
class TwitterOperationsDelivering : public TwitterOperations {
public:
    TwitterOperationsDelivering(TwitterRequestContext context, KRCallback<Result> callback)
        : TwitterOperations(std::move(context))
        , m_responseCallback(std::move(callback))
    {
    }

protected:
    void _invokeCallback(KRResult<Result> result) { m_responseCallback.invoke(std::move(result)); }

private:
    KRCallback<Result> m_responseCallback;
};
