#pragma once

#include "toolkit/types.h"

/// Ordered accesses to plain words. There are no stand-alone fences: a thread sanitizer doesn't see them.
namespace toolkit {

template <class T> inline T load(const T& cell) { return __atomic_load_n(&cell, __ATOMIC_RELAXED); }
template <class T> inline T loadAcquire(const T& cell) { return __atomic_load_n(&cell, __ATOMIC_ACQUIRE); }
template <class T, class V> inline void store(T& cell, V value) { __atomic_store_n(&cell, T(value), __ATOMIC_RELAXED); }
template <class T, class V> inline void storeRelease(T& cell, V value) {
    __atomic_store_n(&cell, T(value), __ATOMIC_RELEASE);
}
/// Adds and answers the new value; acquires and releases.
template <class T, class V> inline T addFetch(T& cell, V value) {
    return __atomic_add_fetch(&cell, T(value), __ATOMIC_ACQ_REL);
}
template <class T, class V> inline T exchange(T& cell, V value) {
    return __atomic_exchange_n(&cell, T(value), __ATOMIC_ACQ_REL);
}
/// Stores `wanted` if the cell holds `expected`; otherwise writes what it holds to `expected`.
template <class T> inline bool compareExchange(T& cell, T& expected, T wanted) {
    return __atomic_compare_exchange_n(&cell, &expected, wanted, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE);
}

/// The new value of a counter raised by one, unless it is 0 or less: then the old value, unchanged.
inline int incNonZero(int& cell) {
    int seen = load(cell);
    while (seen > 0)
        if (compareExchange(cell, seen, seen + 1)) return seen + 1;
    return seen;
}
inline int decrement(int& cell) { return addFetch(cell, -1); }
inline int increment(int& cell) { return addFetch(cell, 1); }

inline void cpuPause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

} // namespace toolkit
