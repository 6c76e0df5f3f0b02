#pragma once

#include "core/compare.h"
#include "core/construct.h"

/// Two values; ordered by the first, then by the second.
template <class A, class B> struct ZPairT {
    A first{};
    B second{};

    ZPairT() = default;
    ZPairT(const A& first, const B& second) : first(first), second(second) {}

    int compare(const ZPairT& other) const {
        int order = zcompare(first, other.first);
        return order ? order : zcompare(second, other.second);
    }
    bool operator==(const ZPairT& other) const { return compare(other) == 0; }
    uint hashKey() const { return zhashkey(first) * 31 + zhashkey(second); }
};
template <class A, class B> inline constexpr bool zrelocatable<ZPairT<A, B>, void> = zrelocatable<A>&& zrelocatable<B>;
