#pragma once

#include "foundation/KRRunLoop.h"

#include <memory>

/// Makes an object that belongs to the main thread. Other threads may hold references: should the last one be
/// dropped elsewhere, the object is destroyed on the main thread all the same.
template <class T, class... Arguments>
[[nodiscard]] std::shared_ptr<T> KRMakeMainThreadObject(Arguments&&... arguments)
{
    return std::shared_ptr<T>(new T(std::forward<Arguments>(arguments)...), [](T* object) {
        if (KRRunLoop::isMainThread())
            delete object;
        else
            KRRunLoop::main().post([object] { delete object; });
    });
}
