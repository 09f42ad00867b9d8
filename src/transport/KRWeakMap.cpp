#include "transport/KRWeakMap.h"

KRWeakReference::KRWeakReference(std::weak_ptr<void> object)
    : m_object(std::move(object))
{
}

std::shared_ptr<void> KRWeakReference::object() const
{
    std::scoped_lock guard(m_lock);
    return m_object.lock();
}

void KRWeakReference::dissociate()
{
    std::scoped_lock guard(m_lock);
    m_object.reset();
}

KRWeakMap& KRWeakMap::shared()
{
    static auto* map = new KRWeakMap;
    return *map;
}

std::shared_ptr<KRWeakReference> KRWeakMap::referenceForObject(const std::shared_ptr<void>& object)
{
    std::scoped_lock guard(m_lock);
    std::shared_ptr<KRWeakReference>& reference = m_references[object.get()];
    // An object that went without dissociating may have left its address to another one.
    if (!reference || !reference->object())
        reference = std::make_shared<KRWeakReference>(object);
    return reference;
}

void KRWeakMap::dissociate(const void* object)
{
    std::shared_ptr<KRWeakReference> reference;
    {
        std::scoped_lock guard(m_lock);
        const auto found = m_references.find(object);
        if (found == m_references.end())
            return;
        reference = std::move(found->second);
        m_references.erase(found);
    }
    reference->dissociate();
}

size_t KRWeakMap::count() const
{
    std::scoped_lock guard(m_lock);
    return m_references.size();
}
