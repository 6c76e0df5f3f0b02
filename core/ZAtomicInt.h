#pragma once

#include "core/forward.h"

/// An integer that several threads may change at once. Every change acquires and releases.
class ZAtomicInt {
public:
    constexpr ZAtomicInt() = default;
    constexpr ZAtomicInt(int value) : cell(value) {}
    ZAtomicInt(const ZAtomicInt& other) : cell(other.get()) {}
    /// The int that the value reads as, see `ZVariant::toInt`.
    ORV_API explicit ZAtomicInt(const ZVariant& value);
    ZAtomicInt& operator=(const ZAtomicInt& other) { return *this = other.get(); }
    ZAtomicInt& operator=(int value) {
        __atomic_store_n(&cell, value, __ATOMIC_RELEASE);
        return *this;
    }

    int get() const { return __atomic_load_n(&cell, __ATOMIC_ACQUIRE); }
    operator int() const { return get(); }
    /// Adds and answers the new value; wraps around.
    int add(int value) { return __atomic_add_fetch(&cell, value, __ATOMIC_ACQ_REL); }
    /// -1, 0 or 1.
    int compare(const ZAtomicInt& other) const {
        int a = get(), b = other.get();
        return (a > b) - (a < b);
    }
    uint hashKey() const { return uint(get()); }

    // On plain counters. Each answers the new value.

    static int inc(volatile int& counter) { return __atomic_add_fetch(&counter, 1, __ATOMIC_ACQ_REL); }
    static int dec(volatile int& counter) { return __atomic_sub_fetch(&counter, 1, __ATOMIC_ACQ_REL); }
    /// Raises a counter unless it is 0 or less, as references are added: what has none left gets none. Answers the
    /// unchanged value then.
    static int incNonZero(volatile int& counter) { return addNonZero(counter, 1); }
    /// Lowers a counter unless it is 0 or less; answers the unchanged value then.
    static int decNonZero(volatile int& counter) { return addNonZero(counter, -1); }

private:
    static int addNonZero(volatile int& counter, int value) {
        int seen = __atomic_load_n(&counter, __ATOMIC_RELAXED);
        while (seen > 0)
            if (__atomic_compare_exchange_n(&counter, &seen, seen + value, true, __ATOMIC_ACQ_REL, __ATOMIC_RELAXED))
                return seen + value;
        return seen;
    }

    int cell = 0;
};
