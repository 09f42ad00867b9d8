#pragma once

#include "foundation/KRRunLoop.h"
#include "transport/KRWeakMap.h"

#include <concepts>
#include <memory>
#include <tuple>

/// A stand-in for an object, through which calls reach it on another thread or only while it lives:
/// `proxy.perform(&Class::method, arguments…)`. Proxies are values; arguments are copied.
template <class Proxy>
concept KRProxyType = requires
{
    typename Proxy::ProxiedType;
};

/// The plain proxy: calls the object at once, on the calling thread, and keeps it alive.
template <class T>
class KRProxy {
public:
    using ProxiedType = T;

    explicit KRProxy(std::shared_ptr<T> object)
        : m_object(std::move(object))
    {
    }

    const std::shared_ptr<T>& proxiedObject() const { return m_object; }

    template <class Return, class Class, class... Parameters, class... Arguments>
    Return perform(Return (Class::*method)(Parameters...), Arguments&&... arguments) const
    {
        return (m_object.get()->*method)(std::forward<Arguments>(arguments)...);
    }

private:
    std::shared_ptr<T> m_object;
};

/// Calls reach the object later, on the main thread, in the order they were made; the caller never waits and
/// gets no result. Keeps the object alive until its last call has run.
template <class T>
class KRMainThreadProxy {
public:
    using ProxiedType = T;

    explicit KRMainThreadProxy(std::shared_ptr<T> object)
        : m_object(std::move(object))
    {
    }

    const std::shared_ptr<T>& proxiedObject() const { return m_object; }

    template <class Return, class Class, class... Parameters, class... Arguments>
    void perform(Return (Class::*method)(Parameters...), Arguments&&... arguments) const
    {
        KRRunLoop::main().post([object = m_object,
                                   method,
                                   kept = std::tuple<std::decay_t<Parameters>...>(
                                       std::forward<Arguments>(arguments)...)]() mutable {
            if (object)
                std::apply([&](auto&... values) { (object.get()->*method)(std::move(values)...); }, kept);
        });
    }

private:
    std::shared_ptr<T> m_object;
};

/// The one weak stand-in of an object: calls reach it, on the calling thread, only while it is alive and has
/// not dissociated. Any thread; an object that is destroyed on another thread than the caller's is kept alive
/// by the call.
template <class T>
class KRWeakProxy {
public:
    using ProxiedType = T;

    explicit KRWeakProxy(std::shared_ptr<KRWeakReference> reference)
        : m_reference(std::move(reference))
    {
    }

    /// Null when the object has gone or dissociated.
    [[nodiscard]] std::shared_ptr<T> proxiedObject() const
    {
        return std::static_pointer_cast<T>(m_reference->object());
    }

    template <class Return, class Class, class... Parameters, class... Arguments>
    void perform(Return (Class::*method)(Parameters...), Arguments&&... arguments) const
    {
        if (const std::shared_ptr<T> object = proxiedObject())
            (object.get()->*method)(std::forward<Arguments>(arguments)...);
    }

    /// Proxies of one object are equal until it dissociates.
    bool operator==(const KRWeakProxy& other) const { return m_reference == other.m_reference; }

private:
    std::shared_ptr<KRWeakReference> m_reference;
};

/// The main-thread proxy of an object's weak proxy: calls go to the main thread and reach the object only if
/// it is still there by then. For objects that may go before their requests end.
template <class T>
class KRWeakMainThreadProxy {
public:
    using ProxiedType = T;

    explicit KRWeakMainThreadProxy(KRWeakProxy<T> weakProxy)
        : m_weakProxy(std::move(weakProxy))
    {
    }

    template <class Return, class Class, class... Parameters, class... Arguments>
    void perform(Return (Class::*method)(Parameters...), Arguments&&... arguments) const
    {
        KRRunLoop::main().post([weakProxy = m_weakProxy,
                                   method,
                                   kept = std::tuple<std::decay_t<Parameters>...>(
                                       std::forward<Arguments>(arguments)...)]() mutable {
            if (const std::shared_ptr<T> object = weakProxy.proxiedObject())
                std::apply([&](auto&... values) { (object.get()->*method)(std::move(values)...); }, kept);
        });
    }

private:
    KRWeakProxy<T> m_weakProxy;
};

template <class T>
[[nodiscard]] KRMainThreadProxy<T> mainThreadProxy(std::shared_ptr<T> object)
{
    return KRMainThreadProxy<T>(std::move(object));
}

template <class T>
[[nodiscard]] KRWeakProxy<T> weakProxy(const std::shared_ptr<T>& object)
{
    return KRWeakProxy<T>(KRWeakMap::shared().referenceForObject(object));
}

template <class T>
[[nodiscard]] KRWeakMainThreadProxy<T> weakMainThreadProxy(const std::shared_ptr<T>& object)
{
    return KRWeakMainThreadProxy<T>(weakProxy(object));
}

/// Cuts every weak proxy of the object off for good; asking for one again makes a new one. An object that
/// ever handed out its weak proxy calls this first thing in its destructor, with `this`.
inline void dissociateWeakProxy(const void* object)
{
    KRWeakMap::shared().dissociate(object);
}
