#pragma once

#include "core/ZRetainPtrT.h"
#include "core/ZSelector.h"
#include "core/compare.h"
#include "core/construct.h"
#include "core/forward.h"

// The items of `ZHashMapT`: what stands behind a map item's head and hash. An item gives its key by `key()` and what is
// looked up by `value()`; a class without them is its own key, and its own value.

/// A key and a value.
template <class K, class V> class ZKeyValueT {
public:
    using Key = K;
    using Value = V;

    ZKeyValueT() = default;
    ZKeyValueT(const K& key, const V& value) : itemKey(key), itemValue(value) {}

    const K& key() const { return itemKey; }
    const V& value() const { return itemValue; }
    V& value() { return itemValue; }
    /// By key, then by value where values have an order.
    int compare(const ZKeyValueT& other) const {
        int order = zcompare(itemKey, other.itemKey);
        if constexpr (zcomparable<V>)
            if (order == 0) return zcompare(itemValue, other.itemValue);
        return order;
    }
    uint hashKey() const { return zhashkey(itemKey); }

private:
    K itemKey{};
    V itemValue{};
};
template <class K, class V>
inline constexpr bool zrelocatable<ZKeyValueT<K, V>, void> = zrelocatable<K>&& zrelocatable<V>;

/// A selector as key, and a value.
template <class V> class ZSelectValueT : public ZKeyValueT<ZSelector, V> {
public:
    using ZKeyValueT<ZSelector, V>::ZKeyValueT;
    int compare(const ZSelectValueT& other) const { return ZKeyValueT<ZSelector, V>::compare(other); }
};
template <class V> inline constexpr bool zrelocatable<ZSelectValueT<V>, void> = zrelocatable<ZKeyValueT<ZSelector, V>>;

/// A plain value, a number or a pointer, as key.
template <class T> class ZValueKeyT {
public:
    ZValueKeyT() = default;
    ZValueKeyT(const T& value) : plain(value) {}

    operator const T&() const { return plain; }
    const T& get() const { return plain; }
    int compare(const ZValueKeyT& other) const { return zcompare(plain, other.plain); }
    uint hashKey() const { return zhashkey(plain); }

private:
    T plain{};
};
template <class T> inline constexpr bool zrelocatable<ZValueKeyT<T>, void> = zrelocatable<T>;

/// A value that is its own key.
template <class T> class ZValueWrapT {
public:
    using Key = T;
    using Value = const T;

    ZValueWrapT() = default;
    ZValueWrapT(const T& value) : wrapped(value) {}

    const T& key() const { return wrapped; }
    const T& value() const { return wrapped; }
    int compare(const ZValueWrapT& other) const { return zcompare(wrapped, other.wrapped); }
    uint hashKey() const { return zhashkey(wrapped); }

private:
    T wrapped{};
};
template <class T> inline constexpr bool zrelocatable<ZValueWrapT<T>, void> = zrelocatable<T>;

/// A key and an object that is retained as long as the item lives.
template <class K, class T> class ZRetainKeyT : public ZKeyValueT<K, ZRetainPtrT<T>> {
public:
    using ZKeyValueT<K, ZRetainPtrT<T>>::ZKeyValueT;
    ZRetainKeyT() = default;
    ZRetainKeyT(const K& key, const T* object) : ZKeyValueT<K, ZRetainPtrT<T>>(key, ZRetainPtrT<T>(object)) {}
    int compare(const ZRetainKeyT& other) const { return ZKeyValueT<K, ZRetainPtrT<T>>::compare(other); }
};
template <class K, class T> inline constexpr bool zrelocatable<ZRetainKeyT<K, T>, void> = zrelocatable<K>;
