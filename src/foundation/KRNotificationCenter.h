#pragma once

#include <QList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <typeindex>
#include <unordered_map>

/// One observer's registration: it observes for as long as this value lives.
class [[nodiscard]] KRObservation {
public:
    struct Entry;

    KRObservation() = default;
    KRObservation(std::weak_ptr<void> center, std::shared_ptr<Entry> entry);
    KRObservation(KRObservation&&) noexcept = default;
    KRObservation& operator=(KRObservation&& other) noexcept;
    KRObservation(const KRObservation&) = delete;
    KRObservation& operator=(const KRObservation&) = delete;
    ~KRObservation();

    /// Stops observing now. A handler that is running on another thread finishes.
    void invalidate();

private:
    std::weak_ptr<void> m_center;
    std::shared_ptr<Entry> m_entry;
};

/// Delivers notifications to whoever observes their type. A notification is a struct named as the
/// notification, with
///   - `static constexpr char name[]`, the name as logs show it,
///   - `object`, a raw pointer to the poster (or no such member when the notification has none),
///   - typed user information.
/// Handlers run synchronously on the posting thread, in the order they registered. Adding, removing and
/// posting are safe from any thread and from inside a handler; an observer removed during a post is skipped.
class KRNotificationCenter {
public:
    KRNotificationCenter();
    KRNotificationCenter(const KRNotificationCenter&) = delete;
    KRNotificationCenter& operator=(const KRNotificationCenter&) = delete;
    ~KRNotificationCenter();

    static KRNotificationCenter& defaultCenter();

    /// Calls the handler for each notification of this type.
    template <class Notification>
    KRObservation observe(std::function<void(const Notification&)> handler)
    {
        return _observe(std::move(handler), nullptr);
    }
    /// Only for those posted by that object; by any when it is null.
    template <class Notification>
    KRObservation observe(std::function<void(const Notification&)> handler,
        decltype(Notification::object) object)
    {
        return _observe(std::move(handler), object);
    }

    template <class Notification>
    void post(const Notification& notification)
    {
        const void* object = nullptr;
        if constexpr (requires { notification.object; })
            object = notification.object;
        _post(typeid(Notification), object, &notification);
    }

private:
    using Handler = std::function<void(const void*)>;

    template <class Notification>
    KRObservation _observe(std::function<void(const Notification&)> handler, const void* object)
    {
        return _add(typeid(Notification), object, [handler = std::move(handler)](const void* notification) {
            handler(*static_cast<const Notification*>(notification));
        });
    }

    struct Table;
    friend class KRObservation;

    KRObservation _add(std::type_index type, const void* object, Handler handler);
    void _post(std::type_index type, const void* object, const void* notification);

    std::shared_ptr<Table> m_table;
};
