#pragma once

#include <memory>

/// An out-parameter between a callback's producer and whoever set the callback up: a box that owns what it
/// holds, or merely points at it. Not thread-safe.
template <class T>
class KRMutableReference {
public:
    static std::shared_ptr<KRMutableReference> retainedReference(std::shared_ptr<T> object)
    {
        return std::make_shared<KRMutableReference>(std::move(object), true);
    }
    static std::shared_ptr<KRMutableReference> nonRetainedReference(const std::shared_ptr<T>& object)
    {
        return std::make_shared<KRMutableReference>(object, false);
    }

    KRMutableReference(std::shared_ptr<T> object, bool retainsReference)
        : m_retainsReference(retainsReference)
    {
        setReference(std::move(object));
    }

    [[nodiscard]] bool retainsReference() const { return m_retainsReference; }
    /// What the box holds; null when it does not own it and the object has gone.
    [[nodiscard]] std::shared_ptr<T> reference() const
    {
        return m_retainsReference ? m_owned : m_pointer.lock();
    }
    void setReference(std::shared_ptr<T> object)
    {
        m_pointer = object;
        if (m_retainsReference)
            m_owned.swap(object);
    }

private:
    bool m_retainsReference;
    std::shared_ptr<T> m_owned;
    std::weak_ptr<T> m_pointer;
};
