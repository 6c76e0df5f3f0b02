#pragma once

#include "core/compare.h"
#include "core/construct.h"

/// A key and a value for `ZCacheT`. It costs its own bytes, or what the value's `cost()` says.
template <class K, class V> struct ZCacheValueT {
    K mine{};
    V value{};

    ZCacheValueT() = default;
    ZCacheValueT(const K& key, const V& value) : mine(key), value(value) {}

    const K& key() const { return mine; }
    uint cost() const {
        if constexpr (requires { value.cost(); })
            return value.cost();
        else
            return sizeof *this;
    }
    int compare(const ZCacheValueT& other) const {
        int order = zcompare(mine, other.mine);
        if constexpr (
            requires { value.compare(other.value); } || requires { value < other.value; })
            return order ? order : zcompare(value, other.value);
        else
            return order;
    }
};
template <class K, class V>
inline constexpr bool zrelocatable<ZCacheValueT<K, V>, void> = zrelocatable<K>&& zrelocatable<V>;
