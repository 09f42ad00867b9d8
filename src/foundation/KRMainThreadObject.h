#pragma once

#include "foundation/KRRunLoop.h"

#include <memory>

/// Takes over an object that belongs to the main thread. Other threads may hold references: should the last
/// one be dropped elsewhere, the object is destroyed on the main thread all the same.
template <class T>
[[nodiscard]] std::shared_ptr<T> KRAdoptMainThreadObject(T* newObject)
{
    return std::shared_ptr<T>(newObject, [](T* object) {
        std::unique_ptr<T> owned(object);
        if (!KRRunLoop::isMainThread())
            KRRunLoop::main().post([later = std::shared_ptr<T>(std::move(owned))] {});
    });
}

/// Makes such an object.
template <class T, class... Arguments>
[[nodiscard]] std::shared_ptr<T> KRMakeMainThreadObject(Arguments&&... arguments)
{
    return KRAdoptMainThreadObject(new T(std::forward<Arguments>(arguments)...));
}
