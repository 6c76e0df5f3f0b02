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

/// Gives up one reference of an object made by `zmake`; with the last, destroys it and frees its block. Null is fine. A
/// class that ends its objects itself, by a member `release`, says so with `using ZReleasing = void;`.
template <class T> inline void zrelease(T* object) {
    if constexpr (requires { typename T::ZReleasing; }) {
        if (object) const_cast<std::remove_const_t<T>*>(object)->release();
    } else {
        if (!object || decmemref(object) > 0) return;
        object->~T();
        toolkit::freeBlock(const_cast<std::remove_const_t<T>*>(object));
    }
}

/// Tells whether what was built since is whole. Every failure raised in between counts, also one that `zresetfail` no
/// longer shows because a construction followed it, unless an inner construction recovered after it.
class ZFailGuard {
public:
    bool rose() const { return zfailcount() > base(); }
    /// Forgets the failures raised since, and only those: what an enclosing construction raised stays.
    void forget() const {
        auto& state = toolkit::threadState;
        if (int old = base(); state.failCount > old) state.failCount = old;
        if (state.failMark > state.failCount) state.failMark = state.failCount;
    }

private:
    /// A recovery in between has taken the earlier failures with it.
    int base() const { return toolkit::threadState.recoveries == recoveries ? before : 0; }

    int before = zfailcount();
    unsigned recoveries = toolkit::threadState.recoveries;
};

/// A new `T` on a counted zeroed block, its count 1. Null when there is no memory, or when the constructor raised a
/// failure: the object is then destroyed and all failures are forgotten. Failures that were pending no longer count.
template <class T, class... A> inline T* zmake(A&&... arguments) {
    static_assert(alignof(T) <= 16);
    ZTypeLabel<T> label;
    void* memory = __znalloc(sizeof(T));
    if (!memory) return nullptr;
    ZFailGuard guard;
    T* object = ::new (memory) T(std::forward<A>(arguments)...);
    if (ORV_UNLIKELY(zresetfail() || guard.rose())) {
        zrelease(object);
        zrecover();
        return nullptr;
    }
    return object;
}

/// An array of `count` values on a counted zeroed block: 8 bytes that hold the count, then the items. The block's
/// element count is set too, at most 2^31 - 1. Null as for `zmake`; a size that would overflow is refused. Types
/// aligned above 8 don't fit.
template <class T> inline T* zmakearray(size_t count) {
    static_assert(alignof(T) <= 8);
    size_t bytes;
    if (__builtin_mul_overflow(count, sizeof(T), &bytes) || bytes > toolkit::blockLimit - 8) return nullptr;
    ZTypeLabel<T> label;
    auto memory = static_cast<char*>(__znalloc(bytes + 8));
    if (!memory) return nullptr;
    ::new (memory) ularge(count);
    toolkit::blockHead(memory)->elements = count < 0x7FFFFFFF ? int(count) : 0x7FFFFFFF;
    T* items = reinterpret_cast<T*>(memory + 8);
    ZFailGuard guard;
    for (size_t i = 0; i < count; ++i) ::new (items + i) T();
    if (ORV_UNLIKELY(zresetfail() || guard.rose())) {
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
