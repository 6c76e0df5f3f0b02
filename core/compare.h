#pragma once

#include "toolkit/types.h"

#include <type_traits>

/// Whether `zcompare` knows an order of such values.
template <class T>
concept zcomparable = requires(const T& a) {
    a.compare(a);
}
|| requires(const T& a) { a < a; };

/// The order of two values: the class's own `order`, which classes have whose `compare` is more lenient than sorting
/// allows, or its `compare`, else `<` on numbers, enums and pointers; not-a-number comes last
/// and is equal to itself. Negative, 0 or positive.
template <class T> inline int zcompare(const T& a, const T& b) {
    if constexpr (requires { a.order(b); })
        return a.order(b);
    else if constexpr (requires { a.compare(b); })
        return a.compare(b);
    else if constexpr (std::is_floating_point_v<T>) {
        const bool numbers = a == a && b == b;
        return numbers ? (b < a) - (a < b) : (a != a) - (b != b);
    } else
        return (b < a) - (a < b);
}

/// The hash of a key: the class's own `textHash`, which texts of several forms have so that equal ones hash alike, or
/// its `hashKey`, else the mixed bits of a number, enum or pointer; -0 hashes as 0, and not-a-number always alike.
template <class T> inline uint zhashkey(const T& key) {
    if constexpr (requires { key.textHash(); })
        return uint(key.textHash());
    else if constexpr (requires { key.hashKey(); })
        return uint(key.hashKey());
    else if constexpr (std::is_floating_point_v<T>) {
        double value = key == 0 ? 0.0 : key == key ? double(key) : double(__builtin_nanf(""));
        ularge bits;
        __builtin_memcpy(&bits, &value, 8);
        return uint(bits ^ bits >> 32);
    } else if constexpr (std::is_pointer_v<T>) {
        auto bits = reinterpret_cast<uintptr_t>(key);
        return uint(bits >> 4 ^ bits >> 32);
    } else
        return uint(ularge(key) ^ ularge(key) >> 32);
}
