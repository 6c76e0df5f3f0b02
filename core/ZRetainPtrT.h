#pragma once

#include "core/construct.h"
#include "core/forward.h"

/// A pointer that holds a reference to its object. The object is counted by its own members `retain` and `release` if
/// it has them, else by its block as `zmake` made it. Retaining may be refused, by an object on its way out: the
/// pointer is null then.
template <class T> class ZRetainPtrT {
public:
    using ZRelocatable = void;

    ZRetainPtrT() = default;
    ZRetainPtrT(const T* object) : object(keep(object)) {}
    ZRetainPtrT(const ZRetainPtrT& other) : object(keep(other.object)) {}
    ZRetainPtrT(ZRetainPtrT&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    ~ZRetainPtrT() { drop(object); }
    ZRetainPtrT& operator=(const ZRetainPtrT& other) {
        drop(std::exchange(object, keep(other.object)));
        return *this;
    }
    ZRetainPtrT& operator=(ZRetainPtrT&& other) noexcept {
        T* taken = std::exchange(other.object, nullptr);
        drop(std::exchange(object, taken));
        return *this;
    }
    /// Takes over a reference that the caller owns.
    static ZRetainPtrT adopt(T* owned) {
        ZRetainPtrT pointer;
        pointer.object = owned;
        return pointer;
    }
    /// Hands the reference over to the caller.
    [[nodiscard]] T* give() { return std::exchange(object, nullptr); }

    T* get() const { return object; }
    T* operator->() const { return object; }
    T& operator*() const { return *object; }
    operator T*() const { return object; }
    bool isNull() const { return !object; }

    /// By the address.
    int compare(const ZRetainPtrT& other) const { return (object > other.object) - (object < other.object); }
    uint hashKey() const {
        auto bits = reinterpret_cast<uintptr_t>(object);
        return uint(bits >> 4 ^ bits >> 32);
    }

private:
    static T* keep(const T* wanted) {
        static_assert(sizeof(T) > 0, "what counts an object is known from its complete class");
        T* object = const_cast<T*>(wanted);
        if (!object) return nullptr;
        if constexpr (!requires { object->retain(); })
            return retain(object);
        else if constexpr (std::is_void_v<decltype(object->retain())>) {
            object->retain();
            return object;
        } else if constexpr (std::is_pointer_v<decltype(object->retain())>)
            return object->retain() ? object : nullptr;
        else
            return int(object->retain()) > 0 ? object : nullptr;
    }
    static void drop(T* object) {
        if (!object) return;
        if constexpr (requires { object->release(); })
            object->release();
        else
            zrelease(object);
    }

    T* object = nullptr;
};
