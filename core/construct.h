#pragma once

#include "core/memory.h"

#include <new>
#include <type_traits>
#include <utility>

// The construction pattern: a caller gets null or a whole object, never half of one.

/// The name of a type for leak reports, taken from the compiler.
template <class T> constexpr const char* ztypelabel() { return __PRETTY_FUNCTION__; }

/// Names the type under construction for whoever watches allocations.
template <class T> struct ZTypeLabel {
    const char* outer = toolkit::threadState.typeLabel;
    ZTypeLabel() { toolkit::threadState.typeLabel = ztypelabel<T>(); }
    ~ZTypeLabel() { toolkit::threadState.typeLabel = outer; }
    ZTypeLabel(const ZTypeLabel&) = delete;
};

/// True for types whose values may be moved by copying their bytes and forgetting the source. Trivially copyable types
/// are; a class says so of itself with `using ZRelocatable = void;`.
template <class T, class = void> inline constexpr bool zrelocatable = std::is_trivially_copyable_v<T>;
template <class T> inline constexpr bool zrelocatable<T, std::void_t<typename T::ZRelocatable>> = true;

/// Gives up one reference of an object made by `zmake`; with the last, destroys it and frees its block. Null is fine.
template <class T> inline void zrelease(T* object) {
    if (!object || decmemref(object) > 0) return;
    object->~T();
    toolkit::freeBlock(const_cast<std::remove_const_t<T>*>(object));
}

/// A new `T` on a counted zeroed block, its count 1. Null when there is no memory, or when the constructor raised a
/// failure: the object is then destroyed and the failure forgotten. Failures that were pending no longer count.
template <class T, class... A> inline T* zmake(A&&... arguments) {
    static_assert(alignof(T) <= 16);
    ZTypeLabel<T> label;
    void* memory = __znalloc(sizeof(T));
    if (!memory) return nullptr;
    T* object = ::new (memory) T(std::forward<A>(arguments)...);
    if (ORV_UNLIKELY(zresetfail())) {
        zrelease(object);
        zrecover();
        return nullptr;
    }
    return object;
}

/// An array of `count` values on a counted zeroed block: 8 bytes that hold the count, then the items. The block's
/// element count is set too. Null as for `zmake`; a size that would overflow is refused. Types aligned above 8 don't
/// fit.
template <class T> inline T* zmakearray(size_t count) {
    static_assert(alignof(T) <= 8);
    size_t bytes;
    if (__builtin_mul_overflow(count, sizeof(T), &bytes) || bytes > toolkit::blockLimit - 8) return nullptr;
    ZTypeLabel<T> label;
    auto memory = static_cast<char*>(__znalloc(bytes + 8));
    if (!memory) return nullptr;
    ::new (memory) ularge(count);
    toolkit::blockHead(memory)->elements = int(count);
    T* items = reinterpret_cast<T*>(memory + 8);
    for (size_t i = 0; i < count; ++i) ::new (items + i) T();
    if (ORV_UNLIKELY(zresetfail())) {
        while (count) items[--count].~T();
        toolkit::freeBlock(memory);
        zrecover();
        return nullptr;
    }
    return items;
}
/// The counted block of an array made by `zmakearray`; null for null.
template <class T> inline void* zarrayblock(T* items) {
    return items ? reinterpret_cast<char*>(const_cast<std::remove_const_t<T>*>(items)) - 8 : nullptr;
}
template <class T> inline size_t zarraycount(const T* items) {
    return items ? *static_cast<const ularge*>(zarrayblock(items)) : 0;
}
/// Gives up one reference of an array; with the last, destroys the items back to front and frees the block.
template <class T> inline void zreleasearray(T* items) {
    void* block = zarrayblock(items);
    if (!block || decmemref(block) > 0) return;
    for (size_t i = zarraycount(items); i > 0; --i) items[i - 1].~T();
    toolkit::freeBlock(block);
}

/// Tells whether what was built on the stack since is whole: failures raised in between, also by inner constructions
/// that don't show in `zresetfail`, count. An inner recovery that brought the count down hides earlier ones.
class ZFailGuard {
public:
    ZFailGuard() : before(zfailcount()) {}
    bool rose() const { return zfailcount() > before; }
    /// Forgets the failures raised since, and only those: what an enclosing construction raised stays.
    void forget() const {
        auto& state = toolkit::threadState;
        if (state.failCount > before) state.failCount = before;
        if (state.failMark > state.failCount) state.failMark = state.failCount;
    }

private:
    int before;
};
