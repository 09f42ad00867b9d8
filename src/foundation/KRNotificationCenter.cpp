#include "foundation/KRNotificationCenter.h"

#include <vector>

struct KRObservation::Entry {
    std::type_index type;
    const void* object;
    std::function<void(const void*)> handler;
    std::atomic<bool> active = true;
};

struct KRNotificationCenter::Table {
    std::mutex lock;
    std::unordered_map<std::type_index, std::vector<std::shared_ptr<KRObservation::Entry>>> entries;
};

KRObservation::KRObservation(std::weak_ptr<void> center, std::shared_ptr<Entry> entry)
    : m_center(std::move(center))
    , m_entry(std::move(entry))
{
}

KRObservation& KRObservation::operator=(KRObservation&& other) noexcept
{
    if (this != &other) {
        invalidate();
        m_center = std::move(other.m_center);
        m_entry = std::move(other.m_entry);
    }
    return *this;
}

KRObservation::~KRObservation()
{
    invalidate();
}

void KRObservation::invalidate()
{
    if (!m_entry)
        return;
    m_entry->active.store(false, std::memory_order_release);
    if (const auto table = std::static_pointer_cast<KRNotificationCenter::Table>(m_center.lock())) {
        std::scoped_lock guard(table->lock);
        const auto found = table->entries.find(m_entry->type);
        if (found != table->entries.end())
            std::erase(found->second, m_entry);
    }
    // The handler may hold the last reference to objects that unregister as they go: outside of the lock.
    m_entry.reset();
}

KRNotificationCenter::KRNotificationCenter()
    : m_table(std::make_shared<Table>())
{
}

KRNotificationCenter::~KRNotificationCenter() = default;

KRNotificationCenter& KRNotificationCenter::defaultCenter()
{
    // Never destroyed: the background thread may still post while static objects are being destroyed.
    static auto* center = new KRNotificationCenter;
    return *center;
}

KRObservation KRNotificationCenter::_add(std::type_index type, const void* object, Handler handler)
{
    // Not make_shared: clang 14 cannot make an aggregate with it.
    std::shared_ptr<KRObservation::Entry> entry(
        new KRObservation::Entry { type, object, std::move(handler) });
    std::scoped_lock guard(m_table->lock);
    m_table->entries[type].push_back(entry);
    return { m_table, std::move(entry) };
}

void KRNotificationCenter::_post(std::type_index type, const void* object, const void* notification)
{
    std::vector<std::shared_ptr<KRObservation::Entry>> observers;
    {
        std::scoped_lock guard(m_table->lock);
        const auto found = m_table->entries.find(type);
        if (found == m_table->entries.end())
            return;
        // Most observers are of one object, and most posts are of others.
        for (const auto& observer : found->second) {
            if (!observer->object || observer->object == object)
                observers.push_back(observer);
        }
    }
    for (const auto& observer : observers) {
        if (observer->active.load(std::memory_order_acquire))
            observer->handler(notification);
    }
}
