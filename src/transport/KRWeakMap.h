#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

/// A reference that knows its object without keeping it, until it is dissociated. Any thread.
class KRWeakReference {
public:
    explicit KRWeakReference(std::weak_ptr<void> object);

    /// The object, kept alive for as long as the caller holds the answer; null when it has gone or
    /// dissociated.
    [[nodiscard]] std::shared_ptr<void> object() const;
    void dissociate();

private:
    mutable std::mutex m_lock;
    std::weak_ptr<void> m_object;
};

/// The one weak reference of each object that was ever asked for it, found by the object's identity. It owns
/// no object; a reference stays until its object dissociates. Any thread.
class KRWeakMap {
public:
    static KRWeakMap& shared();

    [[nodiscard]] std::shared_ptr<KRWeakReference> referenceForObject(const std::shared_ptr<void>& object);
    void dissociate(const void* object);
    [[nodiscard]] size_t count() const;

private:
    mutable std::mutex m_lock;
    std::unordered_map<const void*, std::shared_ptr<KRWeakReference>> m_references;
};
