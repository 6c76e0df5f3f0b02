#pragma once

#include "object/glueRows.h"

namespace orv::glue {

/// How variants hold records of a pool, which count for themselves: raw memory never becomes one. For a `T` with
/// `create`, `copy`, `compare`, and `retain` and `release`, be these static or not.
template <class T> constexpr Callbacks recordCallbacks() {
    Callbacks made{};
    made.create = [](ZMetaType*) -> void* { return T::create(); };
    made.construct = [](void*, ZMetaType*) { return false; };
    made.copy = [](void*, const void*) { return false; };
    made.copyNew = [](const void* source) -> void* { return static_cast<const T*>(source)->copy(); };
    made.compare = [](const void* a, const void* b) {
        return static_cast<const T*>(a)->compare(*static_cast<const T*>(b));
    };
    made.destroy = made.release = [](void* record) {
        if constexpr (requires(T * own) { own->release(); })
            static_cast<T*>(record)->release();
        else
            T::release(static_cast<T*>(record));
    };
    made.retain = [](void* record) -> void* {
        if constexpr (requires(T * own) { own->retain(); })
            return static_cast<T*>(record)->retain();
        else
            return T::retain(static_cast<T*>(record));
    };
    return made;
}

} // namespace orv::glue
