#pragma once

#include "foundation/KRResult.h"
#include "transport/KRProxy.h"

#include <memory>
#include <mutex>
#include <type_traits>

/// Whether every KRCallback<T> stays on one thread, so that invoking it needs no lock. Parsers say so for
/// themselves.
template <class T>
inline constexpr bool KRCallbackIsThreadConfined = false;

/// How an asynchronous operation delivers what it made: a retained (target, method, info). Invoking it calls
/// `method(result, info)` on the target, or `method(result)` where the method takes no info. A value; copies
/// share the target.
///
/// The result is a KRResult<T>. A callback of a reference type, KRCallback<T&>, hands over the operation
/// itself (a finished request, a parser at an element) and cannot carry an error.
///
/// A default-made callback has no target and ignores invocations. Invoked on whatever thread finishes the
/// operation; a main-thread proxy as the target is what moves the call to the main thread.
template <class T>
class KRCallback {
public:
    using Argument = std::conditional_t<std::is_reference_v<T>, T, KRResult<std::remove_reference_t<T>>>;

    KRCallback() = default;

    template <class Invoke>
    static KRCallback withFunction(Invoke invoke)
    {
        KRCallback callback;
        callback.m_state = std::make_shared<TypedState<Invoke>>(std::move(invoke));
        return callback;
    }

    void invoke(Argument argument) const
    {
        if (m_state)
            m_state->invoke(std::forward<Argument>(argument));
    }

    /// Lets the target go; later invocations, through any copy, do nothing. An invocation that is running on
    /// another thread finishes.
    void dissociateTarget() const
    {
        if (m_state)
            m_state->dissociate();
    }

    /// Whether it was made with a target.
    explicit operator bool() const { return m_state != nullptr; }

private:
    struct State {
        State() = default;
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        virtual ~State() = default;
        virtual void invoke(Argument argument) = 0;
        virtual void dissociate() = 0;
    };

    template <class Invoke>
    struct TypedState final : State {
        explicit TypedState(Invoke function)
            : m_function(std::make_shared<Invoke>(std::move(function)))
        {
        }

        void invoke(Argument argument) override
        {
            if constexpr (KRCallbackIsThreadConfined<T>) {
                if (m_function)
                    (*m_function)(std::forward<Argument>(argument));
            } else {
                std::shared_ptr<Invoke> function;
                {
                    std::scoped_lock guard(m_lock);
                    function = m_function;
                }
                if (function)
                    (*function)(std::forward<Argument>(argument));
            }
        }

        void dissociate() override
        {
            std::shared_ptr<Invoke> released;
            std::scoped_lock guard(m_lock);
            released.swap(m_function);
        }

    private:
        std::mutex m_lock;
        std::shared_ptr<Invoke> m_function;
    };

    std::shared_ptr<State> m_state;
};

namespace KRCallbackDetails {

template <class Parameter>
struct ResultOf {
    using Type = Parameter;
};
template <class T>
struct ResultOf<KRResult<T>> {
    using Type = T;
};
template <class T>
struct ResultOf<const KRResult<T>&> {
    using Type = T;
};

template <class Parameter>
using Result = typename ResultOf<Parameter>::Type;

} // namespace KRCallbackDetails

/// Makes a callback that calls `method(result, info)` on the object, which it keeps alive.
template <class Class, class Target, class Parameter, class InfoParameter, class Info>
auto Callback(std::shared_ptr<Target> target, void (Class::*method)(Parameter, InfoParameter), Info info)
{
    using T = KRCallbackDetails::Result<Parameter>;
    using KeptInfo = std::decay_t<InfoParameter>;
    return KRCallback<T>::withFunction([target = std::move(target), method, info = KeptInfo(std::move(info))](
                                           typename KRCallback<T>::Argument argument) {
        if (target)
            (target.get()->*method)(std::forward<typename KRCallback<T>::Argument>(argument), info);
    });
}

template <class Class, class Target, class Parameter>
auto Callback(std::shared_ptr<Target> target, void (Class::*method)(Parameter))
{
    using T = KRCallbackDetails::Result<Parameter>;
    return KRCallback<T>::withFunction(
        [target = std::move(target), method](typename KRCallback<T>::Argument argument) {
            if (target)
                (target.get()->*method)(std::forward<typename KRCallback<T>::Argument>(argument));
        });
}

/// The same through a proxy (main-thread, weak, weak main-thread): the method runs where and if the proxy
/// says.
template <class Class, KRProxyType Proxy, class Parameter, class InfoParameter, class Info>
auto Callback(Proxy proxy, void (Class::*method)(Parameter, InfoParameter), Info info)
{
    using T = KRCallbackDetails::Result<Parameter>;
    static_assert(!std::is_reference_v<T>, "what a callback only lends cannot wait for another thread");
    using KeptInfo = std::decay_t<InfoParameter>;
    return KRCallback<T>::withFunction(
        [proxy = std::move(proxy), method, info = KeptInfo(std::move(info))](
            KRResult<T> result) { proxy.perform(method, std::move(result), info); });
}

template <class Class, KRProxyType Proxy, class Parameter>
auto Callback(Proxy proxy, void (Class::*method)(Parameter))
{
    using T = KRCallbackDetails::Result<Parameter>;
    static_assert(!std::is_reference_v<T>, "what a callback only lends cannot wait for another thread");
    return KRCallback<T>::withFunction(
        [proxy = std::move(proxy), method](KRResult<T> result) { proxy.perform(method, std::move(result)); });
}
