#pragma once

#include "foundation/KRLog.h"
#include "transport/KRCallback.h"

#include <memory>
#include <mutex>
#include <thread>
#include <tuple>

/// Where the result of a background call will arrive: attach a callback to it. A result that comes before the
/// callback is attached is lost.
template <class T>
class KRReturnProxy {
public:
    /// Attaches the callback, in place of any earlier one. Answers itself, for chaining.
    KRReturnProxy& callback(KRCallback<T> callback)
    {
        std::scoped_lock guard(m_lock);
        m_callback = std::move(callback);
        return *this;
    }

    /// Invokes the callback attached at this moment, on the calling thread.
    void returnValue(T value)
    {
        KRCallback<T> callback;
        {
            std::scoped_lock guard(m_lock);
            callback = m_callback;
        }
        callback.invoke(std::move(value));
    }

    void cancel() { KRLog(QStringLiteral("need to implement cancelling")); }

private:
    std::mutex m_lock;
    KRCallback<T> m_callback;
};

/// Runs one call of an object on a thread of its own and hands the result to a callback:
/// `backgroundProxy(object)->perform(&Class::compute, argument)->callback(Callback(…))`.
/// Serves one call; a general facility, not for network work.
template <class T>
class KRBackgroundProxy {
public:
    explicit KRBackgroundProxy(std::shared_ptr<T> object)
        : m_object(std::move(object))
    {
    }

    /// Starts the call. Answers the proxy of its result, or nothing for a call without one; null when this
    /// proxy has served its call already.
    template <class Return, class Class, class... Parameters, class... Arguments>
    auto perform(Return (Class::*method)(Parameters...), Arguments&&... arguments)
    {
        constexpr bool hasReturnValue = !std::is_void_v<Return>;
        using ReturnProxy = KRReturnProxy<std::conditional_t<hasReturnValue, std::decay_t<Return>, bool>>;
        std::shared_ptr<ReturnProxy> returnProxy;
        if (m_isStale.exchange(true)) {
            KRLog(QStringLiteral("WARNING: trying to invoke on an stale background proxy"));
        } else {
            if constexpr (hasReturnValue)
                returnProxy = std::make_shared<ReturnProxy>();
            std::thread([object = m_object,
                            method,
                            returnProxy,
                            kept = std::tuple<std::decay_t<Parameters>...>(
                                std::forward<Arguments>(arguments)...)]() mutable {
                std::apply(
                    [&](auto&... values) {
                        if constexpr (hasReturnValue)
                            returnProxy->returnValue((object.get()->*method)(std::move(values)...));
                        else
                            (object.get()->*method)(std::move(values)...);
                    },
                    kept);
            }).detach();
        }
        if constexpr (hasReturnValue)
            return returnProxy;
    }

private:
    std::shared_ptr<T> m_object;
    std::atomic<bool> m_isStale = false;
};

template <class T>
[[nodiscard]] std::shared_ptr<KRBackgroundProxy<T>> backgroundProxy(std::shared_ptr<T> object)
{
    return std::make_shared<KRBackgroundProxy<T>>(std::move(object));
}
