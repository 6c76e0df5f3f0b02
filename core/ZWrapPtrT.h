#pragma once

#include "core/forward.h"

/// A plain pointer with the interface of `ZRetainPtrT`: it holds no reference.
template <class T> class ZWrapPtrT {
public:
    ZWrapPtrT() = default;
    ZWrapPtrT(const T* object) : object(const_cast<T*>(object)) {}

    T* get() const { return object; }
    T* operator->() const { return object; }
    T& operator*() const { return *object; }
    operator T*() const { return object; }
    bool isNull() const { return !object; }

    /// By the address.
    int compare(const ZWrapPtrT& other) const { return (object > other.object) - (object < other.object); }
    uint hashKey() const {
        auto bits = reinterpret_cast<uintptr_t>(object);
        return uint(bits >> 4 ^ bits >> 32);
    }

private:
    T* object = nullptr;
};
